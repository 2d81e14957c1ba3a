"""tactile-sim from the outside, and the program of its document."""
import os
import re
import signal
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

from simulator import PROGRAMS, Simulator

DOCUMENT = Path(__file__).parents[2] / 'docs' / 'simulator.md'


def robot(port):
    program = re.search(r'```python\n(.*?)```', DOCUMENT.read_text(), re.S).group(1)
    return subprocess.run([sys.executable, '-c', program, port], capture_output=True, text=True, check=True, timeout=60).stdout


class TestSimulator(unittest.TestCase):
    def test_serves_the_program_of_the_document_again_and_again(self):
        with tempfile.TemporaryDirectory() as folder, \
                Simulator('--sensor', '17@0x61', '--sensor', '0x37@0x65', '--force', 'press',
                          '--link-to', f'{folder}/fingers', by=signal.SIGINT) as line:
            self.assertEqual(os.readlink(f'{folder}/fingers'), line.port)
            for _ in range(2):
                forces = re.findall(r'^(\d+\.\d{3}) N$', robot(f'{folder}/fingers'), re.M)
                self.assertEqual(len(forces), 10)
                self.assertGreater(len(set(forces)), 3)
            line.__exit__()
            self.assertEqual(line.status, 0)
            self.assertFalse(os.path.lexists(f'{folder}/fingers'))

    def test_idle_and_spoilt(self):
        with Simulator('--sensor', '17@0x61', '--force', 'idle', '--rate', '1000') as line:
            self.assertEqual(robot(line.port), '0.000 N\n' * 10)
        with Simulator('--sensor', '17@0x61', '--faults', '7') as line:
            self.assertIn('spoilt frame', ''.join(robot(line.port) for _ in range(12)))

    def test_says_what_is_wrong(self):
        with tempfile.TemporaryDirectory() as folder:
            kept = Path(folder, 'kept')
            kept.write_text('mine')
            for arguments, status, line in (
                    ('', 2, 'no sensor. Name one or more: --sensor 17@0x61.'),
                    ('--sensor 200@0x61', 2, '--sensor 200@0x61: wanted is a number of --list-models, @ and an '
                                             'address from 0x01 to 0x6F, like 17@0x61.'),
                    ('--sensor 17@0x61 --sensor 55@97', 2, '--sensor 55@97: another sensor has that address.'),
                    ('--sensor 17@0x61 --rate nan', 2, '--rate takes a number up to 1000.'),
                    ('--sensor 17@0x61 --force push', 2, '--force takes press, sweep or idle.'),
                    ('--sensor 17@0x61 --faults x', 2, '--faults takes a whole number.'),
                    (f'--sensor 17@0x61 --link-to {kept}', 1,
                     f'{kept} cannot be made: File exists. Choose another name for --link-to.')):
                with self.subTest(arguments):
                    done = subprocess.run([PROGRAMS / 'tactile-sim', *arguments.split()], capture_output=True, text=True)
                    self.assertEqual((done.returncode, done.stderr), (status, f'tactile-sim: {line}\n'))
            self.assertEqual(kept.read_text(), 'mine')
        models = subprocess.run([PROGRAMS / 'tactile-sim', '--list-models'], capture_output=True, text=True).stdout
        self.assertRegex(models, r'(?m)^ +17 +78 +16 +2 +KV-W1 ')


unittest.main(verbosity=2)
