"""Thousands of changes at once: every one is reported once, none twice, none missed."""

import contextlib
import re
import unittest
from collections import Counter
from pathlib import Path

from harness import SAVE_LOG, DesktopTest, Program, main

QUEUE = int(Path("/proc/sys/fs/inotify/max_queued_events").read_text())


class StormTest(DesktopTest):
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
            expected.update(f"{told}: storm{number}" for number in range(count))
            program.wait_for_log(expected.total(), 240)
            program.wait_for_rest()
            reports = Counter(re.findall(r"file (\w+: \w+)\.txt, ", program.log_file().decode()))
            self.assertEqual(reports - expected, Counter(), "reported twice, or made up")
            self.assertEqual(expected - reports, Counter(), "missed")

    def test_storm(self):
        self.check_storms(10_000)

    @unittest.skipIf(QUEUE > 1_000_000, "the kernel's queue is too long to overflow here")
    def test_queue_overflow(self):
        self.check_storms(1000, Program.paused, QUEUE + 100)


if __name__ == "__main__":
    main()
