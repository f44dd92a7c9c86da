"""The watch and its reports: each kind of change, and every one of thousands at once."""

import contextlib
import ctypes
import os
import re
import resource
import time
import unittest
from collections import Counter
from datetime import datetime
from pathlib import Path

from harness import MACHINE, SAVE_LOG, DesktopTest, Program, main, only_on, wait_until

# The program runs five and a half hours east of Greenwich.
OLD = datetime.fromisoformat("2004-03-07T03:35:02+00:00").timestamp()
OLD_TEXT = "2004-03-07 09:05:02"
NEW = OLD + 3600
NEW_TEXT = "2004-03-07 10:05:02"
NOW = re.compile(r"(\d{1,2}/\d{1,2}/\d{4} \d{1,2}:\d\d:\d\d [AP]M) - Cookie file (.*)")
INOTIFY = Path("/proc/sys/fs/inotify")
QUEUE = int((INOTIFY / "max_queued_events").read_text())
INSTANCES = int((INOTIFY / "max_user_instances").read_text())
MOST_FILES = resource.getrlimit(resource.RLIMIT_NOFILE)[1]
# Both logs show a name that is not UTF-8 alike.
STRANGE, STRANGE_SHOWN = ((os.fsdecode(b"caf\xe9 \x80.txt"), "caf\ufffd \ufffd.txt")
                          if MACHINE == "linux" else ["caf\xe9 \u3042.txt"] * 2)
STORM = int(os.environ.get("QUILLMERE_STORM", 10_000 if MACHINE == "linux" else 1000))
JANE = "jane@present[1].txt"
added = f"added: {{}}, {{}} bytes, {OLD_TEXT}".format
removed = f"removed: {{}}, {{}} bytes, {OLD_TEXT}".format
modified = f"modified: {{}} - {{}}bytes {OLD_TEXT} => {{}} bytes {NEW_TEXT}".format


def write(path, size, moment=OLD):
    path.write_bytes(b"x" * size)
    os.utime(path, (moment, moment))


def set_time(path, moment):
    """Wine 8 tells a time by itself as a change of attributes, so there the file is written too."""
    if MACHINE == "windows":
        path.write_bytes(path.read_bytes())
    os.utime(path, (moment, moment))


def listed(folder):
    """The names in the order in which the machine tells them."""
    return os.listdir(folder) if MACHINE == "linux" else sorted(os.listdir(folder), key=str.upper)


@contextlib.contextmanager
def inotify_used_up():
    """Takes all that the kernel grants a user, as other programs may."""
    resource.setrlimit(resource.RLIMIT_NOFILE, (MOST_FILES, MOST_FILES))
    take = ctypes.CDLL(None).inotify_init1
    with contextlib.ExitStack() as given_back:
        while (instance := take(os.O_CLOEXEC)) >= 0:
            given_back.callback(os.close, instance)
        yield


class WatchTest(DesktopTest):
    def test_each_kind_of_change(self):
        program = self.program(config=SAVE_LOG)
        folder, outside = program.cookies, program.cookies.with_name("outside")
        outside.mkdir()
        write(folder / JANE, 1234)
        write(outside / "Case.txt", 5)
        for number in range(12):
            write(folder / f"old{number}.txt", 1)
        at_start = listed(folder)
        program.start()

        def other_things():
            write(folder / "note.log", 3)
            (folder / "sub.txt").mkdir()
            write(folder / "sub.txt/inner.txt", 3)
            (folder / JANE).chmod(0o600)
            os.rename(folder / "Case.txt", folder / "cASE.txt")
            write(folder / "marker.TXT", 0)

        def many():
            for number in range(12):
                write(folder / f"twin{number}.txt", 1)
                if number % 2 == 0:
                    (folder / f"old{number}.txt").unlink()
                else:
                    set_time(folder / f"old{number}.txt", NEW)
            write(folder / "passing.txt", 1)
            (folder / "passing.txt").unlink()

        def lines_of_many():
            """What is there in the folder's order, what has gone at the end."""
            there = listed(folder)
            return ([added(name, "1") if name.startswith("twin") else modified(name, "1", "1")
                     for name in there if name.startswith(("twin", "old"))]
                    + [removed(name, "1") for name in at_start if name not in there])

        # Each change, and the lines that it gives.
        steps = [
            (lambda: write(folder / "new.txt", 1234567), [added("new.txt", "1,234,567")]),
            (lambda: os.rename(folder / "new.txt", folder / "other.txt"),
             [added("other.txt", "1,234,567"), removed("new.txt", "1,234,567")]),
            (lambda: os.rename(folder / "other.txt", outside / "other.txt"),
             [removed("other.txt", "1,234,567")]),
            (lambda: os.rename(outside / "Case.txt", folder / "Case.txt"),
             [added("Case.txt", "5")]),
            (other_things, [added("marker.TXT", "")]),
            (lambda: write(folder / "cASE.txt", 0, NEW), [modified("cASE.txt", "5", "")]),
            (lambda: set_time(folder / JANE, NEW), [modified(JANE, "1,234", "1,234")]),
            ((folder / "marker.TXT").unlink, [removed("marker.TXT", "")]),
            (many, lines_of_many),
            (lambda: write(folder / STRANGE, 12), [added(STRANGE_SHOWN, "12")]),
        ]
        expected = []
        for change, told in steps:
            # Standing still meanwhile, the program meets the whole step at once.
            with program.paused():
                change()
            expected += told() if callable(told) else told
            lines = program.wait_for_log(len(expected))
        # Both logs hold exactly these lines, each headed by the present time.
        self.assertEqual([NOW.match(line)[2] for line in lines], expected)
        self.assertEqual(program.log_lines(), lines)
        for line in lines:
            told = datetime.strptime(NOW.match(line)[1] + " +0530", "%m/%d/%Y %I:%M:%S %p %z")
            self.assertLess(abs(time.time() - told.timestamp()), 120, line)

    def check_storms(self, count, pause=contextlib.nullcontext, touches=0):
        """So many files come, and then go."""
        program = self.started(config=SAVE_LOG, accessible=False)
        expected = Counter()
        for told, work in (("added", Path.touch), ("removed", Path.unlink)):
            with pause(program):
                # Events of two files in turn, which the queue does not fold into one.
                for number in range(touches):
                    (program.cookies / f"{'ab'[number % 2]}.dat").touch()
                for number in range(count):
                    work(program.cookies / f"storm{number}.txt")
            expected.update(f"{told}: storm{number}.txt" for number in range(count))
            program.wait_for_log(expected.total(), 240)
            program.wait_for_rest()
            reports = Counter(program.told())
            self.assertEqual(reports - expected, Counter(), "reported twice, or made up")
            self.assertEqual(expected - reports, Counter(), "missed")

    def test_storm(self):
        self.check_storms(STORM)

    def delay(self, program, lines):
        begun = time.monotonic()
        program.wait_for_log(lines)
        return time.monotonic() - begun

    @only_on("linux")
    @unittest.skipIf(INSTANCES + 100 > MOST_FILES, "too many instances to use up")
    def test_inotify_used_up(self):
        program = self.program(config=SAVE_LOG, accessible=False)
        watching, program.watching = program.watching, program.find_window
        names = [f"{number}.txt" for number in range(1000)]
        with inotify_used_up():
            program.start()
            program.wait_for_rest()
            self.assertFalse(watching())
            delays = []
            for done in range(0, 1000, 250):
                for name in names[done:done + 250]:
                    (program.cookies / name).touch()
                delays.append(self.delay(program, done + 250))
            os.utime(program.cookies / names[0], (NEW, NEW))
            delays.append(self.delay(program, 1001))
            self.assertEqual(program.told()[-1], f"modified: {names[0]}")
            program.wait_for_rest()
            before = program.used()
            time.sleep(10)
            used = (program.used() - before) / 10
        wait_until(watching, "the watch, once there is an instance for it")
        program.wait_for_rest()
        (program.cookies / names[0]).unlink()
        print(f"looking: told after {max(delays):.1f} s at most, {used:.1%} of a processor for 1000 "
              f"files at rest; watching: {self.delay(program, 1002):.1f} s")
        self.assertLess(max(delays), 4)
        self.assertLess(used, 0.02)
        expected = Counter([f"added: {name}" for name in names])
        expected.update([f"modified: {names[0]}", f"removed: {names[0]}"])
        program.wait_for_rest()
        self.assertEqual(Counter(program.told()), expected)

    @only_on("linux")
    @unittest.skipIf(QUEUE > 1_000_000, "the kernel's queue is too long to overflow here")
    def test_queue_overflow(self):
        self.check_storms(1000, Program.paused, QUEUE + 100)


if __name__ == "__main__":
    main()
