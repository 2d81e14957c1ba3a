"""Runs the benchmark programs and makes one table of what they print: figures.py FOLDER [options]."""
import argparse
import json
import re
import subprocess
import sys
from pathlib import Path

# Program, pattern of its lines with a name and a value, the limit by name (a word of it), and whether the value may be
# at most or must be at least that. Values are ratios to a reference of the same run unless the name says a unit.
PROGRAMS = [
    ('bench_data', r'(?P<name>[^:]+): .* ratio (?P<value>[\d.]+)',
     {'decoder': 1.5, 'length of a sample': 5, 'length of an answer': 1.5, 'text': 8, 'floats': 15, 'firmware': 5}, max),
    ('bench_panel_sample', r'(?P<name>[^:]+): .* ratio (?P<value>[\d.]+)', {'row': 1.3, 'sample': 1.5}, max),
    ('bench_views', r'(?P<name>[^:]+): .* ratio (?P<value>[\d.]+)', {'': 1.5}, max),
    ('bench_debug_log', r'(?P<name>entry \d+).* (?P<last>entry \d+): .* ratio (?P<value>[\d.]+)', {'': 2.0}, max),
    ('bench_start', r'(?P<name>[^:]+): .* ratio (?P<value>[\d.]+)', {'': 3.0}, max),
    ('bench_update', r'(?P<name>\S.*?) +\d+ ms: .* ratio (?P<value>[\d.]+)', {'': 1.05}, max),
    ('bench_bus_share', r'(?P<name>.*sensors): .*\((?P<value>[\d.]+) without', {'': 1.05}, max),
    ('bench_serial_rate', r'.* allowed .* ratio (?P<value>[\d.]+)', {'': 0.9}, min),
    ('bench_log', r'(?P<name>recording takes) (?P<value>[\d.]+) of a core', {'': 0.1}, max),
    ('bench_plot', r'(?P<name>\d+ curves at \d+ Hz).* (?P<value>[\d.]+) cores', {'': 0.5}, max),
    ('bench_window', r'(?P<name>connect to the first sample): (?P<value>[\d.]+) ms', {'': 1500}, max),
    ('bench_window', r'(?P<name>window with \d+ panels).* ratio (?P<value>[\d.]+)', {'': 1.5}, max),
]


def limit_of(limits, name):
    return next(limit for word, limit in limits.items() if word in name)


def measure(folder, only):
    figures = {}
    outputs = {}
    for program, pattern, limits, bound in PROGRAMS:
        path = folder / program
        if only not in program or not path.exists():
            continue
        if program not in outputs:
            print(f'{program} ...', file=sys.stderr, flush=True)
            done = subprocess.run([path], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
            outputs[program] = done.stdout
        for line in outputs[program].splitlines():
            found = re.match(pattern, line)
            if found:
                name = found.groupdict().get('name') or program
                figures[f'{program[6:]}: {name.strip()}'] = {
                    'value': float(found['value']), 'limit': limit_of(limits, name), 'bound': bound.__name__}
    return figures


def report(figures, earlier):
    failures = 0
    print(f'{"figure":66} {"value":>8} {"limit":>10}' + ('  earlier    change' if earlier else ''))
    for name, figure in figures.items():
        value, limit = figure['value'], figure['limit']
        good = value <= limit if figure['bound'] == 'max' else value >= limit
        failures += not good
        line = f'{name[:66]:66} {value:8.3f} {"<=" if figure["bound"] == "max" else ">="}{limit:8g}'
        if name in earlier:
            before = earlier[name]['value']
            line += f' {before:8.3f} {100 * (value / before - 1):+8.1f} %'
        print(line + ('' if good else '  BEYOND'))
    return failures


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument('folder', type=Path)
    parser.add_argument('--json', type=Path)
    parser.add_argument('--against', type=Path)
    parser.add_argument('--only', default='')
    options = parser.parse_args()
    figures = measure(options.folder, options.only)
    if options.json:
        options.json.write_text(json.dumps(figures, indent=2) + '\n')
    earlier = json.loads(options.against.read_text()) if options.against else {}
    return 1 if report(figures, earlier) else 0


if __name__ == '__main__':
    sys.exit(main())
