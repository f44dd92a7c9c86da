"""The tray icon on both kinds of tray: clicks, the menu, and the ways back from every state."""

import re
import time

from harness import (MACHINE, WINDOW_MANAGERS, DesktopTest, act_until, double_click, end_process, front, key,
                     main, options, run, under, viewers, wait_until)
from embedding_host import EmbeddingTray
from notifier_host import NotifierTray


# Where each stands in the menu, as a part of its height.
ENTRIES = {"Show": 0.13, "Help": 0.41, "About": 0.59, "Exit": 0.87}
# Wine knows the older kind alone.
TRAYS = (EmbeddingTray, NotifierTray) if MACHINE == "linux" else (EmbeddingTray,)


class TrayTest(DesktopTest):
    size = 535, 254  # of the window in its normal state, in pixels

    def setUp(self):
        super().setUp()
        if MACHINE == "windows":
            end_process(self.desktop.tray)

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
        wait_until(lambda: program.mapped() and front() == program.find_window(), "it in front")
        self.wait_for_equal(lambda: program.geometry()[2:], self.size)
        self.assertNotRegex(program.window_states(), "HIDDEN|MAXIMIZED")
        self.assertTrue(self.in_taskbar())
        if MACHINE == "windows":
            time.sleep(0.5)  # Wine hears of it from the X server later

    def minimise(self):
        run("xdotool", "windowminimize", self.watched.find_window())
        wait_until(lambda: not self.watched.mapped() and self.in_taskbar() != self.to_tray,
                   "the window to go, and with it its place in the taskbar or not")

    def menus(self):
        """An open one has no name, and is larger than the icon, which has none either."""
        return [window for window in self.watched.windows("")
                if int(self.watched.window_info(window).get("Width", 0)) > 40]

    def open_menu(self):
        # A menu closes with the focus, which a window that is being minimised can take late.
        act_until(lambda: self.tray.click(3), self.menus, "the menu")

    def choose(self, caption):
        if isinstance(self.tray, NotifierTray):
            return self.tray.choose(caption)
        self.open_menu()
        if MACHINE == "windows":  # Wine 8 hears no keys while the window is hidden
            return self.choose_by_mouse(ENTRIES[caption])
        return key(*["Down"] * [*ENTRIES].index(caption), "Down", "Return")

    def choose_by_mouse(self, part):
        menu, = self.menus()
        left, top, width, height = self.watched.geometry(menu)
        run("xdotool", "mousemove", left + width // 2, round(top + height * part), "click", 1)

    def check_about_box(self):
        """It is above the window, and goes and comes with it."""
        program = self.watched
        program.button("About").press()
        box, = wait_until(lambda: program.windows("About Quillmere"), "the about box")
        program.activate()
        self.check_back()
        order = run("xprop", "-root", "_NET_CLIENT_LIST_STACKING")
        self.assertRegex(order, f"{int(program.find_window()):#x}.*{int(box):#x}")
        self.minimise()
        wait_until(lambda: not program.windows("About Quillmere"), "the box to go")
        self.tray.click()
        wait_until(lambda: program.windows("About Quillmere"), "the box to come back")
        program.button("OK").press()

    def check_question(self):
        """It goes and comes with the window."""
        program = self.watched
        program.select_tab("Tools")
        program.tick("Clean Cookies")
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
        wait_until(lambda: not self.menus(), "the menu to close")
        self.choose("About")
        wait_until(lambda: self.watched.windows("About Quillmere"), "the about box")
        if MACHINE == "linux":  # Wine shows no help without a browser of its own
            self.choose("Help")
            wait_until(lambda: any(each.windows(".*Help") for each in viewers(self.watched)), "help")
        self.assertFalse(self.watched.mapped())
        if isinstance(self.tray, NotifierTray):
            self.assertEqual([caption for _, caption in self.tray.menu()],
                             ["Show", "-", "Help", "About", "-", "Exit"])
            self.assertEqual(self.tray.tool_tip(), "Quillmere")
        self.choose("Exit")
        self.assertEqual(self.watched.process.wait(20), 0)
        wait_until(lambda: not self.tray.items(), "the icon to go")

    def test_tray_that_comes_later(self):
        """At logon the program can be there first; and a tray can end and come again."""
        self.to_tray = True
        for tray in TRAYS:
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

    def set_desktop(self, number):
        run("xdotool", "set_desktop", number)
        self.wait_for_equal(lambda: run("xdotool", "get_desktop").strip(), str(number))

    def is_here(self, window):
        return run("xdotool", "get_desktop_for_window", window, check=False) == run(
            "xdotool", "get_desktop")

    @under(*WINDOW_MANAGERS)
    def test_way_back(self):
        """One click leads back from a maximised window in the tray, and to the desktop in sight."""
        self.to_tray = True
        self.put_up(EmbeddingTray)
        self.watched = program = self.started(config=options())
        wait_until(self.tray.items, "the icon")
        self.size = 700, 400
        run("xdotool", "windowsize", program.find_window(), *self.size)
        self.check_back()
        time.sleep(0.5)
        self.minimise()
        run("xdotool", "mousemove", *self.tray.items()[0], "mousedown", 1, "sleep", 0.2,
            "mousemove", 600, 500, "sleep", 0.2, "mouseup", 1, "sleep", 0.5)
        self.assertFalse(program.mapped(), "a button that is released elsewhere")
        self.tray.click()
        self.check_back()
        place = program.geometry()
        for _ in range(2):
            program.switch_maximised()
            self.minimise()
            self.tray.click()
            self.check_back()
            time.sleep(0.5)
            self.wait_for_equal(program.geometry, place)
        if MACHINE == "linux":
            self.check_way_to_the_desktop_in_sight(program)

    def check_way_to_the_desktop_in_sight(self, program):
        run("xdotool", "set_num_desktops", 2)
        for number, way in ((1, self.tray.click), (0, lambda: self.choose("Show"))):
            self.set_desktop(number)
            self.assertFalse(self.is_here(program.find_window()))
            way()
            self.check_back()
            self.assertTrue(self.is_here(program.find_window()))
        self.set_desktop(1)
        self.choose("About")
        box, = wait_until(lambda: program.windows("About Quillmere"), "the about box")
        wait_until(lambda: self.is_here(box) and front() == box, "it in sight")
        self.set_desktop(0)

    def test_every_way(self):
        for tray in TRAYS:
            for self.to_tray in (True, False):
                with self.subTest(tray=tray.__name__, to_tray=self.to_tray):
                    self.put_up(tray)
                    self.watched = self.started(config=options(to_tray=self.to_tray))
                    wait_until(self.tray.items, "the icon")
                    for leave in (self.minimise, self.watched.switch_maximised):
                        for way in (self.tray.click, self.tray.double_click,
                                    lambda: self.choose("Show")):
                            leave()
                            way()
                            self.check_back()
                    if MACHINE == "linux":  # Wine 8 does not minimise and restore them together
                        self.check_about_box()
                        self.check_question()
                    self.check_menu()
                    self.take_down()


if __name__ == "__main__":
    main()
