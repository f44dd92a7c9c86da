"""The tray icon on both kinds of tray: clicks, the menu, and the ways back from every state."""

import contextlib
import subprocess
import time

from harness import DesktopTest, end_process, main, run, wait_until
from notifier_host import NotifierTray

TO_TRAY = b"SaveLog=False\r\nToTray=True\r\nPlaySound1=False\r\nPlaySound2=False\r\n"
TO_TASKBAR = TO_TRAY.replace(b"ToTray=True", b"ToTray=False")
CLIENT = (535, 254)
ENTRIES = ["Show", "-", "Help", "About", "-", "Exit"]


class EmbeddingTray:
    """A tray of the older kind; it is used with the mouse."""

    def __init__(self, desktop):
        self.process = desktop.start("trayer", "--edge", "bottom", "--align", "left", "--widthtype",
                                     "request", "--height", "24", "--expand", "false")

    def items(self):
        """The windows of the icons."""
        found = subprocess.run(["xdotool", "search", "--class", "^trayer$"], capture_output=True,
                               text=True).stdout.split()
        icons = set()
        for window in found:
            with contextlib.suppress(subprocess.CalledProcessError):
                tree = run("xwininfo", "-tree", "-id", window)
                icons |= {str(int(line.split()[0], 16)) for line in tree.splitlines()
                          if '("quillmere"' in line}
        return sorted(icons)

    def point(self):
        window = wait_until(self.items, "the icon")[0]
        text = run("xdotool", "getwindowgeometry", "--shell", window)
        values = dict(line.split("=") for line in text.splitlines())
        run("xdotool", "mousemove", int(values["X"]) + int(values["WIDTH"]) // 2,
            int(values["Y"]) + int(values["HEIGHT"]) // 2)

    def click(self, *clicks):
        self.point()
        run("xdotool", *(clicks or ("click", 1)))

    def double_click(self):
        self.click("click", "--repeat", 2, "--delay", 50, 1)

    def right_click(self):
        self.click("click", 3)

    def is_up(self):
        # The tree cannot be read while a window goes out of it.
        return '"panel" "trayer"' in wait_until(
            lambda: run("xwininfo", "-root", "-tree", check=False), "the windows")


TRAYS = (EmbeddingTray, NotifierTray)


class TrayTest(DesktopTest):
    def put_up(self, tray):
        self.tray = tray(self.desktop)
        self.addCleanup(end_process, self.tray.process)
        wait_until(self.tray.is_up, "the tray")

    def with_icon(self, tray, **options):
        self.put_up(tray)
        program = self.started(**options)
        wait_until(self.tray.items, "the icon")
        return program

    def on_screen(self, program, name):
        """The windows of that name that can be seen; an open menu has none."""
        found = subprocess.run(["xdotool", "search", "--onlyvisible", "--all", "--pid",
                                str(program.process.pid), "--name", f"^{name}$"],
                               capture_output=True, text=True).stdout.split()
        return [window for window in found if window not in self.tray.items()]

    def is_active(self, program):
        found = subprocess.run(["xdotool", "getactivewindow"], capture_output=True, text=True)
        return found.stdout.strip() == program.find_window()

    def assert_back(self, program):
        wait_until(program.mapped, "the window on the screen")
        wait_until(lambda: self.is_active(program), "the window in front")
        wait_until(lambda: program.geometry()[2:] == CLIENT, "the window's own size")
        states = program.window_states()
        self.assertNotIn("HIDDEN", states)
        self.assertNotIn("MAXIMIZED", states)

    def minimise(self, program):
        run("xdotool", "windowminimize", program.find_window())
        wait_until(lambda: not program.mapped(), "the window to go")

    def maximise(self, program):
        left, top, width, _ = program.geometry()
        run("xdotool", "mousemove", left + width // 2, top - program.frame()[2] // 2,
            "click", "--repeat", 2, "--delay", 50, 1)
        wait_until(lambda: "MAXIMIZED" in program.window_states(), "the window to be maximised")

    def open_menu(self, program):
        # The toolkit closes a menu when the focus leaves the program, which a window that is just
        # being minimised can bring about later than a person would click.
        wait_until(lambda: self.tray.right_click() or self.menu_opened(program), "the menu")

    def menu_opened(self, program):
        with contextlib.suppress(AssertionError):
            return wait_until(lambda: self.on_screen(program, ""), "the menu", seconds=3)
        return None

    def choose(self, program, caption):
        if isinstance(self.tray, NotifierTray):
            return self.tray.choose(caption)
        self.open_menu(program)
        captions = [each for each in ENTRIES if each != "-"]
        run("xdotool", "key", *["Down"] * (captions.index(caption) + 1), "Return")

    def test_ways_back(self):
        """From every state of the window, by a click, a double click and the menu."""
        for tray in TRAYS:
            for config, switch, leave in ((TO_TRAY, (), self.minimise),
                                          (TO_TASKBAR, (), self.minimise),
                                          (TO_TRAY, ("/1",), self.minimise),
                                          (TO_TRAY, (), self.maximise)):
                with self.subTest(tray=tray.__name__, config=config, switch=switch, leave=leave):
                    program = self.with_icon(tray, config=config, switch=switch)
                    if switch:
                        wait_until(lambda: not program.mapped(), "the hidden start")
                        self.tray.click()
                        self.assert_back(program)
                    for way in (self.tray.click, self.tray.double_click,
                                lambda: self.choose(program, "Show")):
                        leave(program)
                        way()
                        self.assert_back(program)
                    self.assertEqual(program.end(), 0)
                    wait_until(lambda: not self.tray.items(), "the icon to go")
                    end_process(self.tray.process)

    def test_menu(self):
        """Every entry, with the window hidden, which it stays until it is asked for."""
        for tray in TRAYS:
            with self.subTest(tray=tray.__name__):
                program = self.with_icon(tray, config=TO_TRAY)
                self.minimise(program)
                self.open_menu(program)
                self.desktop.screenshot(f"tray-{tray.__name__}")
                run("xdotool", "mousemove", 900, 300, "click", 1)
                wait_until(lambda: not self.on_screen(program, ""), "the menu to close")
                self.choose(program, "About")
                wait_until(lambda: self.on_screen(program, "About Quillmere"), "the about box")
                self.choose(program, "Help")
                wait_until(lambda: self.on_screen(program, ".*[Hh]elp.*"), "the help")
                self.assertFalse(program.mapped())
                if tray is NotifierTray:
                    self.assertEqual([caption or "-" for _, _, caption in self.tray.menu()], ENTRIES)
                    self.assertEqual(self.tray.tool_tip(), "Quillmere")
                self.choose(program, "Exit")
                self.assertEqual(program.process.wait(20), 0)
                wait_until(lambda: not self.tray.items(), "the icon to go")
                end_process(self.tray.process)

    def test_tray_that_comes_later(self):
        """At logon the program can be there first; and a tray can end and come again."""
        for tray in TRAYS:
            with self.subTest(tray=tray.__name__):
                program = self.started(config=TO_TRAY, switch=("/1",))
                for _ in range(2):
                    self.put_up(tray)
                    wait_until(self.tray.items, "the icon")
                    self.tray.click()
                    self.assert_back(program)
                    self.minimise(program)
                    end_process(self.tray.process)
                    wait_until(lambda: not self.tray.is_up(), "the tray to go")
                self.assertEqual(program.end(), 0)

    def test_only_the_release_counts(self):
        program = self.with_icon(EmbeddingTray, config=TO_TRAY)
        self.minimise(program)
        self.tray.click("mousedown", 1)
        self.tray.click("mousemove_relative", "--", 2, 2)
        time.sleep(0.5)
        self.assertFalse(program.mapped())
        self.tray.click("mouseup", 1)
        self.assert_back(program)

    def test_no_tray_and_no_bus(self):
        program = self.started(config=TO_TRAY, accessible=False,
                               env={"DBUS_SESSION_BUS_ADDRESS": "unix:path=/nowhere"})
        self.assertEqual(program.end(), 0)
        self.assertEqual((program.folder.parent / "stderr").read_text(), "")


if __name__ == "__main__":
    main()
