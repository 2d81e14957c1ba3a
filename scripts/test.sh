#!/usr/bin/env bash
# Builds the tool and runs every test. Installs what is missing first.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

ensure_packages "${build_packages[@]}" "${test_packages[@]}"
build_preset dev
say "Running the tests"
cd "$root_dir"
ctest --preset dev -j "$jobs" "$@"
