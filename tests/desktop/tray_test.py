"""The tray icon on both kinds of tray: clicks, the menu, and the ways back from every state."""

import re
import time

from harness import (DesktopTest, act_until, double_click, end_process, key, main, options, run,
                     wait_until)
from help_viewer import viewers
from notifier_host import NotifierTray

CLIENT = (535, 254)
ENTRIES = ["Show", "-", "Help", "About", "-", "Exit"]


def all_windows():
    """They cannot be read while one goes."""
    return wait_until(lambda: run("xwininfo", "-root", "-tree", check=False), "the windows")


class EmbeddingTray:
    """A tray of the older kind; it is used with the mouse."""

    def __init__(self, desktop):
        self.process = desktop.start("trayer", "--edge", "bottom", "--align", "left", "--widthtype",
                                     "request", "--height", "24", "--expand", "false")

    def is_up(self):
        return "trayer" in all_windows()

    def items(self):
        """Where the icons are: the program's windows of an icon's size."""
        found = re.findall(r'"quillmere" .* (\d+)x(\d+)\+-?\d+\+-?\d+ +\+(\d+)\+(\d+)$',
                           all_windows(), re.MULTILINE)
        return [(int(left) + 5, int(top) + 5) for width, height, left, top in found
                if 10 < int(width) <= 32 and int(height) <= 32 and int(top) > 900]

    def click(self, button=1):
        run("xdotool", "mousemove", *self.items()[0], "click", button)

    def double_click(self):
        double_click(*self.items()[0])


class TrayTest(DesktopTest):
    def put_up(self, tray):
        self.tray = tray(self.desktop)
        self.addCleanup(end_process, self.tray.process)
        wait_until(self.tray.is_up, "the tray")

    def take_down(self):
        end_process(self.tray.process)
        wait_until(lambda: not self.tray.is_up(), "the tray to go")

    def in_taskbar(self):
        return f"{int(self.watched.find_window()):#x}" in run("xprop", "-root", "_NET_CLIENT_LIST")

    def check_back(self):
        program = self.watched
        wait_until(lambda: program.mapped() and program.geometry()[2:] == CLIENT and run(
            "xdotool", "getactivewindow", check=False).strip() == program.find_window(),
            "the window in front, in its own size")
        self.assertNotRegex(program.window_states(), "HIDDEN|MAXIMIZED")
        self.assertTrue(self.in_taskbar())

    def minimise(self):
        run("xdotool", "windowminimize", self.watched.find_window())
        wait_until(lambda: not self.watched.mapped(), "the window to go")
        wait_until(lambda: self.in_taskbar() != self.to_tray, "its place in the taskbar to follow")

    def menu_is_open(self):
        """It has no name, and is larger than the icon, which has none either."""
        return any(int(self.watched.window_info(window).get("Width", 0)) > 40
                   for window in self.watched.windows(""))

    def open_menu(self):
        # The toolkit closes a menu when the focus leaves the program, which a window that is just
        # being minimised can bring about later than a person would click.
        act_until(lambda: self.tray.click(3), self.menu_is_open, "the menu")

    def choose(self, caption):
        if isinstance(self.tray, NotifierTray):
            return self.tray.choose(caption)
        self.open_menu()
        place = [each for each in ENTRIES if each != "-"].index(caption)
        return key(*["Down"] * (place + 1), "Return")

    def check_ways_back(self):
        for leave, way in ((self.minimise, self.tray.click),
                           (self.minimise, self.tray.double_click),
                           (self.minimise, lambda: self.choose("Show")),
                           (self.watched.switch_maximised, self.tray.click),
                           (self.watched.switch_maximised, lambda: self.choose("Show"))):
            leave()
            way()
            self.check_back()

    def check_what_stands_over_it(self):
        """The about box and a question are above the window, and go and come with it."""
        program = self.watched
        program.button("About").press()
        box, = wait_until(lambda: program.windows("About Quillmere"), "the about box")
        left, top, *_ = program.geometry()
        run("xdotool", "mousemove", left + 60, top - 10, "click", 1)
        self.check_back()
        order = run("xprop", "-root", "_NET_CLIENT_LIST_STACKING")
        self.assertRegex(order, f"{int(program.find_window()):#x}.*{int(box):#x}")
        self.minimise()
        wait_until(lambda: not program.windows("About Quillmere"), "the box to go")
        self.tray.click()
        wait_until(lambda: program.windows("About Quillmere"), "the box to come back")
        program.button("OK").press()

        program.select_tab("Tools")
        program.check_box("Clean Cookies").press()
        program.button("Clean").click()
        program.button("No")
        self.minimise()
        self.tray.click()
        self.wait_for_equal(lambda: len(program.windows("Quillmere")), 2)
        program.button("No").click()
        self.wait_for_equal(lambda: len(program.windows("Quillmere")), 1)

    def check_menu(self):
        """Every entry, with the window hidden, which it stays until it is asked for."""
        self.minimise()
        self.open_menu()
        self.desktop.screenshot(f"tray-{type(self.tray).__name__}")
        run("xdotool", "mousemove", 900, 300, "click", 1)
        wait_until(lambda: not self.menu_is_open(), "the menu to close")
        self.choose("About")
        wait_until(lambda: self.watched.windows("About Quillmere"), "the about box")
        self.choose("Help")
        wait_until(lambda: any(each.windows(".*Help") for each in viewers(self.watched)), "help")
        self.assertFalse(self.watched.mapped())
        if isinstance(self.tray, NotifierTray):
            self.assertEqual([caption for _, caption in self.tray.menu()], ENTRIES)
            self.assertEqual(self.tray.tool_tip(), "Quillmere")
        self.choose("Exit")
        self.assertEqual(self.watched.process.wait(20), 0)
        wait_until(lambda: not self.tray.items(), "the icon to go")

    def test_tray_that_comes_later(self):
        """At logon the program can be there first; and a tray can end and come again."""
        self.to_tray = True
        for tray in (EmbeddingTray, NotifierTray):
            self.watched = self.started(switch=("/1",))
            for _ in range(2):
                self.put_up(tray)
                wait_until(self.tray.items, "the icon")
                self.assertFalse(self.watched.mapped())
                if tray is EmbeddingTray:  # only the button's release counts
                    run("xdotool", "mousemove", *self.tray.items()[0], "mousedown", 1)
                    time.sleep(0.3)
                    self.assertFalse(self.watched.mapped())
                    run("xdotool", "mouseup", 1)
                else:
                    self.tray.click()
                self.check_back()
                self.minimise()
                self.take_down()
            self.watched.end()

    def test_every_way(self):
        for tray in (EmbeddingTray, NotifierTray):
            for self.to_tray in (True, False):
                with self.subTest(tray=tray.__name__, to_tray=self.to_tray):
                    self.put_up(tray)
                    self.watched = self.started(config=options(to_tray=self.to_tray))
                    wait_until(self.tray.items, "the icon")
                    self.check_ways_back()
                    self.check_what_stands_over_it()
                    self.check_menu()
                    self.take_down()


if __name__ == "__main__":
    main()
