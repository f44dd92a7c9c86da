"""The Windows program under Wine, read and driven by messages, which Reader.cpp sends."""

import contextlib
import json
import os
import shutil
import subprocess
from pathlib import Path

from display import GONE, PATIENCE, ROOT, Display, act_until, end_process, run, wait_until
from program import SHELL_FOLDERS, ControlWords, ProgramWords

BUILD = Path(os.environ.get("QUILLMERE_BUILD_DIR", ROOT / "build/windows"))
START = ROOT / "scripts/run-windows-program"
TRAY = Path(__file__).parents[1] / "embedding_host.py"
READER = BUILD / "tests/desktop/window_reader.exe"
BM_GETCHECK, BM_CLICK, WM_CLOSE, TCM_GETCURSEL = 0xF0, 0xF5, 0x10, 0x130B
WS_MINIMIZE = 0x20000000
BUTTONS = {0: "push button", 1: "push button", 2: "check box", 3: "check box", 7: "panel"}
ROLES = {"Edit": "text", "Static": "label", "ComboBox": "combo box", "ListBox": "list",
         "SysListView32": "tree", "SysTabControl32": "page tab list", "QuillmereForm": "frame",
         "#32770": "alert"}
# What screen readers are told beside the texts of windows, which Wine 8 does not keep: the names
# of what has no caption, in their order in a window.
NAMES = {"list": ["Log"], "combo box": ["Cookie Name"], "page tab list": ["Pages"],
         "tree": ["Cookies", "Search results"]}
BOXES = {1: ["Search for"], 4: ["Cookie file", "Modified", "Size", "Details"]}
PLAY = ["Play the sound of an added cookie file", "Play the sound of a removed cookie file"]

POPUPS = """<application title="Quillmere" type="dialog"><focus>no</focus></application>
</applications>"""


class Gone(Exception):
    pass


GONE.append(Gone)


class Desktop(Display):
    """Each program on it has a machine of its own: a copy of one that is made once."""

    def __init__(self):
        super().__init__()
        self.screens = "windows-"
        # Under Wine 8 a new window takes the keyboard where it is offered: popups are offered none.
        rules = Path("/etc/xdg/openbox/rc.xml").read_text()
        (self.home / "config/openbox").mkdir()
        (self.home / "config/openbox/rc.xml").write_text(rules.replace("</applications>", POPUPS))

    def start_services(self):
        run(START, BUILD / "wine", "wineboot")
        # Without a tray Wine puts up a window for the icons, which takes the keyboard.
        self.tray = self.start("/usr/bin/python3", "-B", TRAY)


class Control(ControlWords):
    description = ""

    def __init__(self, reader, facts):
        self.reader, self.facts, self.below = reader, facts, []
        self.name = facts["text"].replace("&", "")
        kind = facts["class"]
        self.role = BUTTONS.get(facts["style"] & 15) if kind == "Button" else ROLES.get(kind, kind)

    def now(self):
        self.facts = self.reader.ask("window", self.facts["id"])
        return self.facts

    def send(self, message, w=0, l=0):
        return self.reader.ask("send", self.facts["id"], message, w, l)

    def post(self, message, w=0, l=0):
        return self.reader.ask("post", self.facts["id"], message, w, l)

    text = property(lambda self: self.now()["text"].replace("\r\n", "\n"))
    enabled = property(lambda self: bool(self.now()["enabled"]))
    checked = property(lambda self: bool(self.send(BM_GETCHECK)))

    def has(self, *states):
        facts = self.now()
        return all({"enabled": facts["enabled"], "showing": facts["visible"],
                    "focused": facts["focused"], "active": facts["active"],
                    "read-only": facts["style"] & 0x800, "focusable": True}[state]
                   for state in states)

    def place(self):
        """Left, top, width and height on the screen, in pixels."""
        return tuple(self.now()["place"])

    def press(self):
        """Presses without the mouse, wherever the control lies and whatever covers it."""
        self.post(BM_CLICK)

    def children(self):
        if self.role == "page tab list":
            return [PageTab(self, number, *told) for number, told in enumerate(
                self.reader.ask("tabs", self.facts["id"]))]
        return self.below

    def cells(self):
        return [[Cell(self, row, column, text) for column, text in enumerate(texts)]
                for row, texts in enumerate(self.reader.ask("rows", self.facts["id"]))]

    def rows(self):
        return self.reader.ask("lines" if self.role == "list" else "rows", self.facts["id"])


class Part(ControlWords):
    """Of a control: no window by itself."""

    def __init__(self, whole, name):
        self.whole, self.name = whole, name

    def children(self):
        return []


class PageTab(Part):
    role = "page tab"

    def __init__(self, strip, number, name, place):
        super().__init__(strip, name)
        self.number, self.place = number, lambda: place

    def has(self, state):
        selected = self.whole.send(TCM_GETCURSEL) == self.number
        return selected and self.whole.has("focused") if state == "focused" else \
            self.whole.has(state)


class Cell(Part):
    role = "table cell"

    def __init__(self, table, row, column, name):
        super().__init__(table, name)
        self.row, self.column = row, column

    def place(self):
        return self.whole.reader.ask("cell", self.whole.facts["id"], self.row, self.column)


class Program(ProgramWords):
    def own_world(self):
        """What the program's own machine writes to is copied; the system's files are not."""
        self.machine, made = self.folder.parent / "wine", BUILD / "wine"
        shutil.copytree(made / "new", self.machine, symlinks=True)
        (self.machine / "drive_c/windows").symlink_to(made / "drive_c/windows")
        (self.machine / "home/.local/share").mkdir(parents=True)
        self.user, = [path for path in (self.machine / "drive_c/users").iterdir()
                      if path.name != "Public"]
        self.cookies = self.user / "AppData/Local/Microsoft/Windows/INetCookies"
        self.recent = self.user / "AppData/Roaming/Microsoft/Windows/Recent"
        self.trash, self.home = self.machine / "home/.local/share/Trash", self.user
        self.reader = None
        return {"WINEPREFIX": str(self.machine), "HOME": str(self.machine / "home"),
                "USER": self.user.name,
                "XDG_DATA_HOME": str(self.machine / "home/.local/share"),
                # Of a fault within a window's procedure, which it does not let end the program, it tells.
                "WINEDEBUG": "-all,err+seh", "LC_ALL": "C.UTF-8",
                "WINEDLLOVERRIDES": "mscoree,mshtml=;winemenubuilder.exe=d"}

    def command(self):
        return ["wine", str(self.folder / "quillmere.exe")]

    def shown_path(self, path):
        """As the program shows it."""
        drive = self.machine / "drive_c"
        return str(f"C:/{path.relative_to(drive)}" if path.is_relative_to(drive)
                   else f"Z:{path}").replace("/", "\\")

    def server(self):
        """The process that stands for the system's kernel, which is in a folder of its own."""
        place = self.machine.stat()
        folder = f"server-{place.st_dev:x}-{place.st_ino:x}"
        for process in Path("/proc").glob("[0-9]*"):
            with contextlib.suppress(OSError):
                if os.path.basename(os.readlink(process / "cwd")) == folder:
                    return process

    def watching(self):
        """Whether the system is asked for news of the cookie folder."""
        self.check_runs()
        server = self.server()
        return server is not None and f" ino:{self.cookies.stat().st_ino:x} " in run(
            "cat", *(server / "fdinfo").iterdir(), check=False)

    def ask(self, *words):
        """Of the program that reads windows, which runs on the same machine."""
        if self.reader is None:
            self.reader = self.desktop.start("wine", str(READER), env=self.env, text=True,
                                             stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        print(*words, file=self.reader.stdin, flush=True)
        answer = json.loads(self.reader.stdout.readline())
        if answer is None:
            raise Gone(words)
        return answer

    def application(self):
        """All windows of the program, as one control."""
        root = Control(self, {"text": "", "class": "", "id": 0})
        found = {0: root}
        for facts in filter(None, self.ask("tree")):
            found[facts["id"]] = control = Control(self, facts)
            found.get(facts["parent"], root).below.append(control)
        for window in root.below:
            self.give_names([*window.everything()])
        return root

    def give_names(self, controls):
        boxes = [each for each in controls if each.role == "text"]
        play = [each for each in controls if each.name == "Play"]
        named = [(boxes, BOXES.get(len(boxes), [])), (play, PLAY)]
        named += [([each for each in controls if each.role == role], names)
                  for role, names in NAMES.items()]
        for some, names in named:
            for control, name in zip(some, names):
                control.name = name

    def frame(self, window=None):
        """As the system counts it, whatever the window manager draws."""
        return (4, 4, 23, 4) if window in (None, self.find_window()) else (3, 3, 22, 3)

    def mapped(self):
        """To the X server, or to the system, which hears of a change a little later."""
        window = self.main_window()
        shown = window and window.facts["visible"] and not window.facts["style"] & WS_MINIMIZE
        return bool(shown) or super().mapped()

    def select_tab(self, caption):
        tab = self.control("page tab", caption)
        act_until(tab.click, lambda: tab.has("focused"), f"tab '{caption}'")

    def throw_away(self, *paths):
        """As the system does."""
        for path in paths:
            if not self.ask("throw", self.shown_path(path)):
                raise AssertionError(f"{path} is not thrown away")

    def set_shell_folders(self, folder):
        for name in ("Cookies", "Recent"):
            self.on_machine("reg", "add", f"HKCU\\{SHELL_FOLDERS}", "/f", "/v", name, "/d",
                            self.shown_path(folder))
        self.cookies = folder

    def main_window(self):
        return next((window for window in self.application().children()
                     if any(each.name == "Log" for each in window.everything())), None)

    def end(self, number=None):
        """Ends the program in the orderly way, from outside."""
        if self.process.poll() is None:
            self.main_window().post(WM_CLOSE)
        return self.process.wait(20 * PATIENCE)

    def on_machine(self, *command):
        """What a program of the system prints there."""
        return subprocess.run(["wine", *command], env=self.env, check=True, capture_output=True,
                              timeout=60 * PATIENCE).stdout.decode("cp437")

    def set_scale(self, dpi):
        self.on_machine("reg", "add", r"HKCU\Control Panel\Desktop", "/f", "/v", "LogPixels",
                        "/t", "REG_DWORD", "/d", str(dpi))
        run("env", f"WINEPREFIX={self.machine}", "wineserver", "-w")  # which then reads it anew

    def boot(self):
        """A user's logon."""
        self.process = self.desktop.start("wine", "wineboot", env=self.env)

    def kill(self):
        super().kill()
        if self.reader:
            end_process(self.reader)
            self.reader = None
        subprocess.run(["wineserver", "-k", "-w"], env=self.env, check=False)


def viewers(program):
    """What shows its help: the system within the program itself."""
    return [program]


def listen(event, heard):
    """Wine 8 has no screen reader to tell."""
    return lambda: None
