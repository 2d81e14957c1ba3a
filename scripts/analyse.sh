#!/usr/bin/env bash
# Runs clang-tidy over every source, or over the sources named as arguments.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

ensure_packages "${build_packages[@]}" "${test_packages[@]}" "${check_packages[@]}"
cd "$root_dir"
cmake --preset analyse >/dev/null
# The analyser reads the sources alone, but those include what moc, uic and lrelease make.
ninja -C build/analyse -t targets all | sed -n 's/^\([^ ]*_autogen\): .*/\1/p' | sort -u |
  xargs ninja -C build/analyse >/dev/null

say "Analyser"
if [ $# -gt 0 ]; then
  sources=("$@")
else
  # What only another system builds has no headers here.
  listed=$(git ls-files -- '*.cpp' ':!companions/EndSignals_windows.cpp')
  mapfile -t sources <<<"$listed"
fi
# clang-tidy counts on standard error what it has left out; all else there is worth reading.
printf '%s\0' "${sources[@]}" | xargs -0 -n 4 -P "$jobs" clang-tidy -p build/analyse --quiet \
  2> >(grep -Ev '^[0-9]+ warnings? generated\.$' >&2 || true)
