"""tactile-log from the outside: from process to process against simulated sensors, and what it says when it cannot."""
import csv
import json
import os
import re
import resource
import signal
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

from simulator import PROGRAMS, Simulator

DOCUMENT = Path(__file__).parents[2] / 'docs' / 'recordings.md'
SENSORS = ('--sensor', '17@0x61', '--sensor', '55@0x65')


def recorder(*arguments, **how):
    return subprocess.Popen([PROGRAMS / 'tactile-log', '--link', 'uart', *map(str, arguments)], stderr=subprocess.PIPE,
                            text=True, **{'stdout': subprocess.PIPE, **how})


def ended(process):
    output, complaint = process.communicate(timeout=60)
    return process.returncode, output, complaint


def wait_for(condition, seconds=40):
    end = time.monotonic() + seconds
    while not condition():
        if time.monotonic() > end:
            raise AssertionError('nothing came')
        time.sleep(0.05)


class TestRecorder(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def files(self):
        return sorted(path for path in self.folder.rglob('*__*'))

    def test_tables_until_the_signal(self):
        with Simulator(*SENSORS) as line:
            process = recorder('--device', line.port, '--out', self.folder / 'new')
            wait_for(lambda: len(self.files()) == 2 and all(f.stat().st_size > 9000 for f in self.files()))
            process.send_signal(signal.SIGINT)
            self.assertEqual(ended(process), (0, '', ''))
        for path, columns in zip(self.files(), (28, 33)):
            with path.open(encoding='utf8', newline='') as file:
                rows = list(csv.DictReader(file))
            self.assertEqual(len(rows[0]), columns)
            counters = [int(row['counter']) for row in rows]
            self.assertNotIn(0, [(b - a) % 256 for a, b in zip(counters, counters[1:])])
            self.assertTrue(all(None not in row and None not in row.values() for row in rows))
            self.assertLess(abs(int(rows[-1]['time_ms']) / 1000 - time.time()), 60)
            program = re.findall(r'```python\n(.*?)```', DOCUMENT.read_text(), re.S)[0]
            said = subprocess.run([sys.executable, '-c', program, path], capture_output=True, text=True, check=True).stdout
            self.assertEqual(said.split()[0], str(len(rows)))

    def test_lines_to_a_reader_that_goes(self):
        with Simulator(*SENSORS, '--faults', '3') as line:
            process = recorder('--device', line.port, '--stdout', '--format', 'jsonl', '--sensor', '0x66', '0x65')
            samples = [json.loads(process.stdout.readline()) for _ in range(50)]
            process.stdout.close()
            self.assertEqual(process.wait(20), 6)
            self.assertEqual(process.stderr.read(), 'tactile-log: nobody reads the output any more.\n')
            process.stderr.close()
        self.assertEqual({(sample['bus'], sample['address']) for sample in samples}, {(1, 0x65)})

    def test_outlives_the_sensors(self):
        port = self.folder / 'port'
        process = recorder('--device', port, '--out', self.folder, '--for', '60s')
        with Simulator(*SENSORS, '--link-to', port):
            wait_for(lambda: len(self.files()) == 2)
        with Simulator('--sensor', '2@0x62', '--link-to', port):
            wait_for(lambda: len(self.files()) == 3)
        process.send_signal(signal.SIGTERM)
        self.assertEqual(ended(process), (0, '', ''))

    def test_full_disk(self):
        # A program built to count its lines would complain, too: of having no room for the counts.
        with Simulator(*SENSORS) as line:
            process = recorder('--device', line.port, '--out', self.folder,
                               env={**os.environ, 'LLVM_PROFILE_FILE': os.devnull},
                               preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (4096, 4096)))
            code, _, complaint = ended(process)
        self.assertEqual(code, 5)
        self.assertRegex(complaint, r'^tactile-log: \S+\.csv: File too large\. Make room, or choose another place with --out\.\n$')
        for path in self.files():
            self.assertTrue(path.read_text().endswith('\n'))

    def test_says_what_is_wrong(self):
        for arguments, code, line in (
                ('--list', 0, None),
                ('--device /nowhere', 3, '/nowhere is not there. --list tells what is.'),
                ('--device /dev/null', 4, '/dev/null cannot be opened. End other programs that use it; docs/connecting.md '
                                          'tells who may.'),
                ('--out /proc/nowhere', 5, '/proc/nowhere cannot be made. Choose another folder with --out.'),
                ('--stdout', 2, 'one table has room for one sensor: name one --sensor, or use --format jsonl.'),
                ('--stdout --format recording', 2, '--stdout takes csv or jsonl.'),
                ('--for 10', 2, '--for takes a time like 10s, up to 500h.'),
                ('--sensor 0x70', 2, '--sensor takes an address from 0x01 to 0x6F.'),
                ('--link usb', 2, '--link uart, ch341 or ch347 is needed. See --help.')):
            with self.subTest(arguments):
                result = ended(recorder(*arguments.split(), cwd=self.folder))
                self.assertEqual((result[0], result[2]), (code, f'tactile-log: {line}\n' if line else ''))
        with Simulator('--sensor', '2@0x61') as line:
            with open('/dev/full', 'w') as full:
                process = recorder('--device', line.port, '--sensor', '0x61', '--stdout', stdout=full)
            self.assertEqual(ended(process)[::2], (5, 'tactile-log: standard output: No space left on device. Make room, or '
                                                      'choose another place with --out.\n'))
            code, _, complaint = ended(recorder('--device', line.port, '--sensor', '0x62', '--for', '2s', cwd=self.folder))
            self.assertEqual((code, complaint), (1, 'tactile-log: no sensor of a known model was heard. Look at power, cable '
                                                    'and --sensor.\n'))

    def test_has_no_widgets(self):
        needed = subprocess.run(['readelf', '-d', PROGRAMS / 'tactile-log'], capture_output=True, text=True, check=True).stdout
        self.assertIn('Qt5Core', needed)
        self.assertNotRegex(needed, 'Qt5(Gui|Widgets)')


unittest.main(verbosity=2)
