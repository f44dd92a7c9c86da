"""What the program for Windows costs on a desktop, under Wine: beside a bare window of as many of the
system's own controls (windows/bare.cpp), each in a Wine of its own."""

import contextlib
import shutil
import statistics
import time
from pathlib import Path

import desktop as measure
from harness import end_process, wait_until

ROOT = Path(__file__).resolve().parents[1]


class Wine:
    """One prefix, with what runs in it."""

    def __init__(self, desktop, prefix):
        self.desktop = desktop
        self.prefix = prefix

    def command(self, *words):
        return [str(word) for word in (ROOT / "scripts/run-windows-program", self.prefix, *words)]

    def start(self, program):
        # Without the session's bus, at which Wine would look for devices.
        env = {key: value for key, value in self.desktop.env.items() if "BUS" not in key}
        return self.desktop.start(*self.command(program), env=env)

    def processes(self):
        """All of the prefix, the server included."""
        found = []
        for folder in Path("/proc").glob("[0-9]*"):
            with contextlib.suppress(OSError):  # it ended meanwhile
                if f"WINEPREFIX={self.prefix}\0".encode() in (folder / "environ").read_bytes():
                    found.append(folder)
        return found

    def process(self, program):
        for folder in self.processes():
            with contextlib.suppress(OSError):
                if program.name.encode() in (folder / "cmdline").read_bytes():
                    return folder

    def processor_seconds(self):
        return sum(int(file.read_text().split()[0]) for folder in self.processes()
                   for file in folder.glob("task/*/schedstat")) / 1e9

    def private_bytes(self, program):
        """What the program's process shares with no other."""
        lines = (self.process(program) / "smaps_rollup").read_text().splitlines()
        return sum(int(line.split()[1]) for line in lines if line.startswith("Private_")) * 1024


def measure_start(screen, own, bare, wine, rounds):
    def seconds(program):
        return measure.seconds_to_window(screen, lambda: wine.start(program))

    seconds(bare)  # the first one also starts Wine
    times = [(seconds(own), seconds(bare)) for _ in range(rounds)]
    return [statistics.median(column) for column in zip(*times)]


def measure_rest(wines, programs, seconds, rounds):
    """Both side by side. Processor seconds and private memory, each a pair."""
    running = [wine.start(program) for wine, program in zip(wines, programs)]
    for wine, program in zip(wines, programs):
        wait_until(lambda: wine.process(program), program.name, 60)
    time.sleep(15)  # until the services of both have settled
    used = []
    for _ in range(rounds):
        before = [wine.processor_seconds() for wine in wines]
        time.sleep(seconds)
        used.append([wine.processor_seconds() - was for wine, was in zip(wines, before)])
    memory = [wine.private_bytes(program) for wine, program in zip(wines, programs)]
    for process in running:
        end_process(process)
    return [statistics.median(column) for column in zip(*used)], memory


def portable_copy(app, folder):
    shutil.rmtree(folder, ignore_errors=True)
    shutil.copytree(app, folder, ignore=shutil.ignore_patterns("log", "config.ini"))
    return folder / "quillmere.exe"
