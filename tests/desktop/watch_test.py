"""The watch and its reports: another process works in the folder, the log tells of it."""

import os
import re
import subprocess
import time
from datetime import datetime

from harness import SAVE_LOG, DesktopTest, main, wait_until

# The program runs five and a half hours east of Greenwich.
OLD = datetime.fromisoformat("2004-03-07T03:35:02+00:00").timestamp()
OLD_TEXT = "2004-03-07 09:05:02"
NEW = OLD + 3600
NEW_TEXT = "2004-03-07 10:05:02"
NOW = re.compile(r"(\d{1,2}/\d{1,2}/\d{4} \d{1,2}:\d\d:\d\d [AP]M) - (.*)")


def write(path, size, moment):
    path.write_bytes(b"x" * size)
    os.utime(path, (moment, moment))


def added(name, size, moment=OLD_TEXT):
    return f"Cookie file added: {name}, {size} bytes, {moment}"


def removed(name, size, moment=OLD_TEXT):
    return f"Cookie file removed: {name}, {size} bytes, {moment}"


def modified(name, old, new, moments=(OLD_TEXT, NEW_TEXT)):
    return f"Cookie file modified: {name} - {old}bytes {moments[0]} => {new} bytes {moments[1]}"


class WatchTest(DesktopTest):
    def check_log(self, program, expected):
        """Both logs hold exactly these lines, each headed by the present time."""
        lines = program.wait_for_log(len(expected))
        texts = []
        for line in lines:
            self.assertRegex(line, NOW)
            head, text = NOW.match(line).groups()
            texts.append(text)
            told = datetime.strptime(head + " +0530", "%m/%d/%Y %I:%M:%S %p %z").timestamp()
            self.assertLess(abs(time.time() - told), 120, line)
        self.assertEqual(texts, expected)
        self.assertEqual(program.log_lines(), lines)

    def test_each_kind_of_change(self):
        program = self.program(config=SAVE_LOG)
        folder, elsewhere = program.cookies, program.cookies.parent / "elsewhere"
        elsewhere.mkdir()
        write(folder / "jane@present[1].txt", 1234, OLD)
        write(folder / "Case.txt", 5, OLD)
        write(elsewhere / "in.txt", 999, OLD)
        write(elsewhere / "over.tmp", 1310, NEW)
        program.start()
        name = "jane@present[1].txt"

        def rename(old, new):
            return lambda: os.rename(old, new)

        def other_case():
            os.rename(folder / "Case.txt", folder / "cASE.txt")
            write(folder / "beside.txt", 2, OLD)

        def other_things():
            write(folder / "note.log", 3, OLD)
            (folder / "sub.txt").mkdir()
            write(folder / "sub.txt" / "inner.txt", 3, OLD)
            (folder / name).chmod(0o600)
            subprocess.run(["touch", folder / "marker.TXT"], check=True)
            os.utime(folder / "marker.TXT", (OLD, OLD))

        # What is done, and the lines that it gives.
        steps = [
            (lambda: write(folder / "new.txt", 7, OLD), [added("new.txt", "7")]),
            (lambda: write(folder / "empty.txt", 0, OLD), [added("empty.txt", "")]),
            (lambda: write(folder / "big.txt", 1234567, OLD), [added("big.txt", "1,234,567")]),
            (lambda: write(folder / name, 1310, NEW), [modified(name, "1,234", "1,310")]),
            (lambda: os.utime(folder / name, (OLD, OLD)),
             [modified(name, "1,310", "1,310", (NEW_TEXT, OLD_TEXT))]),
            (rename(elsewhere / "over.tmp", folder / name), [modified(name, "1,310", "1,310")]),
            (rename(elsewhere / "in.txt", folder / "in.txt"), [added("in.txt", "999")]),
            (rename(folder / "in.txt", elsewhere / "in.txt"), [removed("in.txt", "999")]),
            (rename(folder / "new.txt", folder / "other.txt"),
             [added("other.txt", "7"), removed("new.txt", "7")]),
            (other_case, [added("beside.txt", "2")]),
            (lambda: write(folder / "cASE.txt", 0, NEW), [modified("cASE.txt", "5", "")]),
            (rename(folder / "other.txt", folder / "other.old"), [removed("other.txt", "7")]),
            (other_things, [added("marker.TXT", "")]),
            ((folder / "empty.txt").unlink, [removed("empty.txt", "")]),
            (lambda: write(folder / "käse\xa0ö.txt", 1, OLD), [added("käse\xa0ö.txt", "1")]),
        ]
        expected = []
        for change, lines in steps:
            # Standing still meanwhile, the program meets the whole step at once.
            with program.paused():
                change()
            expected += lines
            program.wait_for_log(len(expected))
        self.check_log(program, expected)

    def test_many_changes_at_once(self):
        """Modified and added files stand in the folder's order, removed ones come last."""
        program = self.program(config=SAVE_LOG)
        folder = program.cookies
        for number in range(40):
            write(folder / f"old{number:02}.txt", number + 1, OLD)
        program.start()
        with program.paused():
            for number in range(40):
                path = folder / f"old{number:02}.txt"
                if number % 3 == 0:
                    path.unlink()
                elif number % 3 == 1:
                    write(path, number + 1, NEW)
                write(folder / f"new{number:02}.txt", number + 1, OLD)
                write(folder / "twice.txt", number + 1, NEW)
            write(folder / "passing.txt", 1, OLD)
            (folder / "passing.txt").unlink()
            seen = [entry.name for entry in os.scandir(folder)]
        lines = [NOW.match(line).group(2) for line in program.wait_for_log(40 + 14 + 13 + 1)]
        number_of = {name: int(name[3:5]) + 1 for name in seen if name != "twice.txt"}
        expected = []
        for name in seen:
            if name == "twice.txt":
                expected.append(added(name, "40", NEW_TEXT))
            elif name.startswith("new"):
                expected.append(added(name, str(number_of[name])))
            elif number_of[name] % 3 == 2:
                expected.append(modified(name, number_of[name], number_of[name]))
        self.assertEqual(lines[:len(expected)], expected)
        self.assertCountEqual(lines[len(expected):], [
            removed(f"old{number:02}.txt", str(number + 1)) for number in range(0, 40, 3)])

    def test_names_keep_their_bytes(self):
        program = self.started(config=SAVE_LOG)
        folder = os.fsencode(program.cookies)
        with program.paused():
            with open(folder + b"/caf\xe9 \x80.txt", "wb") as file:
                file.write(b"x" * 12)
            os.utime(folder + b"/caf\xe9 \x80.txt", (OLD, OLD))
        program.wait_for_log(1)
        self.assertTrue(program.log_file().endswith(
            b" - Cookie file added: caf\xe9 \x80.txt, 12 bytes, " + OLD_TEXT.encode() + b"\r\n"))

    def test_folder_goes_and_comes_back(self):
        program = self.program(config=SAVE_LOG)
        folder = program.cookies
        write(folder / "one.txt", 1, OLD)
        program.start()
        away = folder.with_name("away")
        folder.rename(away)
        expected = [removed("one.txt", "1")]
        program.wait_for_log(1)
        away.rename(folder)
        expected += [added("one.txt", "1")]
        program.wait_for_log(2)
        write(folder / "one.txt", 2, NEW)
        expected += [modified("one.txt", "1", "2")]
        self.check_log(program, expected)

    def test_log_option_takes_effect_at_once(self):
        program = self.started()
        program.select_tab("Options")
        box = program.check_box("Do not save log file")
        self.assertTrue(box.checked)

        def change(name):
            count = len(program.log_lines())
            with program.paused():
                write(program.cookies / name, 1, OLD)
            wait_until(lambda: len(program.log_lines()) == count + 1, name)

        change("before.txt")
        self.assertEqual(program.log_file(), b"")
        box.click()
        wait_until(lambda: not box.checked, "the box to be clear")
        change("while.txt")
        box.click()
        wait_until(lambda: box.checked, "the box to be ticked")
        change("after.txt")
        lines = program.log_file().decode().split("\r\n")
        self.assertEqual([NOW.match(line).group(2) for line in lines[:-1]],
                         [added("while.txt", "1")])
        self.assertEqual(program.log_lines()[1:2], lines[:1])
        self.assertEqual(lines[-1], "")

    def test_log_folder_lost(self):
        """Lines that find no log folder are lost to the file alone; the next start makes it."""
        program = self.started(config=SAVE_LOG)
        (program.folder / "log").rmdir()
        write(program.cookies / "lost.txt", 1, OLD)
        wait_until(program.log_lines, "the line on the screen")
        self.assertFalse((program.folder / "log").exists())
        program.end()
        program.start()
        self.assertTrue((program.folder / "log").is_dir())


if __name__ == "__main__":
    main()
