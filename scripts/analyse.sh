#!/usr/bin/env bash
# Runs clang-tidy over every source, or over the sources named as arguments.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

ensure_packages "${build_packages[@]}" "${test_packages[@]}" "${check_packages[@]}"
cd "$root_dir"
configure_for_reading

say "Analyser"
if [ $# -gt 0 ]; then
  sources=("$@")
else
  # What only another system builds has no headers here.
  listed=$(git ls-files -- '*.cpp' ':!companions/windows')
  mapfile -t sources <<<"$listed"
fi
# clang-tidy counts on standard error what it has left out; all else there is worth reading.
printf '%s\0' "${sources[@]}" | xargs -0 -n 4 -P "$jobs" clang-tidy -p build/analyse --quiet \
  2> >(grep -Ev '^[0-9]+ warnings? generated\.$' >&2 || true)
