"""A desktop of its own for each test file, and the program on it, used as a person uses it.

What is on the screen is read through the accessibility bus; mouse and keyboard are real ones of the
X server. What can be waited for is expected at no fixed time: `wait_until` looks until it holds.
"""

import contextlib
import os
import re
import shutil
import signal
import subprocess
import tempfile
import time
import unittest
from pathlib import Path
from types import SimpleNamespace

try:
    import gi
    gi.require_version("Atspi", "2.0")
    from gi.repository import Atspi, GLib
    Gone = GLib.Error  # what is told of a control that is no longer there
except ImportError:  # enough to start the program and to measure it
    Gone = ()

ROOT = Path(__file__).resolve().parents[2]
APP = Path(os.environ.get("QUILLMERE_APP_DIR", ROOT / "build/app"))
SCREENS = Path(os.environ.get("QUILLMERE_SCREENS", ROOT / "build/screens"))
# Sanitizers and busy machines: every time limit is multiplied by it.
PATIENCE = float(os.environ.get("QUILLMERE_PATIENCE", "1"))
# The sanitizers keep freed memory to themselves for a while, so its amount tells nothing.
SANITIZED = "QUILLMERE_SANITIZED" in os.environ
TWIPS_PER_PIXEL = 15
# The one window manager for all tests, where it is set.
WINDOW_MANAGER = os.environ.get("QUILLMERE_WINDOW_MANAGER")
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
        with contextlib.suppress(Gone):
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


class Desktop:
    """X server, session bus, window manager and accessibility bus. One a process: the
    accessibility client keeps to the bus that it met first."""

    def __init__(self):
        self.home = Path(tempfile.mkdtemp(prefix="quillmere-desktop-"))
        self.processes = []
        self.window_manager = None
        for name in ("config/pulse", "data", "cache", "runtime"):
            (self.home / name).mkdir(parents=True)
        (self.home / "runtime").chmod(0o700)
        (self.home / "config/pulse/client.conf").write_text("autospawn = no\n")
        for name, text in WINDOW_MANAGER_FILES.items():
            (self.home / name).parent.mkdir(exist_ok=True)
            (self.home / name).write_text(text)
        self.env = {
            "PATH": os.environ["PATH"], "HOME": str(self.home), "LANG": "C.UTF-8",
            "USER": os.environ.get("USER", "nobody"),
            "XDG_CONFIG_HOME": f"{self.home}/config", "XDG_DATA_HOME": f"{self.home}/data",
            "XDG_CACHE_HOME": f"{self.home}/cache", "XDG_RUNTIME_DIR": f"{self.home}/runtime",
            "GSETTINGS_BACKEND": "memory", "NO_AT_BRIDGE": "0",
        }

    def open(self):
        self.env["DISPLAY"] = self.start_display()
        self.env["DBUS_SESSION_BUS_ADDRESS"] = self._answer(
            "dbus-daemon", "--session", "--nofork", "--print-address")
        self.start("/usr/libexec/at-spi-bus-launcher", "--launch-immediately")
        os.environ.update(self.env)
        run("gdbus", "wait", "--session", "org.a11y.Bus")
        self.use_window_manager("openbox")

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

    def _answer(self, *command):
        process = self.start(*command, stdout=subprocess.PIPE, text=True)
        return process.stdout.readline().strip()

    def start_display(self):
        """An X server of its own for whoever is given the name that this returns."""
        return ":" + self._answer("Xvfb", "-displayfd", "1", "-noreset", "-screen", "0",
                                  "1280x1024x24", "-nolisten", "tcp")

    def start_sound_server(self):
        """It plays into nothing. Returns the environment by which it is found."""
        if not shutil.which("pulseaudio"):
            raise unittest.SkipTest("no pulseaudio: ./test leaves a PipeWire in its place")
        place = f"unix:{self.home}/runtime/sound"
        self.start("pulseaudio", "-n", "--daemonize=no", "--use-pid-file=no", "--exit-idle-time=-1",
                   "-L", "module-null-sink sink_name=nothing", "-L",
                   f"module-native-protocol-unix socket={place[5:]} auth-anonymous=1")
        wait_until(lambda: "nothing" in run("pactl", "--server", place, "list", "short", "sinks",
                                            check=False), "the sound server")
        return {"PULSE_SERVER": place}

    def close(self):
        for process in reversed(self.processes):
            end_process(process)
        shutil.rmtree(self.home, ignore_errors=True)

    def screenshot(self, name):
        SCREENS.mkdir(parents=True, exist_ok=True)
        run("import", "-silent", "-window", "root", SCREENS / f"{name}.png")


class Control:
    """One thing on the screen, as the accessibility bus tells of it."""

    def __init__(self, accessible):
        self.accessible = accessible

    name = property(lambda self: self.accessible.get_name())
    role = property(lambda self: ROLES.get(role := self.accessible.get_role_name(), role))
    description = property(lambda self: self.accessible.get_description())
    text = property(lambda self: Atspi.Text.get_text(self.accessible, 0, -1))
    enabled = property(lambda self: self.has("enabled"))
    checked = property(lambda self: self.has("checked"))

    def children(self):
        found = map(self.accessible.get_child_at_index, range(self.accessible.get_child_count()))
        return [Control(child) for child in found if child]

    def everything(self):
        """All controls below this one, but none below a list."""
        for child in self.children():
            yield child
            if child.role not in LISTS:
                yield from child.everything()

    def in_sight(self):
        return [each for each in self.everything() if each.has("showing")]

    def has(self, *states):
        found = self.accessible.get_state_set().get_states()
        return set(states) <= {each.value_nick for each in found}

    def place(self):
        """Left, top, width and height on the screen, in pixels."""
        extents = self.accessible.get_extents(Atspi.CoordType.SCREEN)
        return extents.x, extents.y, extents.width, extents.height

    def click(self, button=1):
        left, top, width, height = self.place()
        run("xdotool", "mousemove", left + width // 2, top + height // 2, "click", button)

    def press(self):
        """Presses without the mouse, wherever the control lies and whatever covers it."""
        self.accessible.get_action_iface().do_action(0)

    def cells(self):
        """The rows of a table; none where they change meanwhile."""
        table = self.accessible.get_table_iface()
        rows = [[table.get_accessible_at(row, column) for column in range(table.get_n_columns())]
                for row in range(table.get_n_rows())]
        return [[Control(cell) for cell in row] for row in rows] if all(map(all, rows)) else []

    def rows(self):
        """The texts of a list's lines or, as lists, of a table's cells."""
        if self.role == "list":
            return [child.name for child in self.children()]
        return [[cell.name for cell in row] for row in self.cells()]


ROLES = {"button": "push button"}  # what AT-SPI 2.56 names otherwise than those before
LISTS = {"list", "tree", "table", "tree table", "menu bar", "combo box"}


class Program:
    """One run of the program: a portable copy of it, a cookie folder of its own."""

    def __init__(self, desktop, switch=(), config=None, env=(), accessible=True):
        self.desktop = desktop
        self.folder = Path(tempfile.mkdtemp(prefix="run-", dir=desktop.home)) / "app"
        shutil.copytree(APP, self.folder, ignore=lambda folder, names: [
            name for name in names if Path(folder) == APP and name in ("log", "config.ini")])
        if config is not None:
            (self.folder / "config.ini").write_bytes(config)
        self.switch = switch
        self.env = {
            **desktop.env,
            "XDG_DATA_HOME": f"{self.folder.parent}/data",
            "XDG_CONFIG_HOME": f"{self.folder.parent}/config",
            "LANG": "en_US.UTF-8", "TZ": "IST-5:30",
            "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1" if accessible else "0",
            **dict(env),
        }
        shutil.copytree(desktop.home / "config/pulse", self.folder.parent / "config/pulse")
        self.cookies = self.folder.parent / "data/quillmere/cookies"
        self.cookies.mkdir(parents=True)
        self.process = None

    def start(self):
        """Starts it and waits until it watches."""
        self.window = None
        with open(self.folder.parent / "stderr", "w") as errors:
            self.process = self.desktop.start(str(self.folder / "quillmere"), *self.switch,
                                              env=self.env, stderr=errors)
        wait_until(self.watching, "the watch to begin", 30)
        return self

    def watching(self):
        """Whether the kernel is asked for news of the cookie folder."""
        if self.process.poll() is not None:
            raise AssertionError("it ended: " + (self.folder.parent / "stderr").read_text())
        files = Path(f"/proc/{self.process.pid}/fdinfo").iterdir()
        # The watch alone asks for the folder's own moves (800); reading ahead does not.
        watch = "(?m)^inotify .*ino:{:x} .*mask:[0-9a-f]*[89a-f][0-9a-f]{{2}} ".format
        return self.cookies.exists() and bool(re.search(
            watch(self.cookies.stat().st_ino), run("cat", *files, check=False)))

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

    def end(self, number=signal.SIGTERM):
        """Ends the program in the orderly way, from outside."""
        self.process.send_signal(number)
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

    # The window, as a screen reader sees it.

    def application(self):
        Atspi.set_timeout(int(20000 * PATIENCE), int(20000 * PATIENCE))
        while GLib.MainContext.default().iteration(False):
            pass
        desktop = Atspi.get_desktop(0)
        desktop.clear_cache()
        for child in Control(desktop).children():
            with contextlib.suppress(Gone):
                if child.accessible.get_process_id() == self.process.pid:
                    child.accessible.set_cache_mask(Atspi.Cache.NONE)
                    return child

    def controls(self, role, name):
        return [control for control in self.application().everything()
                if control.role == role and control.name == name]

    def control(self, role, name):
        """The control of that role and name; the first one where there are several."""
        return wait_until(lambda: self.application() and self.controls(role, name),
                          f"{role} '{name}'")[0]

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

    def select_tab(self, caption):
        tab = self.control("page tab", caption)
        # The toolkit tells of the selected tab by this state.
        act_until(tab.click, lambda: tab.has("focused"), f"tab '{caption}'")

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


class HelpViewer(Program):
    """What a program shows its help in: a process of its own, used as a program is."""

    def __init__(self, pid):
        self.process = SimpleNamespace(pid=pid)


def viewers(program):
    return [*map(HelpViewer, running(program.folder / "quillmere-help", program.folder / "help"))]


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
        test.window_managers = window_managers
        return test
    return mark


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
        self.addCleanup(lambda: program.process and self.assertEqual(program.end(), 0))
        return program

    def started(self, **options):
        return self.program(**options).start()

    def check_end(self, program, end=Program.end):
        """It ends in the orderly way and has had nothing to complain of."""
        self.assertEqual(end(program), 0)
        # The font library has its own word on a home in which it can keep nothing.
        self.assertNotRegex((program.folder.parent / "stderr").read_text(), "(?m)^(?!Fontconfig ).")

    def listen(self, event, heard):
        """Notes role and name of what a screen reader is told of, while the tree is read."""
        def note(event):
            with contextlib.suppress(Gone):
                heard.append((event.source.get_role_name(), event.source.get_name()))

        listener = Atspi.EventListener.new(note)
        listener.register(event)
        self.addCleanup(listener.deregister, event)

    def wait_for_equal(self, read, expected):
        """Waits until what is read is as expected; a failure shows both."""
        try:
            wait_until(lambda: read() == expected, "")
        except AssertionError:
            self.assertEqual(read(), expected)


def main():
    unittest.main(warnings="ignore", verbosity=2)
