"""A virtual desktop: an X server and a window manager, used by mouse and keyboard as a person does.

What can be waited for is expected at no fixed time: `wait_until` looks until it holds.
"""

import contextlib
import os
import re
import shutil
import signal
import subprocess
import tempfile
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
# The one of platform/ on which the program runs.
MACHINE = os.environ.get("QUILLMERE_MACHINE", "linux")
SCREENS = Path(os.environ.get("QUILLMERE_SCREENS", ROOT / "build/screens"))
# Sanitizers and busy machines: every time limit is multiplied by it.
PATIENCE = float(os.environ.get("QUILLMERE_PATIENCE", "1"))
GONE = []  # what is raised of a control that is no longer there
# Command lines of the window managers, and what keeps them from drawing a background or holding a
# tray of their own, by the names of their files in the home folder.
WINDOW_MANAGERS = {
    "openbox": "openbox --sm-disable",
    "xfwm4": "xfwm4 --compositor=off",
    "metacity": "metacity --sm-disable --no-composite",
    "icewm": "icewm",
    "fluxbox": "fluxbox",
}
WINDOW_MANAGER_FILES = {
    ".icewm/preferences": "ShowTaskBar=0\n",
    ".fluxbox/init": "session.screen0.toolbar.visible: false\n"
                     "session.screen0.toolbar.tools: iconbar\n"
                     "session.styleOverlay: ~/.fluxbox/overlay\n"
                     "session.configVersion: 13\n",  # or else it changes its keys
    ".fluxbox/overlay": "background: unset\n",
    # By itself it rolls a window up there.
    ".fluxbox/keys": "OnTitlebar Double Mouse1 :Maximize\nMod1 F4 :Close\n",
}


def wait_until(condition, what, seconds=15):
    """Returns the first true value of `condition()`; it may look at what goes meanwhile."""
    end = time.monotonic() + seconds * PATIENCE
    while time.monotonic() < end:
        with contextlib.suppress(*GONE):
            if value := condition():
                return value
        time.sleep(0.02)
    raise AssertionError(f"waited {seconds * PATIENCE:.0f} s in vain: {what}")


def act_until(act, condition, what):
    """Acts as a person does: once more where a window that comes or goes took the click."""
    def acted():
        if not condition():
            act()
        with contextlib.suppress(AssertionError):
            return wait_until(condition, what, 3)
    wait_until(acted, what)


def run(*command, check=True):
    return subprocess.run([str(word) for word in command], check=check, capture_output=True,
                          text=True, timeout=60 * PATIENCE).stdout


def key(*keys):
    run("xdotool", "key", *keys)


def front():
    """The number of the window in front."""
    return run("xdotool", "getactivewindow", check=False).strip()


def double_click(*place):
    run("xdotool", "mousemove", *place, "click", "--repeat", 2, "--delay", 50, 1)


def running(*command):
    """The numbers of the processes with this very command line."""
    found = []
    for file in Path("/proc").glob("[0-9]*/cmdline"):
        with contextlib.suppress(OSError):
            if file.read_bytes() == b"".join(os.fsencode(word) + b"\0" for word in command):
                found.append(int(file.parent.name))
    return found


def end_process(process):
    """Ends a process and those that it started; all of them are in a session of their own."""
    for number in (signal.SIGTERM, signal.SIGKILL):
        with contextlib.suppress(ProcessLookupError):
            os.killpg(process.pid, number)
        with contextlib.suppress(subprocess.TimeoutExpired):
            return process.wait(10)


class Display:
    """X server, window manager, and a home that goes with them."""

    def __init__(self):
        self.home = Path(tempfile.mkdtemp(prefix="quillmere-desktop-"))
        self.processes = []
        self.window_manager = None
        self.screens = ""  # how the names of the pictures begin
        for name in ("config", "data", "cache", "runtime"):
            (self.home / name).mkdir()
        (self.home / "runtime").chmod(0o700)
        for name, text in WINDOW_MANAGER_FILES.items():
            (self.home / name).parent.mkdir(exist_ok=True)
            (self.home / name).write_text(text)
        self.env = {
            "PATH": os.environ["PATH"], "HOME": str(self.home), "LANG": "C.UTF-8",
            "USER": os.environ.get("USER", "nobody"),
            "XDG_CONFIG_HOME": f"{self.home}/config", "XDG_DATA_HOME": f"{self.home}/data",
            "XDG_CACHE_HOME": f"{self.home}/cache", "XDG_RUNTIME_DIR": f"{self.home}/runtime",
        }

    def open(self):
        self.env["DISPLAY"] = self.start_display()
        self.start_services()
        os.environ.update(self.env)
        self.use_window_manager("openbox")

    def start_services(self):
        """What the machine's own desktop needs beside it."""

    def use_window_manager(self, name):
        """In the place of the one before."""
        if name == self.window_manager:
            return
        if self.window_manager:
            self.processes.remove(self.manager)
            end_process(self.manager)
        self.window_manager = name
        self.manager = self.start(*WINDOW_MANAGERS[name].split())
        wait_until(self._is_managed, name)

    def _is_managed(self):
        """By that one: it has put its name on a window of its own."""
        window = re.search("window id # (0x[0-9a-f]+)", run(
            "xprop", "-root", "_NET_SUPPORTING_WM_CHECK", check=False))
        return window and self.window_manager in run(
            "xprop", "-id", window[1], "_NET_WM_NAME", check=False).lower()

    def start(self, *command, **options):
        quiet = {key: subprocess.DEVNULL for key in ("stdin", "stdout", "stderr")}
        options = {**quiet, "env": self.env, "start_new_session": True, **options}
        self.processes.append(subprocess.Popen(command, **options))
        return self.processes[-1]

    def answer(self, *command):
        process = self.start(*command, stdout=subprocess.PIPE, text=True)
        return process.stdout.readline().strip()

    def start_display(self):
        """An X server of its own for whoever is given the name that this returns."""
        return ":" + self.answer("Xvfb", "-displayfd", "1", "-noreset", "-screen", "0",
                                  "1280x1024x24", "-nolisten", "tcp")

    def close(self):
        for process in reversed(self.processes):
            end_process(process)
        shutil.rmtree(self.home, ignore_errors=True)

    def screenshot(self, name):
        SCREENS.mkdir(parents=True, exist_ok=True)
        run("import", "-silent", "-window", "root", SCREENS / f"{self.screens}{name}.png")
