"""Thousands of changes at once: every one is reported once, none twice, none missed."""

import re
import unittest
from collections import Counter
from pathlib import Path

from harness import SAVE_LOG, DesktopTest, main, wait_until

FILES = 10_000
QUEUE = int(Path("/proc/sys/fs/inotify/max_queued_events").read_text())


def storm(program, count, work):
    for number in range(count):
        work(program.cookies / f"storm{number}.txt")


class StormTest(DesktopTest):
    def check_once_each(self, program, added, removed=0):
        """Each report is made once; looks again until no more come."""
        seen = [0, 0]

        def settled():
            seen.append(program.log_file().count(b"\r\n"))
            return (seen[-1] >= added + removed and len(set(seen[-100:])) == 1
                    and len(seen) > 100)

        wait_until(settled, f"{added + removed} reports", 240)
        text = re.compile(rb" - Cookie file (\w+): storm(\d+)\.txt, ")
        reports = Counter((kind.decode(), int(number))
                          for kind, number in text.findall(program.log_file()))
        expected = Counter(("added", number) for number in range(added))
        expected += Counter(("removed", number) for number in range(removed))
        self.assertEqual(reports - expected, Counter(), "reported twice, or made up")
        self.assertEqual(expected - reports, Counter(), "missed")

    def test_storm(self):
        program = self.started(config=SAVE_LOG, accessible=False)
        storm(program, FILES, Path.touch)
        self.check_once_each(program, FILES)
        storm(program, FILES, Path.unlink)
        self.check_once_each(program, FILES, FILES)
        self.assertEqual(program.end(), 0)

    @unittest.skipIf(QUEUE > 1_000_000, "the kernel's queue is too long to overflow here")
    def test_queue_overflow(self):
        program = self.started(config=SAVE_LOG, accessible=False)
        with program.paused():
            # Events of two files in turn, which the queue does not fold into one.
            for number in range(QUEUE + 100):
                (program.cookies / f"{'ab'[number % 2]}.dat").touch()
            storm(program, 1000, Path.touch)
        self.check_once_each(program, 1000)
        # The watch still lives.
        storm(program, 1000, Path.unlink)
        self.check_once_each(program, 1000, 1000)


if __name__ == "__main__":
    main()
