#!/usr/bin/env bash
# Builds with clang, runs every test and prints what share of the lines of each folder they reach.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

ensure_packages "${build_packages[@]}" "${test_packages[@]}" "${coverage_packages[@]}"
build_preset clang
profiles=$root_dir/build/clang/profiles
rm -rf "$profiles"
cd "$root_dir"
# A file for each process: programs that share code do not share a file.
LLVM_PROFILE_FILE=$profiles/%p.profraw ctest --preset clang -j "$jobs" --quiet

say "Lines that the tests reach"
llvm-profdata merge -sparse "$profiles"/*.profraw -o "$profiles/all.profdata"
python3 - <<'PYTHON'
import json, os, subprocess
from collections import defaultdict
from pathlib import Path

root = Path.cwd()
programs = [str(path) for path in (root / 'build/clang/bin').iterdir() if path.is_file()]
objects = [argument for program in programs[1:] for argument in ('-object', program)]
export = subprocess.run(
    ['llvm-cov', 'export', '-summary-only', '-instr-profile=build/clang/profiles/all.profdata', programs[0], *objects],
    stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=True)
folders = defaultdict(lambda: [0, 0])
for file in json.loads(export.stdout)['data'][0]['files']:
    path = Path(os.path.normpath(root / 'build/clang' / file['filename']))
    if root in path.parents and (root / 'build') not in path.parents:
        folder = folders[path.relative_to(root).parent.as_posix()]
        folder[0] += file['summary']['lines']['covered']
        folder[1] += file['summary']['lines']['count']
for name, (covered, count) in sorted(folders.items()):
    if not name.startswith('tests'):
        print(f'{name:28} {100 * covered / count:5.1f} % of {count}')
PYTHON
