"""The settings file, its option boxes, and the switch that starts the program hidden."""

import os
import signal

from harness import SAVE_LOG, DesktopTest, main, wait_until

BOXES = ("Do not save log file", "Minimize to system tray",
         "Play sound when a new cookie file is added", "Play sound when a cookie file is removed")


def settings(save_log, to_tray, sound1, sound2):
    values = zip(("SaveLog", "ToTray", "PlaySound1", "PlaySound2"),
                 (save_log, to_tray, sound1, sound2))
    return "".join(f"{key}={value}\r\n" for key, value in values).encode()


DEFAULTS = (False, True, True, True)
# What stands in the file, and the options that it means.
FILES = [
    (None, DEFAULTS),
    (b"", DEFAULTS),
    (settings(True, False, False, True), (True, False, False, True)),
    (settings(False, True, True, False), (False, True, True, False)),
    (b"SAVELOG=TRUE\r\ntotray=false\r\n", (True, False, True, True)),
    (b"ToTray=0\rSaveLog=-1\rPlaySound1=1\rPlaySound2=0", (True, False, True, False)),
    (b"ToTray=False\r\nToTray=\r\nToTray=nay\r\nSaveLog=yes\r\n", (False, False, True, True)),
    (b"no sign\r\n=True\r\n\r\nSaveLog =True\r\n ToTray=False\r\nPlaySound1=False=False\r\n"
     b"Colour=True\r\nPlaySound2=True\r\nPlaySound2=False\r\n", (False, True, True, False)),
]


class SettingsTest(DesktopTest):
    def boxes(self, program):
        return [program.check_box(caption) for caption in BOXES]

    def stored(self, program):
        return (program.folder / "config.ini").read_bytes()

    def test_read_shown_and_written(self):
        for content, options in FILES:
            with self.subTest(content):
                program = self.started(config=content)
                save_log, *others = options
                self.assertEqual([box.checked for box in self.boxes(program)],
                                 [not save_log, *others])
                self.assertEqual(program.close(), 0)
                self.assertEqual(self.stored(program), settings(*options))
                self.assertEqual(sorted(os.listdir(program.folder / "log")), [])

    def test_ticks_reach_the_file(self):
        program = self.started()
        boxes = self.boxes(program)
        for tab, number in (("Options", 0), ("Options", 1), ("Sound", 2), ("Sound", 3)):
            program.select_tab(tab)
            ticked = boxes[number].checked
            boxes[number].click()
            wait_until(lambda: boxes[number].checked != ticked, BOXES[number])
        self.assertFalse((program.folder / "config.ini").exists())
        program.button("Stop").click()
        wait_until(lambda: program.button("Start").enabled, "the stop")
        self.assertEqual(program.close(), 0)
        self.assertEqual(self.stored(program), settings(True, False, False, False))
        program.start()
        self.assertEqual([box.checked for box in self.boxes(program)], [False] * 4)

    def test_ways_to_end(self):
        """Only an end of the program's own writes the file; requests from outside are that too."""
        changed = settings(False, False, True, True)
        for number, code, content in ((signal.SIGTERM, 0, changed), (signal.SIGINT, 0, changed),
                                      (signal.SIGHUP, 0, changed), (signal.SIGKILL, -9, None)):
            with self.subTest(number):
                program = self.started()
                box = program.check_box("Minimize to system tray")
                program.select_tab("Options")
                box.click()
                wait_until(lambda: not box.checked, "the box to be clear")
                program.process.send_signal(number)
                self.assertEqual(program.process.wait(10), code)
                path = program.folder / "config.ini"
                self.assertEqual(path.read_bytes() if path.exists() else None, content)

    def test_folder_of_any_name(self):
        program = self.program(config=SAVE_LOG)
        name = os.fsdecode("blank ß ".encode() + b"caf\xe9")
        program.folder = program.folder.rename(program.folder.with_name(name))
        program.start()
        (program.cookies / "new.txt").touch()
        program.wait_for_log(1)
        program.select_tab("Options")
        program.check_box("Minimize to system tray").click()
        self.assertEqual(program.end(), 0)
        self.assertEqual(self.stored(program), settings(True, False, False, False))

    def test_file_that_cannot_be_written(self):
        """A folder in its place: read as nothing, not written, and no harm to the end."""
        program = self.program()
        (program.folder / "config.ini").mkdir()
        program.start()
        self.assertEqual([box.checked for box in self.boxes(program)], [True] * 4)
        self.assertEqual(program.close(), 0)
        self.assertEqual(os.listdir(program.folder / "config.ini"), [])

    def test_switch(self):
        for switch, hidden in (((), False), (("/1",), True), ((" /1 ",), True),
                               (("/1 x",), False), (("/1", "x"), False), (("/2",), False)):
            with self.subTest(switch):
                program = self.started(switch=switch)
                wait_until(lambda: program.mapped() != hidden, f"hidden: {hidden}")
                # A hidden window watches all the same.
                (program.cookies / "new.txt").touch()
                wait_until(lambda: len(program.log_lines()) == 1, "the report")
                self.assertEqual(program.mapped(), not hidden)
                self.assertEqual(program.end(), 0)


if __name__ == "__main__":
    main()
