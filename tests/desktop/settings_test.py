"""The settings file, the option boxes, the switch of the start, and the start with the desktop."""

import os
import signal
from pathlib import Path

from harness import (MACHINE, ROOT, DesktopTest, main, only_on, options, run, running, wait_until)

BOXES = {"Do not save log file": "Options", "Minimize to system tray": "Options",
         "Play sound when a new cookie file is added": "Sound",
         "Play sound when a cookie file is removed": "Sound"}
RUN_KEY = r"HKCU\Software\Microsoft\Windows\CurrentVersion\Run"
HIDDEN = " /1 " if MACHINE == "linux" else "/1"  # Wine would put a word with blanks into quotes
# The file and the switch, whether that starts hidden, the options then, the signal or close box.
STARTS = [
    (options(True, False, False, True), (), False, (True, False, False, True), None),
    (b"ToTray=0\rSaveLog=-1\rPlaySound1=1\rPlaySound2=0", (HIDDEN,), True,
     (True, False, True, False), signal.SIGTERM),
    (b"ToTray=False\r\nToTray=\r\nToTray=nay\r\nSAVELOG=TRUE\r\n", ("/1", "-platform", "no"),
     False, (True, False, True, True), signal.SIGINT),
    (b"no sign\r\n=True\r\n\r\nSaveLog =True\r\n ToTray=False\r\nPlaySound1=False=False\r\n"
     b"Colour=True\r\nPlaySound2=True\r\nPlaySound2=False\r\n", ("/2",), False,
     (False, True, True, False), signal.SIGHUP),
]


class SettingsTest(DesktopTest):
    def move(self, program, name):
        program.folder = program.folder.rename(program.folder.with_name(name))

    def shown(self, program):
        no_log, *others = [program.control("check box", caption).checked for caption in BOXES]
        return (not no_log, *others)

    def check_stored(self, program, number, values):
        self.assertEqual(program.end(number) if number else program.close(), 0)
        self.assertEqual((program.folder / "config.ini").read_bytes(), options(*values))

    def test_starts_and_ends(self):
        for content, switch, hidden, values, number in STARTS:
            with self.subTest(content, switch=switch):
                program = self.started(config=content, switch=switch)
                wait_until(lambda: program.mapped() != hidden, f"hidden: {hidden}")
                self.assertEqual(self.shown(program), values)
                self.check_stored(program, number, values)

    def test_every_tick(self):
        """It counts at once and is in the file after the end; the folder's name may be any."""
        program = self.program()
        self.move(program, os.fsdecode("blank ß ".encode() + b"caf\xe9"))
        program.start()
        (program.cookies / "unsaved.txt").touch()
        wait_until(program.log_lines, "the line on the screen")
        self.assertEqual(program.log_file(), b"")
        for caption, tab in BOXES.items():
            program.select_tab(tab)
            program.tick(caption)
        (program.cookies / "saved.txt").touch()
        self.assertEqual(program.wait_for_log(1), program.log_lines()[1:])
        self.assertFalse((program.folder / "config.ini").exists())
        program.switch_watch("Stop")
        self.check_stored(program, None, (True, False, False, False))
        program.start()
        self.assertEqual(self.shown(program), (True, False, False, False))

    def check_entry(self, program, entry, *switch):
        """The entry is valid, and what a desktop starts from it is this program."""
        from gi.repository import GLib
        run("desktop-file-validate", entry)
        keys = GLib.KeyFile()
        keys.load_from_file(str(entry), GLib.KeyFileFlags.NONE)
        icon = keys.get_string("Desktop Entry", "Icon")
        self.assertEqual(Path(icon).read_bytes(), (ROOT / "assets/quillmere.png").read_bytes())
        command = program.folder / "quillmere", *switch
        self.desktop.start("gio", "launch", str(entry), env=program.env)
        pid, = wait_until(lambda: running(*command), f"{command} to run")
        os.kill(pid, signal.SIGTERM)
        wait_until(lambda: not running(*command), "its end")

    @only_on("linux")
    def test_start_with_the_desktop(self):
        program = self.started()
        entry = program.folder.parent / "config/autostart/Quillmere.desktop"
        program.select_tab("Options")
        program.tick("Start with windows")
        wait_until(entry.exists, "the entry")
        self.check_entry(program, entry, "/1")
        program.end()
        # A moved program puts the entry right at its next start.
        self.move(program, "it's \"50%\" %f a$HOME`x` back\\slash; &ü")
        program.start()
        self.check_entry(program, entry, "/1")
        program.select_tab("Options")
        program.tick("Start with windows")
        wait_until(lambda: not entry.exists(), "the entry to go")
        program.end()
        self.check_menu(program)

    def check_menu(self, program):
        starter = self.desktop.home / "data/applications/quillmere.desktop"
        run(program.folder / "quillmere-menu", "add")
        self.check_entry(program, starter)
        run(program.folder / "quillmere-menu", "remove")
        self.assertFalse(starter.exists())

    def check_run_value(self, program):
        told = program.on_machine("reg", "query", RUN_KEY, "/v", "Quillmere").split("REG_SZ")[1]
        path = program.shown_path(program.folder / "quillmere.exe")
        self.assertEqual(told.strip(), f"{path} /1")

    @only_on("windows")
    def test_start_with_windows(self):
        program = self.started()
        program.select_tab("Options")
        program.tick("Start with windows")
        self.check_run_value(program)
        program.end()
        # A moved program puts the value right at its next start.
        self.move(program, "blank ß")
        program.start()
        self.check_run_value(program)
        program.end()
        # The system starts what the value names, hidden.
        program.kill()
        program.boot()
        window = wait_until(program.main_window, "the program")
        wait_until(lambda: not window.has("showing"), "it, hidden")


if __name__ == "__main__":
    main()
