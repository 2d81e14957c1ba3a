#!/usr/bin/env bash
# Compiles what Windows builds with the distribution's MinGW, for its syntax only: there is no Qt to link with, and its
# headers serve all systems. Takes the flags from the compilation database of the analyser.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

ensure_packages "${build_packages[@]}" "${windows_packages[@]}"
configure_for_reading

say "Windows, syntax only"
cd "$root_dir"
python3 - "$jobs" <<'PYTHON'
import json, re, shlex, subprocess, sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

root = Path.cwd()
# The bench and all that stands on it are for Linux; libusb is the provider there.
elsewhere = re.compile(r'^(sim|demo|soak|tests|bench)/|/libusb/|/tactile-sim/')
jobs = []
for entry in json.loads((root / 'build/analyse/compile_commands.json').read_text()):
    source = Path(entry['file']).resolve().relative_to(root).as_posix()
    if source.startswith('build/') or elsewhere.search(source):
        continue
    # A twin for the other system takes the flags of the one that is built here.
    twin = re.sub('/unix/', '/windows/', source)
    flags = shlex.split(entry['command'].replace('mkspecs/linux-g++', 'mkspecs/win32-g++'))[1:-4]
    jobs.append((twin, [flag for flag in flags if flag not in ('-g', '-fPIC', '-fpch-preprocess')]))

def check(job):
    source, flags = job
    command = ['x86_64-w64-mingw32-g++-posix', '-fsyntax-only', *flags, source]
    result = subprocess.run(command, capture_output=True, text=True)
    if result.returncode:
        print(f'{source}\n{result.stderr}', file=sys.stderr)
    return result.returncode == 0

with ThreadPoolExecutor(int(sys.argv[1])) as pool:
    good = list(pool.map(check, jobs))
print(f'{sum(good)} of {len(jobs)} sources compile')
sys.exit(0 if jobs and all(good) else 1)
PYTHON
