"""Thousands of changes at once: every one is reported once, none twice, none missed."""

import re
import subprocess
import sys
import unittest
from collections import Counter
from pathlib import Path

from harness import SAVE_LOG, DesktopTest, main, wait_until

FILES = 10_000
QUEUE = int(Path("/proc/sys/fs/inotify/max_queued_events").read_text())
CREATE = """
import os, sys
folder, first, last = sys.argv[1], int(sys.argv[2]), int(sys.argv[3])
for number in range(first, last):
    os.close(os.open(f"{folder}/storm{number}.txt", os.O_CREAT | os.O_WRONLY))
"""
DELETE = """
import os, sys
folder, first, last = sys.argv[1], int(sys.argv[2]), int(sys.argv[3])
for number in range(first, last):
    os.unlink(f"{folder}/storm{number}.txt")
"""
# Events of two files in turn, which the queue does not fold into one.
FILL_QUEUE = """
import os, sys
folder, count = sys.argv[1], int(sys.argv[2])
for name in ("a.dat", "b.dat"):
    open(f"{folder}/{name}", "w").close()
for number in range(count):
    os.utime(f"{folder}/{'ab'[number % 2]}.dat")
"""


def other_process(code, folder, *numbers):
    subprocess.run([sys.executable, "-c", code, folder, *map(str, numbers)], check=True)


class StormTest(DesktopTest):
    def reports(self, program, count):
        """How often each report was made, once no more come."""
        text = re.compile(rb" - Cookie file (\w+): storm(\d+)\.txt, ")
        seen = [0, 0]

        def settled():
            seen.append(program.log_file().count(b"\r\n"))
            return seen[-1] >= count and len(set(seen[-100:])) == 1 and len(seen) > 100

        wait_until(settled, f"{count} reports", 240)
        return Counter((kind.decode(), int(number))
                       for kind, number in text.findall(program.log_file()))

    def check_once_each(self, reports, added, removed=0):
        expected = Counter(("added", number) for number in range(added))
        expected += Counter(("removed", number) for number in range(removed))
        self.assertEqual(reports - expected, Counter(), "reported twice, or made up")
        self.assertEqual(expected - reports, Counter(), "missed")

    def test_storm(self):
        program = self.started(config=SAVE_LOG, accessible=False)
        other_process(CREATE, program.cookies, 0, FILES)
        self.check_once_each(self.reports(program, FILES), FILES)
        other_process(DELETE, program.cookies, 0, FILES)
        self.check_once_each(self.reports(program, 2 * FILES), FILES, FILES)
        self.assertEqual(program.end(), 0)

    @unittest.skipIf(QUEUE > 1_000_000, "the kernel's queue is too long to overflow here")
    def test_queue_overflow(self):
        program = self.started(config=SAVE_LOG, accessible=False)
        with program.paused():
            other_process(FILL_QUEUE, program.cookies, QUEUE + 100)
            other_process(CREATE, program.cookies, 0, 1000)
        self.check_once_each(self.reports(program, 1000), 1000)
        # The watch still lives.
        other_process(DELETE, program.cookies, 0, 1000)
        self.check_once_each(self.reports(program, 2000), 1000, 1000)


if __name__ == "__main__":
    main()
