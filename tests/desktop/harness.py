"""A desktop of its own for each test file, and the program on it, used as a person uses it.

What is on the screen is read by the machine's reader; mouse and keyboard are real ones of the X
server for both.
"""

import contextlib
import importlib
import os
import unittest

from display import (MACHINE, PATIENCE, ROOT, SCREENS, WINDOW_MANAGERS, act_until, double_click,
                     end_process, front, key, run, running, wait_until)
from program import APP, TWIPS_PER_PIXEL

reader = importlib.import_module(f"{MACHINE}.reader")
Desktop, Program, viewers = reader.Desktop, reader.Program, reader.viewers
# The sanitizers keep freed memory to themselves for a while, so its amount tells nothing.
SANITIZED = "QUILLMERE_SANITIZED" in os.environ
# The one window manager for all tests, where it is set.
WINDOW_MANAGER = os.environ.get("QUILLMERE_WINDOW_MANAGER")


def options(save_log=True, to_tray=True, sound1=False, sound2=False):
    """The settings file as the program writes it."""
    return (f"SaveLog={save_log}\r\nToTray={to_tray}\r\n"
            f"PlaySound1={sound1}\r\nPlaySound2={sound2}\r\n").encode()


SAVE_LOG = options()


def cookies(*names):
    """A file of so many cookies."""
    return "".join(map("{}\n42\nshop.example/\n0\n0\n30000000\n0\n0\n*\n".format, names)).encode()


def under(*window_managers):
    """The test runs under each of these, as one of its own whose name has theirs at its end."""
    def mark(test):
        # What Wine makes of each of them is not the program's.
        test.window_managers = window_managers if MACHINE == "linux" else ("openbox",)
        return test
    return mark


def only_on(machine):
    """What the other machine has not, or has in a way of its own."""
    return unittest.skipUnless(MACHINE == machine, f"on {machine} alone")


class DesktopTest(unittest.TestCase):
    """A test file's desktop, and programs that end with their test."""

    window_managers = ()  # those under which each test runs that names none by itself

    def __init_subclass__(cls):
        for name, test in [] if WINDOW_MANAGER else [*vars(cls).items()]:
            usual = cls.window_managers if name.startswith("test_") else ()
            if managers := getattr(test, "window_managers", usual):
                delattr(cls, name)
            for manager in managers:
                setattr(cls, f"{name}_{manager}", test)

    @classmethod
    def setUpClass(cls):
        cls.desktop = Desktop()
        cls.addClassCleanup(cls.desktop.close)
        cls.desktop.open()

    def setUp(self):
        asked = WINDOW_MANAGER or self._testMethodName.rpartition("_")[2]
        self.desktop.use_window_manager(asked if asked in WINDOW_MANAGERS else "openbox")

    def program(self, **options):
        """One that has to end well with its test."""
        program = Program(self.desktop, **options)
        self.addCleanup(program.kill)
        self.addCleanup(lambda: program.process and self.check_end(program))
        return program

    def started(self, **options):
        return self.program(**options).start()

    def check_end(self, program, end=Program.end):
        """It ends in the orderly way and has had nothing to complain of."""
        self.assertEqual(end(program), 0)
        # The font library has its own word on a home in which it can keep nothing.
        self.assertNotRegex(program.errors.read_text(), "(?m)^(?!Fontconfig ).")

    def listen(self, event, heard):
        """Notes role and name of what a screen reader is told of, while the tree is read."""
        self.addCleanup(reader.listen(event, heard))

    def wait_for_equal(self, read, expected):
        """Waits until what is read is as expected; a failure shows both."""
        try:
            wait_until(lambda: read() == expected, "")
        except AssertionError:
            self.assertEqual(read(), expected)


def main():
    unittest.main(warnings="ignore", verbosity=2)
