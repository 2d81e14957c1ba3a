#!/usr/bin/env bash
# Measures everything that bench/ measures and prints one table. On a machine that does nothing else.
# bench.sh [--json FILE] [--against FILE] [--only WORD]: writes the figures, compares with those of another run, runs
# only the programs with that word in their names.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

ensure_packages "${build_packages[@]}" python3
build_preset release
QT_QPA_PLATFORM=offscreen exec python3 "$root_dir/bench/figures.py" "$root_dir/build/release/bin" "$@"
