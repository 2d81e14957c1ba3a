"""A simulator for tests, and where the programs are."""
import signal
import subprocess
import sys
from pathlib import Path

PROGRAMS = Path(sys.argv.pop(1))


class Simulator:
    """A simulator that is served while the block runs; ends by the signal and gives its status."""

    def __init__(self, *arguments, by=signal.SIGTERM):
        self.command = [PROGRAMS / 'tactile-sim', *arguments]
        self.by = by

    def __enter__(self):
        self.process = subprocess.Popen(self.command, stdout=subprocess.PIPE, text=True)
        self.port = self.process.stdout.readline().strip()
        return self

    def __exit__(self, *_):
        self.process.send_signal(self.by)
        self.status = self.process.wait(20)
        self.process.stdout.close()
