"""The Linux program, read through the accessibility bus."""

import contextlib
import os
import re
import shutil
import signal
import unittest
from pathlib import Path
from types import SimpleNamespace

from display import GONE, PATIENCE, Display, act_until, run, running, wait_until
from program import SHELL_FOLDERS, ControlWords, ProgramWords

with contextlib.suppress(ImportError):  # without it the program can be started and measured
    import gi
    gi.require_version("Atspi", "2.0")
    from gi.repository import Atspi, GLib
    GONE.append(GLib.Error)

ROLES = {"button": "push button"}  # what AT-SPI 2.56 names otherwise than those before


class Desktop(Display):
    """With a session bus and the accessibility bus. One a process: the accessibility client keeps
    to the bus that it met first."""

    def __init__(self):
        super().__init__()
        self.env |= {"GSETTINGS_BACKEND": "memory", "NO_AT_BRIDGE": "0"}
        (self.home / "config/pulse").mkdir()
        (self.home / "config/pulse/client.conf").write_text("autospawn = no\n")

    def start_services(self):
        self.env["DBUS_SESSION_BUS_ADDRESS"] = self.answer(
            "dbus-daemon", "--session", "--nofork", "--print-address")
        self.start("/usr/libexec/at-spi-bus-launcher", "--launch-immediately")
        os.environ.update(self.env)
        run("gdbus", "wait", "--session", "org.a11y.Bus")

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


class Control(ControlWords):
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

    def has(self, *states):
        found = self.accessible.get_state_set().get_states()
        return set(states) <= {each.value_nick for each in found}

    def place(self):
        """Left, top, width and height on the screen, in pixels."""
        extents = self.accessible.get_extents(Atspi.CoordType.SCREEN)
        return extents.x, extents.y, extents.width, extents.height

    def press(self):
        """Presses without the mouse, wherever the control lies and whatever covers it."""
        self.accessible.get_action_iface().do_action(0)

    def cells(self):
        """The rows of a table; none where they change meanwhile."""
        table = self.accessible.get_table_iface()
        rows = [[table.get_accessible_at(row, column) for column in range(table.get_n_columns())]
                for row in range(table.get_n_rows())]
        return [[Control(cell) for cell in row] for row in rows] if all(map(all, rows)) else []


class Program(ProgramWords):
    def own_world(self):
        top = self.folder.parent
        shutil.copytree(self.desktop.home / "config/pulse", top / "config/pulse")
        self.cookies = top / "data/quillmere/cookies"
        self.cookies.mkdir(parents=True)
        self.recent, self.trash = top / "data/RecentDocuments", top / "data/Trash"
        self.home = self.desktop.home
        return {"XDG_DATA_HOME": f"{top}/data", "XDG_CONFIG_HOME": f"{top}/config",
                "LANG": "en_US.UTF-8",
                "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1" if self.accessible else "0"}

    def command(self):
        return [str(self.folder / "quillmere")]

    def shown_path(self, path):
        """As the program shows it."""
        return str(path)

    def throw_away(self, *paths):
        """As the desktop's own tool does."""
        run("env", f"XDG_DATA_HOME={self.trash.parent}", "gio", "trash", *paths)

    def set_shell_folders(self, folder):
        registry = self.folder.parent / "config/quillmere/registry.ini"
        registry.parent.mkdir()
        registry.write_text(f"[{SHELL_FOLDERS}]\nCookies={folder}\nRecent={folder}\n")
        self.cookies = folder

    def watching(self):
        """Whether the kernel is asked for news of the cookie folder."""
        self.check_runs()
        files = Path(f"/proc/{self.process.pid}/fdinfo").iterdir()
        # The watch alone asks for the folder's own moves (800); reading ahead does not.
        watch = "(?m)^inotify .*ino:{:x} .*mask:[0-9a-f]*[89a-f][0-9a-f]{{2}} ".format
        return self.cookies.exists() and bool(re.search(
            watch(self.cookies.stat().st_ino), run("cat", *files, check=False)))

    def end(self, number=signal.SIGTERM):
        """Ends the program in the orderly way, from outside."""
        self.process.send_signal(number)
        return self.process.wait(20 * PATIENCE)

    def application(self):
        Atspi.set_timeout(int(20000 * PATIENCE), int(20000 * PATIENCE))
        while GLib.MainContext.default().iteration(False):
            pass
        desktop = Atspi.get_desktop(0)
        desktop.clear_cache()
        for child in Control(desktop).children():
            with contextlib.suppress(GLib.Error):
                if child.accessible.get_process_id() == self.process.pid:
                    child.accessible.set_cache_mask(Atspi.Cache.NONE)
                    return child

    def select_tab(self, caption):
        tab = self.control("page tab", caption)
        # The toolkit tells of the selected tab by this state.
        act_until(tab.click, lambda: tab.has("focused"), f"tab '{caption}'")


class HelpViewer(Program):
    """What a program shows its help in: a process of its own, used as a program is."""

    def __init__(self, pid):
        self.process = SimpleNamespace(pid=pid)


def viewers(program):
    return [*map(HelpViewer, running(program.folder / "quillmere-help", program.folder / "help"))]


def listen(event, heard):
    """Notes role and name of what a screen reader is told of, while the tree is read. Returns how
    that is ended."""
    def note(event):
        with contextlib.suppress(GLib.Error):
            heard.append((event.source.get_role_name(), event.source.get_name()))

    listener = Atspi.EventListener.new(note)
    listener.register(event)
    return lambda: listener.deregister(event)
