"""Every window by keyboard alone, told to a screen reader, at every scale and in a dark theme."""

import contextlib
import re

from gi.repository import GLib

from harness import LISTS, SCREENS, DesktopTest, main, run, wait_until

CONFIG = b"SaveLog=False\r\nToTray=True\r\nPlaySound1=False\r\nPlaySound2=False\r\n"
COOKIE = b"id\n42\nshop.example/\n0\n0\n30000000\n0\n0\n*\n"
FILE = "jane@shop.example[1].txt"
ADDED = "Cookie file added\r\n" + FILE
QUESTION = "Do you want to delete selected cookie file(s) and all cookies in them?"
TABS = ("Log", "Cookies", "Search", "Tools", "Sound", "Options")

# Where the Tab key goes in each window, from where it starts. The start button is grey while the
# program watches, and a tab strip is called by its selected tab.
BUTTONS = [("push button", name) for name in ("Stop", "Help", "About")]
PAGES = {
    "Log": [("list", "Log"), ("page tab list", "Log")],
    "Cookies": [("page tab list", "Cookies"), ("tree", "Cookies")],
    "Search": [("page tab list", "Search"), ("tree", "Search results"), ("text", "Search for"),
               ("combo box", "Cookie Name"), ("push button", "Search")],
    "Tools": [("page tab list", "Tools"), ("check box", "Clean Cookies"),
              ("check box", "Empty Recycle Bin"),
              ("check box", "Clean Windows Recent Documents History"), ("push button", "Clean")],
    "Sound": [("page tab list", "Sound"),
              ("check box", "Play sound when a new cookie file is added"),
              ("check box", "Play sound when a cookie file is removed"),
              ("push button", "Play"), ("push button", "Play")],
    "Options": [("page tab list", "Options"), ("check box", "Do not save log file"),
                ("check box", "Start with windows"), ("check box", "Minimize to system tray")],
}
ABOUT = [("push button", "OK"), ("link", "support@quillmere.example"),
         ("link", "https://www.quillmere.example/")]
DETAIL = [("text", "Cookie file"), ("text", "Modified"), ("text", "Size"), ("text", "Details"),
          ("push button", "Close")]
POPUP = [("push button", "Close"), ("push button", "View")]
QUESTION_BOX = [("push button", "Yes"), ("push button", "No")]
# Roles of controls that only hold others, and so need no name.
HOLDERS = {"filler", "panel", "scroll bar", "label"}
# The client areas, in pixels of a screen that is not scaled.
MAIN, ABOUT_BOX, DETAILS, POPUP_BOX = (535, 254), (366, 241), (471, 361), (229, 91)

READ = {"push button", "label", "link", "check box", "combo box", "page tab"}
DARK = {"QT_QPA_PLATFORMTHEME": "kde", "KDE_SESSION_VERSION": "5"}
DARK_COLOURS = """\
[Colors:Window]
BackgroundNormal=49,54,59
ForegroundNormal=239,240,241
[Colors:View]
BackgroundNormal=35,38,41
BackgroundAlternate=49,54,59
ForegroundNormal=239,240,241
ForegroundLink=61,174,233
[Colors:Button]
BackgroundNormal=49,54,59
ForegroundNormal=239,240,241
[Colors:Selection]
BackgroundNormal=61,174,233
ForegroundNormal=35,38,41
"""


class AccessTest(DesktopTest):
    def with_cookie(self, **options):
        program = self.program(config=CONFIG, **options)
        (program.cookies / FILE).write_bytes(COOKIE)
        return program

    def key(self, *keys):
        run("xdotool", "key", *keys)

    def active(self, program):
        """The window in front, as the accessibility bus knows it."""
        return next((window for window in program.application().children()
                     if window.has("active")), None)

    def everything(self, window):
        for child in window.children() if window else ():
            yield child
            if child.role not in LISTS:
                yield from self.everything(child)

    def focused(self, program):
        """Role and name of the control that has the keyboard."""
        with contextlib.suppress(GLib.Error):  # a window can go while it is looked at
            for each in self.everything(self.active(program)):
                if each.has("focused") and each.has("focusable") and each.role != "page tab":
                    return each.role, each.name
        return None

    def wait_for_focus(self, program, control):
        try:
            wait_until(lambda: self.focused(program) == control, "", 8)
        except AssertionError:
            self.assertEqual(self.focused(program), control)

    def wait_for_window(self, program, title):
        def is_active():
            with contextlib.suppress(GLib.Error):
                window = self.active(program)
                return window and window.name == title
        wait_until(is_active, f"'{title}' in front")

    def check_tab_order(self, program, order):
        """Once round by Tab and one step back; it begins and ends at the first control."""
        for control in (*order, order[0]):
            self.wait_for_focus(program, control)
            self.key("Tab")
        self.wait_for_focus(program, order[1])
        self.key("shift+Tab")
        self.wait_for_focus(program, order[0])

    def check_names(self, program):
        """No control in sight is without a name that says what it is."""
        nameless = [(each.role, each.place()) for each in self.everything(self.active(program))
                    if each.showing and not each.name and each.role not in HOLDERS]
        self.assertEqual(nameless, [])

    def select_tab(self, program, tab):
        """From the first button, by the arrow keys, and back there."""
        while (focus := self.focused(program))[0] != "page tab list":
            self.key("Tab")
            wait_until(lambda: self.focused(program) not in (None, focus), "the next control", 5)
        step = TABS.index(tab) - TABS.index(focus[1])
        if step:
            self.key(*["Right" if step > 0 else "Left"] * abs(step))
        self.wait_for_focus(program, ("page tab list", tab))

    def open_list(self, program):
        """The list of cookies with its one row selected."""
        self.select_tab(program, "Cookies")
        wait_until(lambda: program.control("tree", "Cookies").rows(), "the cookie in the list")
        self.key("Tab", "Home", "space")
        self.wait_for_focus(program, ("tree", "Cookies"))

    def open_about(self, program):
        while self.focused(program) != BUTTONS[2]:
            self.key("shift+Tab")
        self.key("Return")
        self.wait_for_focus(program, ABOUT[0])

    def open_detail(self, program):
        self.key("Return")
        self.wait_for_window(program, f"Detail - {FILE}")

    def open_question(self, program, menu_key):
        windows = self.windows(program)
        self.key(menu_key)
        wait_until(lambda: self.windows(program) > windows, "the menu")
        self.key("Down", "Down", "Return")
        program.control("label", QUESTION)
        self.wait_for_focus(program, QUESTION_BOX[0])

    def open_popup(self, program, scale=1):
        """A popup comes and is given the keyboard."""
        (program.cookies / FILE).write_bytes(COOKIE + COOKIE)
        popup = wait_until(lambda: self.window_of(program, POPUP_BOX, scale), "the popup")
        run("xdotool", "windowactivate", "--sync", popup)

    def windows(self, program):
        return set(run("xdotool", "search", "--onlyvisible", "--all", "--pid", program.process.pid,
                       "--name", "", check=False).split())

    def window_of(self, program, size, scale=1):
        """The window of that size on the screen."""
        for window in self.windows(program):
            text = run("xwininfo", "-id", window, check=False)
            found = [int(side) for side in re.findall(r"(?:Width|Height): (\d+)", text)]
            if len(found) == 2 and all(abs(a - b * scale) <= 1 for a, b in zip(found, size)):
                return window
        return None

    # --- Keyboard --------------------------------------------------------------------------------

    def test_main_window(self):
        program = self.with_cookie().start()
        self.wait_for_window(program, "Quillmere")
        for tab, page in PAGES.items():
            with self.subTest(tab=tab):
                self.select_tab(program, tab)
                while self.focused(program) != BUTTONS[0]:
                    self.key("Tab")
                self.check_tab_order(program, BUTTONS + page)
                self.check_names(program)
        self.select_tab(program, "Tools")
        self.key("Tab", "space", "alt+c")
        program.control("label", "Do you want to clean selected items")
        self.key("Escape")
        self.wait_for_focus(program, PAGES["Tools"][1])


    def test_other_windows(self):
        """Opened, gone round and closed by every key that closes them."""
        program = self.with_cookie().start()
        self.wait_for_window(program, "Quillmere")
        for close in ("Escape", "alt+o", "Return"):
            self.open_about(program)
            self.check_tab_order(program, ABOUT)
            self.key(close)
            self.wait_for_window(program, "Quillmere")

        self.open_list(program)
        for close in (["Escape"], ["alt+c"], ["shift+Tab", "Return"]):
            self.open_detail(program)
            self.check_tab_order(program, DETAIL)
            self.check_names(program)
            self.key(*close)
            self.wait_for_focus(program, ("tree", "Cookies"))

        for menu_key, close in (("shift+F10", "Escape"), ("Menu", "alt+n")):
            self.open_question(program, menu_key)
            self.check_tab_order(program, QUESTION_BOX)
            self.key(close)
            self.wait_for_focus(program, ("tree", "Cookies"))
            self.assertTrue((program.cookies / FILE).exists())

        self.open_popup(program)
        self.check_tab_order(program, POPUP)
        self.key("alt+c")
        wait_until(lambda: not self.window_of(program, POPUP_BOX), "the popup to close", 3)
        self.open_popup(program)
        self.key("alt+v")
        self.wait_for_window(program, f"Detail - {FILE}")

    def test_help(self):
        program = self.with_cookie().start()
        self.wait_for_focus(program, BUTTONS[0])
        self.key("Tab", "Return")
        page, find = ("label", "Help page"), ("text", "Find in page")
        self.wait_for_focus(program, page)
        self.check_names(program)
        self.key("alt+f")
        self.wait_for_focus(program, find)
        self.key("shift+Tab")
        self.wait_for_focus(program, ("push button", "Home"))
        self.key("shift+Tab")
        self.wait_for_focus(program, page)
        self.key("Escape")
        self.wait_for_focus(program, BUTTONS[1])

    # --- Scales and colours ----------------------------------------------------------------------

    def places(self, program):
        """Where each control in sight lies in its window, in units that do not depend on scale."""
        window = self.active(program)
        left, top = window.place()[:2]
        return [(each.role, each.name, place[0] - left, place[1] - top, *place[2:])
                for each in self.everything(window) if each.showing and (place := each.place())]

    def all_windows(self, program, picture, scale, visit):
        """Shows each window in turn, takes its picture and lets `visit` look at it."""
        def look(name, size=None):
            if size:
                wait_until(lambda: self.window_of(program, size, scale), f"{name} at its size", 5)
            self.desktop.screenshot(f"{picture}-{name}")
            visit(name)

        self.wait_for_window(program, "Quillmere")
        for tab in TABS:
            self.select_tab(program, tab)
            look(tab.lower(), MAIN)
        self.open_list(program)
        self.open_detail(program)
        look("detail", DETAILS)
        self.key("Escape")
        self.wait_for_focus(program, ("tree", "Cookies"))
        self.open_question(program, "Menu")
        look("question")
        self.key("Escape")
        self.wait_for_focus(program, ("tree", "Cookies"))
        self.open_about(program)
        look("about", ABOUT_BOX)
        self.key("Escape")
        self.wait_for_focus(program, BUTTONS[2])
        self.open_popup(program, scale)
        self.wait_for_focus(program, POPUP[0])
        look("popup", POPUP_BOX)
        self.key("alt+c")
        program.activate()
        self.wait_for_focus(program, BUTTONS[2])
        self.key("shift+Tab", "Return")
        self.wait_for_focus(program, ("label", "Help page"))
        look("help")

    def test_scales(self):
        """The same places at every scale, in windows that are so much larger."""
        usual = {}
        self.addCleanup(run, "xprop", "-root", "-remove", "RESOURCE_MANAGER")
        for picture, scale, env, resources in (
                ("scale-100", 1, {}, ""), ("scale-150", 1.5, {"QT_SCALE_FACTOR": "1.5"}, ""),
                ("scale-200", 2, {"QT_SCALE_FACTOR": "2"}, ""),
                ("dpi-144", 1.5, {}, "Xft.dpi:\t144\n")):
            with self.subTest(picture=picture):
                run("xprop", "-root", "-format", "RESOURCE_MANAGER", "8s",
                    "-set", "RESOURCE_MANAGER", resources)
                program = self.with_cookie(env=env).start()

                def visit(name):
                    if name in ("help", "question"):  # as large as their content and the screen
                        return
                    places = self.places(program)
                    self.assertEqual(places, usual.setdefault(name, places), name)

                self.all_windows(program, picture, scale, visit)
                left, top, width, height = self.active(program).place()
                self.assertLessEqual((left + width) * scale, 1280)
                self.assertLessEqual((top + height) * scale, 1024)
                program.kill()

    def contrast(self, picture, place):
        """Of the strongest colour against the commonest one, as the web's guidelines count it."""
        left, top, width, height = place
        text = run("convert", SCREENS / f"{picture}.png", "-crop",
                   f"{width}x{height}+{left}+{top}", "-depth", 8, "-format", "%c",
                   "histogram:info:")
        colours = [(int(count), [int(part, 16) for part in re.findall("..", code)[:3]])
                   for count, code in re.findall(r"(\d+): .*#([0-9A-F]{6})", text)]

        def light(colour):
            parts = [part / 255 for part in colour]
            linear = [p / 12.92 if p <= 0.04045 else ((p + 0.055) / 1.055)**2.4 for p in parts]
            return 0.2126 * linear[0] + 0.7152 * linear[1] + 0.0722 * linear[2] + 0.05

        ground = light(max(colours)[1])
        ratio = max(max(light(c), ground) / min(light(c), ground) for _, c in colours)
        return ratio, ground

    def test_colours(self):
        """Every text can be read, and in a dark theme all windows are dark."""
        for picture, env in (("light", {}), ("dark", DARK)):
            with self.subTest(picture=picture):
                program = self.with_cookie(env=env)
                (program.folder.parent / "config/kdeglobals").write_text(DARK_COLOURS)
                program.start()

                def visit(name):
                    window = self.active(program)
                    dark = self.contrast(f"{picture}-{name}", window.place())[1] < 0.2
                    self.assertEqual(dark, picture == "dark", name)
                    for each in self.everything(window):
                        if each.showing and each.enabled and each.role in READ and each.name:
                            ratio = self.contrast(f"{picture}-{name}", each.place())[0]
                            self.assertGreater(ratio, 4.5, f"{name}: {each.role} {each.name}")

                self.all_windows(program, picture, 1, visit)
                program.kill()


if __name__ == "__main__":
    main()
