"""The watch and its reports: another process works in the folder, the log tells of it."""

import os
import re
import time
from datetime import datetime

from harness import SAVE_LOG, DesktopTest, main

# The program runs five and a half hours east of Greenwich.
OLD = datetime.fromisoformat("2004-03-07T03:35:02+00:00").timestamp()
OLD_TEXT = "2004-03-07 09:05:02"
NEW = OLD + 3600
NEW_TEXT = "2004-03-07 10:05:02"
NOW = re.compile(r"(\d{1,2}/\d{1,2}/\d{4} \d{1,2}:\d\d:\d\d [AP]M) - (.*)")
JANE = "jane@present[1].txt"


def write(path, size, moment):
    path.write_bytes(b"x" * size)
    os.utime(path, (moment, moment))


def added(name, size):
    return f"Cookie file added: {name}, {size} bytes, {OLD_TEXT}"


def removed(name, size):
    return f"Cookie file removed: {name}, {size} bytes, {OLD_TEXT}"


def modified(name, old, new, moments=(OLD_TEXT, NEW_TEXT)):
    return f"Cookie file modified: {name} - {old}bytes {moments[0]} => {new} bytes {moments[1]}"


class WatchTest(DesktopTest):
    def test_each_kind_of_change(self):
        program = self.program(config=SAVE_LOG)
        folder, elsewhere = program.cookies, program.cookies.with_name("elsewhere")
        elsewhere.mkdir()
        write(folder / JANE, 1234, OLD)
        write(elsewhere / "Case.txt", 5, OLD)
        write(elsewhere / "over.tmp", 1310, NEW)
        for number in range(12):
            write(folder / f"old{number}.txt", 1, OLD)
        at_start = os.listdir(folder)
        program.start()

        def rename(old, new):
            return lambda: os.rename(old, new)

        def other_case():
            os.rename(folder / "Case.txt", folder / "cASE.txt")
            write(folder / "beside.txt", 2, OLD)

        def other_things():
            write(folder / "note.log", 3, OLD)
            (folder / "sub.txt").mkdir()
            write(folder / "sub.txt" / "inner.txt", 3, OLD)
            (folder / JANE).chmod(0o600)
            write(folder / "marker.TXT", 0, OLD)

        def many():
            for number in range(12):
                write(folder / f"twin{number}.txt", 1, OLD)
                if number % 2 == 0:
                    (folder / f"old{number}.txt").unlink()
                else:
                    os.utime(folder / f"old{number}.txt", (NEW, NEW))
            write(folder / "passing.txt", 1, OLD)
            (folder / "passing.txt").unlink()

        def lines_of_many():
            """What is there in the folder's order, what has gone at the end."""
            there = os.listdir(folder)
            return ([(added(name, "1") if name.startswith("twin") else modified(name, "1", "1"))
                     for name in there if name.startswith(("twin", "old"))]
                    + [removed(name, "1") for name in at_start if name not in there])

        # Each change, and the lines that it gives.
        steps = [
            (lambda: write(folder / "new.txt", 7, OLD), [added("new.txt", "7")]),
            (lambda: write(folder / "empty.txt", 0, OLD), [added("empty.txt", "")]),
            (lambda: write(folder / "big.txt", 1234567, OLD), [added("big.txt", "1,234,567")]),
            (lambda: write(folder / JANE, 1310, NEW), [modified(JANE, "1,234", "1,310")]),
            (lambda: os.utime(folder / JANE, (OLD, OLD)),
             [modified(JANE, "1,310", "1,310", (NEW_TEXT, OLD_TEXT))]),
            (rename(elsewhere / "over.tmp", folder / JANE), [modified(JANE, "1,310", "1,310")]),
            (rename(elsewhere / "Case.txt", folder / "Case.txt"), [added("Case.txt", "5")]),
            (other_case, [added("beside.txt", "2")]),
            (lambda: write(folder / "cASE.txt", 0, NEW), [modified("cASE.txt", "5", "")]),
            (rename(folder / "beside.txt", elsewhere / "in.txt"), [removed("beside.txt", "2")]),
            (rename(folder / "new.txt", folder / "other.txt"),
             [added("other.txt", "7"), removed("new.txt", "7")]),
            (rename(folder / "other.txt", folder / "other.old"), [removed("other.txt", "7")]),
            (other_things, [added("marker.TXT", "")]),
            ((folder / "empty.txt").unlink, [removed("empty.txt", "")]),
            (lambda: write(folder / "käse\xa0ö.txt", 1, OLD), [added("käse\xa0ö.txt", "1")]),
            (many, lines_of_many),
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

        # The file has the very bytes of a name.
        with program.paused():
            write(folder / os.fsdecode(b"caf\xe9 \x80.txt"), 12, OLD)
        program.wait_for_log(len(lines) + 1)
        self.assertTrue(program.log_file().endswith(
            b" - Cookie file added: caf\xe9 \x80.txt, 12 bytes, " + OLD_TEXT.encode() + b"\r\n"))


if __name__ == "__main__":
    main()
