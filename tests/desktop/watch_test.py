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
NOW = re.compile(r"(\d{1,2}/\d{1,2}/\d{4} \d{1,2}:\d\d:\d\d [AP]M) - Cookie file (.*)")
JANE = "jane@present[1].txt"
added = f"added: {{}}, {{}} bytes, {OLD_TEXT}".format
removed = f"removed: {{}}, {{}} bytes, {OLD_TEXT}".format
modified = f"modified: {{}} - {{}}bytes {OLD_TEXT} => {{}} bytes {NEW_TEXT}".format


def write(path, size, moment=OLD):
    path.write_bytes(b"x" * size)
    os.utime(path, (moment, moment))


class WatchTest(DesktopTest):
    def test_each_kind_of_change(self):
        program = self.program(config=SAVE_LOG)
        folder, elsewhere = program.cookies, program.cookies.with_name("elsewhere")
        elsewhere.mkdir()
        write(folder / JANE, 1234)
        write(elsewhere / "Case.txt", 5)
        for number in range(12):
            write(folder / f"old{number}.txt", 1)
        at_start = os.listdir(folder)
        program.start()

        def rename(old, new):
            return lambda: os.rename(old, new)

        def other_case():
            os.rename(folder / "Case.txt", folder / "cASE.txt")
            write(folder / "beside.txt", 2)

        def other_things():
            write(folder / "note.log", 3)
            (folder / "sub.txt").mkdir()
            write(folder / "sub.txt" / "inner.txt", 3)
            (folder / JANE).chmod(0o600)
            write(folder / "marker.TXT", 0)

        def many():
            for number in range(12):
                write(folder / f"twin{number}.txt", 1)
                if number % 2 == 0:
                    (folder / f"old{number}.txt").unlink()
                else:
                    os.utime(folder / f"old{number}.txt", (NEW, NEW))
            write(folder / "passing.txt", 1)
            (folder / "passing.txt").unlink()

        def lines_of_many():
            """What is there in the folder's order, what has gone at the end."""
            there = os.listdir(folder)
            return ([(added(name, "1") if name.startswith("twin") else modified(name, "1", "1"))
                     for name in there if name.startswith(("twin", "old"))]
                    + [removed(name, "1") for name in at_start if name not in there])

        # Each change, and the lines that it gives.
        steps = [
            (lambda: write(folder / "new.txt", 1234567), [added("new.txt", "1,234,567")]),
            (lambda: write(folder / JANE, 1310, NEW), [modified(JANE, "1,234", "1,310")]),
            (rename(elsewhere / "Case.txt", folder / "Case.txt"), [added("Case.txt", "5")]),
            (other_case, [added("beside.txt", "2")]),
            (lambda: write(folder / "cASE.txt", 0, NEW), [modified("cASE.txt", "5", "")]),
            (lambda: os.utime(folder / "beside.txt", (NEW, NEW)),
             [modified("beside.txt", "2", "2")]),
            (rename(folder / "beside.txt", elsewhere / "in.txt"),
             [removed("beside.txt", "2").replace(OLD_TEXT, NEW_TEXT)]),
            (rename(folder / "new.txt", folder / "other.txt"),
             [added("other.txt", "1,234,567"), removed("new.txt", "1,234,567")]),
            (other_things, [added("marker.TXT", "")]),
            ((folder / "marker.TXT").unlink, [removed("marker.TXT", "")]),
            (many, lines_of_many),
            # The log file has the very bytes of a name.
            (lambda: write(folder / os.fsdecode(b"caf\xe9 \x80.txt"), 12),
             [added(os.fsdecode(b"caf\xe9 \x80.txt"), "12")]),
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
        self.assertEqual(program.log_lines()[:-1], lines[:-1])
        for line in lines:
            told = datetime.strptime(NOW.match(line)[1] + " +0530", "%m/%d/%Y %I:%M:%S %p %z")
            self.assertLess(abs(time.time() - told.timestamp()), 120, line)


if __name__ == "__main__":
    main()
