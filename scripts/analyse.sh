#!/usr/bin/env bash
# Runs clang-tidy over every source, or over the sources named as arguments, and clazy over those that are no tests.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

ensure_packages "${build_packages[@]}" "${test_packages[@]}" "${check_packages[@]}"
cd "$root_dir"
configure_for_reading

say "Analyser"
if [ $# -gt 0 ]; then
  sources=("$@")
else
  # What only another system or the fuzzers' preset builds cannot be read here.
  listed=$(git ls-files -- '*.cpp' ':!companions/windows' ':!tests/fuzz/fuzz_main.cpp')
  mapfile -t sources <<<"$listed"
fi
# clang-tidy counts on standard error what it has left out; all else there is worth reading.
printf '%s\0' "${sources[@]}" | xargs -0 -n 4 -P "$jobs" clang-tidy -p build/analyse --quiet \
  2> >(grep -Ev '^[0-9]+ warnings? generated\.$' >&2 || true)

say "What is wrong in the use of Qt"
# The locals that a benchmark's handlers write to outlive the event loop that calls them.
printf '%s\0' "${sources[@]}" | grep -zv '^tests/' |
  xargs -0 -r -n 8 -P "$jobs" clazy-standalone -p build/analyse --checks=level1,no-lambda-in-connect
