"""The program on a desktop and the controls on it, in the words that all machines share."""

import contextlib
import os
import re
import shutil
import signal
import tempfile
import time
from pathlib import Path

from display import (PATIENCE, ROOT, act_until, double_click, end_process, key, run,
                     wait_until)

APP = Path(os.environ.get("QUILLMERE_APP_DIR", ROOT / "build/app"))
TWIPS_PER_PIXEL = 15
SHELL_FOLDERS = r"Software\Microsoft\Windows\CurrentVersion\Explorer\User Shell Folders"
LISTS = {"list", "tree", "table", "tree table", "menu bar", "combo box"}


class ControlWords:
    """One thing on the screen; a reader adds what it tells of it."""

    def everything(self):
        """All controls below this one, but none below a list."""
        for child in self.children():
            yield child
            if child.role not in LISTS:
                yield from child.everything()

    def in_sight(self):
        return [each for each in self.everything() if each.has("showing")]

    def click(self, button=1):
        left, top, width, height = self.place()
        run("xdotool", "mousemove", left + width // 2, top + height // 2, "click", button)

    def rows(self):
        """The texts of a list's lines or, as lists, of a table's cells."""
        if self.role == "list":
            return [child.name for child in self.children()]
        return [[cell.name for cell in row] for row in self.cells()]


class ProgramWords:
    """One run of the program: a portable copy of it, a cookie folder of its own."""

    def __init__(self, desktop, switch=(), config=None, env=(), accessible=True):
        self.desktop = desktop
        home = Path(tempfile.mkdtemp(prefix="run-", dir=desktop.home))
        self.folder = home / "app"
        self.errors = home / "stderr"
        shutil.copytree(APP, self.folder, ignore=lambda folder, names: [
            name for name in names if Path(folder) == APP and name in ("log", "config.ini")])
        if config is not None:
            (self.folder / "config.ini").write_bytes(config)
        self.switch = switch
        self.accessible = accessible
        self.env = {**desktop.env, "TZ": "IST-5:30", **self.own_world(), **dict(env)}
        self.process = None

    def start(self):
        """Starts it and waits until it watches."""
        self.window = None
        with open(self.errors, "w") as errors:
            self.process = self.desktop.start(*self.command(), *self.switch, env=self.env,
                                              stderr=errors)
        wait_until(self.watching, "the watch to begin", 30)
        return self

    def check_runs(self):
        if self.process.poll() is not None:
            raise AssertionError("it ended: " + self.errors.read_text())

    def used(self):
        """Seconds of the processor."""
        stat = Path(f"/proc/{self.process.pid}/stat").read_text().rsplit(")", 1)[1].split()
        return (int(stat[11]) + int(stat[12])) / os.sysconf("SC_CLK_TCK")

    def wait_for_rest(self):
        """Until it has used no more than a trace of the processor for a second."""
        def at_rest():
            before = self.used()
            time.sleep(1)
            return self.used() - before < 0.05

        wait_until(at_rest, "the program to come to rest", 60)

    # The window, as the X server and the window manager know it.

    def find_window(self):
        """The main window's number; popups carry the same title and are smaller."""
        if not self.window:
            self.window = wait_until(lambda: next(
                (window for window in self.windows("Quillmere", "--all")
                 if int(self.window_info(window).get("Width", 0)) >= 500), None), "the main window")
        return self.window

    def windows(self, name, *which):
        """The numbers of the windows of that name that can be seen; an open menu has no name."""
        return run("xdotool", "search", *(which or ["--onlyvisible", "--all"]), "--pid",
                   self.process.pid, "--name", f"^{name}$", check=False).split()

    def window_info(self, window):
        """What the X server tells of a window; nothing while its frame comes or goes."""
        text = run("xwininfo", "-id", window, check=False)
        return dict(re.findall(r"^ *(.+): +(\S+)$", text, re.MULTILINE))

    def geometry(self, window=None):
        """Left, top, width and height of the window without its frame, in pixels."""
        window = window or self.find_window()
        told = wait_until(lambda: self.window_info(window), f"the place of window {window}")
        return tuple(int(told[key]) for key in (
            "Absolute upper-left X", "Absolute upper-left Y", "Width", "Height"))

    def mapped(self):
        told = wait_until(lambda: self.window_info(self.find_window()), "the window's state")
        return told["Map State"] == "IsViewable"

    def window_states(self, window=None):
        return run("xprop", "-id", window or self.find_window(), "_NET_WM_STATE", "WM_STATE")

    def frame(self, window=None):
        """Left, right, top and bottom of what the window manager draws around the window."""
        window = window or self.find_window()
        return wait_until(lambda: tuple(int(value) for value in re.findall(r"\d+", run(
            "xprop", "-id", window, "_NET_FRAME_EXTENTS"))), f"the frame of window {window}")

    def switch_maximised(self):
        """By a double click on the title."""
        before = left, top, width, _ = self.geometry()
        title = left + width // 2, top - self.frame()[2] // 2
        act_until(lambda: double_click(*title), lambda: self.geometry() != before, "the new size")

    def activate(self):
        run("xdotool", "windowactivate", "--sync", self.find_window())

    def close(self):
        """Closes the window as its close box does, and waits for the end."""
        self.activate()
        key("alt+F4")
        return self.process.wait(20 * PATIENCE)

    def kill(self):
        if self.process:
            end_process(self.process)

    @contextlib.contextmanager
    def paused(self):
        """The program stands still: what happens meanwhile is one change to it."""
        self.process.send_signal(signal.SIGSTOP)
        try:
            yield
        finally:
            self.process.send_signal(signal.SIGCONT)

    # The window, as a reader sees it.

    def controls(self, role, name):
        application = self.application()
        return [control for control in (application.everything() if application else ())
                if control.role == role and control.name == name]

    def control(self, role, name):
        """The control of that role and name; the first one where there are several."""
        return wait_until(lambda: self.controls(role, name), f"{role} '{name}'")[0]

    def button(self, caption):
        return self.control("push button", caption)

    def tick(self, *captions):
        for caption in captions:
            box = self.control("check box", caption)
            ticked = box.checked
            box.click()
            wait_until(lambda: box.checked != ticked, caption)

    def switch_watch(self, caption):
        """By Start or Stop."""
        button = self.button(caption)
        button.press()
        wait_until(lambda: not button.enabled and self.watching() == (caption == "Start"), caption)

    def choose(self, entry):
        """An entry of the menu of the row that has the keyboard."""
        key("Menu")
        wait_until(lambda: self.windows(""), "the menu")
        key(*["Down"] * entry, "Return")

    def log_lines(self):
        """What the on-screen log shows."""
        return self.control("list", "Log").rows()

    def log_file(self):
        """Everything in the log files, oldest first, as bytes."""
        return b"".join(path.read_bytes() for path in sorted((self.folder / "log").glob("*.txt")))

    def told(self, count=0):
        """What the lines tell, each as "added: a.txt", as soon as there are so many."""
        return re.findall(r" - Cookie file (\w+: .*?\.txt)", "\n".join(self.wait_for_log(count)))

    def wait_for_log(self, count, seconds=15):
        """Returns all lines of the log files as soon as there are so many."""
        wait_until(lambda: self.log_file().count(b"\r\n") >= count, f"{count} log lines", seconds)
        return self.log_file().decode("utf-8", "surrogateescape").splitlines()
