"""The autostart entry: what a desktop finds there at logon, and what it starts from it."""

import contextlib
import os
import signal
from pathlib import Path

from harness import SAVE_LOG, DesktopTest, main, run, wait_until

FOLDERS = ["plain", "with blanks", "it's \"quoted\"", "100% %f %%", "a$HOME`x`", "back\\slash",
           "semi;colon&amp", "ümlaut"]


class AutostartTest(DesktopTest):
    def entry(self, program):
        return program.folder.parent / "config/autostart/Quillmere.desktop"

    def assert_starts(self, program, entry):
        """The entry is valid, and what a desktop starts from it is this program, hidden."""
        run("desktop-file-validate", entry)
        expected = [str(program.folder / "quillmere"), "/1"]
        # The program passes a shell on its way, if need be, but not one that stays.
        self.desktop.start("gio", "launch", str(entry), env=program.env)
        number = wait_until(lambda: self.process_of(expected, program), f"{expected} to run")
        os.kill(number, signal.SIGTERM)
        wait_until(lambda: not self.process_of(expected, program), "its end")

    def process_of(self, words, program):
        for folder in Path("/proc").glob("[0-9]*"):
            with contextlib.suppress(OSError):
                command = (folder / "cmdline").read_bytes().decode(errors="replace").split("\0")[:-1]
                if command == words and int(folder.name) != program.process.pid:
                    return int(folder.name)
        return None

    def tick(self, program):
        program.select_tab("Options")
        program.check_box("Start with windows").click()

    def test_tick_and_untick(self):
        program = self.started(config=SAVE_LOG)
        entry = self.entry(program)
        self.assertFalse(entry.exists())
        self.tick(program)
        wait_until(entry.exists, "the entry")
        self.assert_starts(program, entry)
        program.check_box("Start with windows").click()
        wait_until(lambda: not entry.exists(), "the entry to go")
        program.check_box("Start with windows").click()
        wait_until(entry.exists, "the entry")
        program.end()
        self.assertTrue(entry.exists())

    def test_moved_program(self):
        """Any start from the new place puts the entry right, whatever the folder is called."""
        program = self.started(config=SAVE_LOG)
        entry = self.entry(program)
        self.tick(program)
        wait_until(entry.exists, "the entry")
        program.end()
        for name in FOLDERS:
            with self.subTest(folder=name):
                moved = program.folder.parent / name
                program.folder.rename(moved)
                program.folder = moved
                program.window = None
                program.start()
                self.assert_starts(program, entry)
                self.assertTrue(program.check_box("Start with windows").checked)
                program.end()


if __name__ == "__main__":
    main()
