"""Every window: where things lie at each size and scale, its colours, and its use by keyboard."""

import math

from harness import (MACHINE, SAVE_LOG, SCREENS, TWIPS_PER_PIXEL, WINDOW_MANAGERS, DesktopTest, cookies,
                     front, key, main, only_on, run, under, viewers, wait_until)

FILE = "jane@shop.example[1].txt"

# The controls that each tab shows, in the order of the Tab key, and where they lie in twips of the
# window as it opens. The strip has the keyboard under the name of its selected tab.
STRIP = ("filler" if MACHINE == "linux" else "page tab list", "Pages", (1950, 180, 6045, 3600))
BUTTONS = [
    ("push button", "Start", (270, 390, 1500, 465)),
    ("push button", "Stop", (270, 920, 1500, 465)),
    ("push button", "Help", (270, 1450, 1500, 465)),
    ("push button", "About", (270, 1980, 1500, 465)),
]
TABS = {
    "Log": [("list", "Log", (2070, 615, 5805, 3030))],
    "Cookies": [("tree", "Cookies", (2070, 615, 5805, 3030))],
    "Search": [
        ("tree", "Search results", (2085, 1050, 5775, 2580)),
        ("label", "Search", (2100, 645, 510, 195)),
        ("text", "Search for", (2715, 630, 1575, 285)),
        ("combo box", "Cookie Name", (4605, 630, 1920, 315)),
        ("label", "in", (4365, 645, 120, 195)),
        ("push button", "Search", (6585, 645, 900, 315)),
    ],
    "Tools": [
        ("panel", "Cleaner", (2070, 600, 5805, 3030)),
        ("check box", "Clean Cookies", (2385, 990, 1950, 240)),
        ("check box", "Empty Recycle Bin", (2385, 1365, 2130, 240)),
        ("check box", "Clean Windows Recent Documents History", (2385, 1725, 4260, 240)),
        ("push button", "Clean", (6045, 975, 1155, 405)),
    ],
    "Sound": [
        ("check box", "Play sound when a new cookie file is added", (2175, 810, 3885, 270)),
        ("check box", "Play sound when a cookie file is removed", (2175, 1275, 3885, 270)),
        ("push button", "Play the sound of an added cookie file", (6120, 795, 990, 315)),
        ("push button", "Play the sound of a removed cookie file", (6120, 1260, 990, 315)),
    ],
    "Options": [
        ("check box", "Do not save log file", (2175, 795, 2415, 285)),
        ("check box", "Start with windows", (2175, 1215, 2415, 285)),
        ("check box", "Minimize to system tray", (2175, 1650, 2415, 285)),
    ],
}
GROWING = {"Pages", "Log", "Cookies", "Search results", "Cleaner"}
MAIN = (535, 254)  # the client area, in pixels of a screen that is not scaled
LIST = ("tree", "Cookies")
# Roles of controls that only hold others or adorn, and so need no name; and of texts to read.
HOLDERS = {"filler", "panel", "scroll bar", "label", "image"}
READ = {"push button", "label", "link", "check box", "combo box", "page tab"}

DARK = {"QT_QPA_PLATFORMTHEME": "kde", "KDE_SESSION_VERSION": "5"}
DARK_COLOURS = "".join(f"[Colors:{part}]\nBackgroundNormal=49,54,59\nForegroundNormal=239,240,241\n"
                       "BackgroundAlternate=35,38,41\nForegroundLink=61,174,233\n"
                       for part in ("Window", "View", "Button", "Selection"))
# Name and scale of each look, the environment and the display's resources that bring it about.
LOOKS = [("light-100", 1, {}, ""), ("dark-150", 1.5, DARK, "Xft.dpi:\t144\n"),
         ("light-200", 2, {"QT_SCALE_FACTOR": "2"}, "")]


def greys(picture, places, scale):
    """The lightness, out of 1, of those parts of the picture, and how far it reaches in each."""
    command = ["convert", SCREENS / f"{picture}.png", "-colorspace", "gray"]
    for place in places:
        left, top, width, height = (round(max(0, value) * scale) for value in place)
        command += ["(", "-clone", 0, "-crop", f"{width}x{height}+{left}+{top}", "-format",
                    r"%[fx:mean] %[fx:maxima-minima]\n", "-write", "info:", "+delete", ")"]
    return [tuple(map(float, line.split())) for line in run(*command, "null:").splitlines()]


class WindowTest(DesktopTest):
    def begin(self, **options):
        self.shown = self.program(config=SAVE_LOG, **options)
        (self.shown.cookies / FILE).write_bytes(cookies("id"))
        return self.shown

    def active(self):
        """The window in front, the program's or its help's, as the accessibility bus knows it."""
        applications = (each.application() for each in (self.shown, *viewers(self.shown)))
        return next((window for application in applications if application
                     for window in application.children() if window.has("active")), None)

    def focused(self):
        """Role and name of the control that has the keyboard."""
        window = self.active()
        return next(((each.role, each.name) for each in (window.in_sight() if window else ())
                     if each.has("focused", "focusable") and each.role != "page tab"), None)

    def wait_for_focus(self, control):
        wait_until(lambda: self.focused() == control, f"the keyboard at {control}")

    def check_pages(self, picture):
        for tab in TABS:
            self.shown.select_tab(tab)
            self.desktop.screenshot(f"{picture}-{tab.lower()}")
            self.check_page(tab)

    def check_page(self, tab):
        """The tab's controls are in their places, and none of another tab is there."""
        left, top, width, height = self.shown.geometry()
        found = {}
        for each in self.active().in_sight():
            x, y, *size = each.place()
            found.setdefault((each.role, each.name), []).append((x - left, y - top, *size))
        here = [*BUTTONS, STRIP, *TABS[tab]]
        others = {each[:2] for page in TABS.values() for each in page} - {each[:2] for each in here}
        self.assertEqual(others & set(found), set())
        for role, name, place in here:
            place = [twips / TWIPS_PER_PIXEL for twips in place]
            if name in GROWING:
                place[2:] = [place[2] + width - MAIN[0], place[3] + height - MAIN[1]]
            places = found.get((role, name), [])
            self.assertTrue(any(self.lies_at(role, each, place) for each in places),
                            f"{tab}: {role} '{name}' {places} is not at {place}")

    def lies_at(self, role, found, place):
        differences = [one - other for one, other in zip(found, place)]
        if role == "check box":
            # Of a check box only mark and caption are told: they start at the left, in the middle
            # of its height, and must fit in.
            differences[1] += differences[3] / 2
            differences[2:] = [max(each, 0) for each in differences[2:]]
        elif role == "label":
            differences[3] = max(differences[3], 0)
        return max(map(abs, differences)) <= 1

    @under("openbox", "xfwm4")
    def test_sizes(self):
        program = self.begin().start()
        left, top, *size = program.geometry()
        self.assertEqual(tuple(size), MAIN)
        # In the middle of the screen, give or take what the window manager draws around it.
        self.assertLessEqual(abs(left + MAIN[0] / 2 - 640), 15)
        self.assertLessEqual(abs(top + MAIN[1] / 2 - 512), 30)
        self.assertIn("Icon (", run("xprop", "-id", program.find_window(), "_NET_WM_ICON"))
        wait_until(self.active, "the window in front")
        self.check_pages("opening")
        program.switch_maximised()
        wait_until(lambda: program.geometry()[2] > 1200, "the whole screen's width")
        self.check_pages("maximised")
        program.switch_maximised()
        # Wine 8 tells the window manager of no smallest size.
        small = (100, 100) if MACHINE == "linux" else MAIN
        for asked, given in (((800, 600), (800, 600)), (small, MAIN)):
            run("xdotool", "windowsize", program.find_window(), *asked)
            self.wait_for_equal(lambda: program.geometry()[2:], given)
        self.check_pages("smallest")

    @only_on("windows")
    def test_large_scale(self):
        """Everything grows alike, and no label is cut."""
        program = self.begin()
        program.set_scale(144)
        program.start().activate()
        self.check_size(MAIN, 1.5)
        for tab in TABS:
            program.select_tab(tab)
            self.desktop.screenshot(f"144-{tab.lower()}")
            ends = [(left + width - 1, top, 1, height) for each in self.active().in_sight()
                    if each.role == "label" for left, top, width, height in [each.place()]]
            for _, contrast in greys(f"windows-144-{tab.lower()}", ends, 1):
                self.assertLess(contrast, 0.1)

    def select_tab(self, tab):
        """By the Tab and the arrow keys."""
        self.go_to("page tab list")
        step = list(TABS).index(tab) - list(TABS).index(self.focused()[1])
        if step:
            key(*["Right" if step > 0 else "Left"] * abs(step))
        self.wait_for_focus(("page tab list", tab))

    def go_to(self, *wanted):
        """By the Tab key to a control of that role, or of that role and name."""
        while (focus := wait_until(self.focused, "the keyboard"))[:len(wanted)] != wanted:
            key("Tab")
            wait_until(lambda: self.focused() not in (None, focus), "the next control")

    def open_by(self, caption):
        self.shown.activate()
        self.go_to("push button", caption)
        key("Return")

    def open_detail(self):
        self.select_tab("Cookies")
        wait_until(lambda: self.shown.control(*LIST).rows(), "the cookie in the list")
        self.go_to(*LIST)
        key("Home", "space", "Return")

    def open_question(self):
        self.shown.choose(2)
        self.shown.button("Yes")

    def open_popup(self):
        known = self.shown.windows("Quillmere")
        (self.shown.cookies / FILE).write_bytes(cookies("id", "next"))
        popup, = wait_until(lambda: set(self.shown.windows("Quillmere")) - set(known), "the popup")
        wait_until(lambda: "focus: True" in run("xprop", "-id", popup, "WM_HINTS"), "its turn")
        run("xdotool", "windowactivate", "--sync", popup)

    # How each opens, its size, the order of the Tab key, the keys that close it in the first looks,
    # and what has the keyboard then.
    WINDOWS = [
        ("about", lambda self: self.open_by("About"), (366, 241),
         [("push button", "OK"), ("link", "support@quillmere.example"),
          ("link", "https://www.quillmere.example/")],
         ("Escape", "alt+o"), ("push button", "About")),
        ("detail", open_detail, (471, 361),
         [("text", "Cookie file"), ("text", "Modified"), ("text", "Size"), ("text", "Details"),
          ("push button", "Close")], ("Escape", "alt+c"), LIST),
        ("question", open_question, None, [("push button", "Yes"), ("push button", "No")],
         ("Escape", "alt+n"), LIST),
        ("popup", open_popup, (229, 91), [("push button", "Close"), ("push button", "View")],
         ("Return", "Escape"), None),
        ("help", lambda self: self.open_by("Help"), None, [("label", "Help page")],
         ("Escape", "Escape"), ("push button", "Help")),
    ]

    def order_from_strip(self, tab):
        page = [each[:2] for each in TABS[tab] if each[0] not in ("label", "panel")]
        buttons = [each[:2] for each in BUTTONS[1:]]  # Start is grey while the program watches
        # The log's list is the last of all in the order, other pages stand before the buttons.
        return [("page tab list", tab), *(buttons + page if tab == "Log" else page + buttons)]

    def check_tab_order(self, order):
        """Once round by Tab and one step back; it begins and ends at the first control."""
        for control in (*order, order[0]):
            self.wait_for_focus(control)
            key("Tab")
        self.wait_for_focus(order[1])
        key("shift+Tab")
        self.wait_for_focus(order[0])

    def look(self, name, scale, usual):
        """The window in front is readable, also to a screen reader, and laid out as `usual`."""
        self.desktop.screenshot(name)
        theme, _, window = name.split("-")
        in_sight = self.active().in_sight()
        self.assertNotIn(self.active().role, HOLDERS)
        self.assertEqual([(each.role, each.place()) for each in in_sight
                          if not each.name and each.role not in HOLDERS], [])
        left, top, width, height = self.active().place()
        self.assertLessEqual(max((left + width) * scale - 1280, (top + height) * scale - 1024), 0)
        if window not in ("question", "help"):  # as large as their content and the screen
            places = [(each.role, each.name, x - left, y - top, *size)
                      for each in in_sight for x, y, *size in [each.place()]]
            self.assertEqual(places, usual.setdefault(window, places))
        if theme == "dark":
            texts = [each for each in in_sight if each.enabled and each.role in READ and each.name]
            (lightness, _), *found = greys(
                name, [each.place() for each in [self.active(), *texts]], scale)
            self.assertLess(lightness, 0.65)  # the about box has a light picture
            for text, (_, contrast) in zip(texts, found, strict=True):
                self.assertGreater(contrast, 0.4, (text.role, text.name))

    @only_on("linux")
    def test_looks(self):
        """Each window in every look, opened, gone round and closed without the mouse."""
        usual = {}
        self.addCleanup(run, "xprop", "-root", "-remove", "RESOURCE_MANAGER")
        for number, (look, scale, env, resources) in enumerate(LOOKS):
            with self.subTest(look):
                run("xprop", "-root", "-format", "RESOURCE_MANAGER", "8s",
                    "-set", "RESOURCE_MANAGER", resources)
                self.begin(env=env)
                (self.shown.folder.parent / "config/kdeglobals").write_text(DARK_COLOURS)
                self.shown.start().activate()
                self.wait_for_focus(BUTTONS[1][:2])
                self.check_size(MAIN, scale)
                for tab in TABS:
                    self.select_tab(tab)
                    self.look(f"{look}-{tab.lower()}", scale, usual)
                    if number == 0:
                        self.check_tab_order(self.order_from_strip(tab))
                for name, opened, size, order, closes, after in self.WINDOWS if number < 2 else ():
                    opened(self)
                    self.wait_for_focus(order[0])
                    if size:
                        self.check_size(size, scale)
                    self.look(f"{look}-{name}", scale, usual)
                    if number == 0 and len(order) > 1:
                        self.check_tab_order(order)
                    key(closes[number])
                    if after:
                        self.wait_for_focus(after)
                self.shown.end()

    @only_on("linux")
    @under("fluxbox")
    def test_scaled(self):
        """Under a window manager that takes what it is told of sizes at its word."""
        self.begin(env={"QT_SCALE_FACTOR": "1.5"}).start().activate()
        self.check_size(MAIN, 1.5)
        for _, opened, size, order, _, after in self.WINDOWS:
            if size:
                opened(self)
                self.wait_for_focus(order[0])
                self.check_size(size, 1.5)
                key("Escape")
            if size and after:
                self.wait_for_focus(after)

    @only_on("linux")
    @under(*WINDOW_MANAGERS)
    def test_keys(self):
        """What keys do beside Tab and Enter, and what a screen reader is told beside the names."""
        program = self.begin().start()
        wait_until(program.control(*LIST).rows, "the rows of a page that was never in sight")
        labels = program.control("combo box", "Cookie Name").accessible.get_relation_set()
        self.assertEqual([each.get_target(0).get_name() for each in labels], ["Search in"])
        program.activate()
        for pressed, other in (("Stop", "Start"), ("Start", "Stop")):
            self.assertIn(f" {program.cookies}/", program.button(pressed).description)
            self.wait_for_focus(("push button", pressed))
            key("space")
            self.wait_for_focus(("push button", other))
        for keys, tab in (("ctrl+Prior", "Options"), ("ctrl+Tab", "Log"), ("ctrl+Next", "Cookies"),
                          ("ctrl+shift+Tab", "Log")):
            key(keys)
            self.wait_for_focus(("page tab list", tab))
        self.open_detail()
        self.wait_for_focus(("text", "Cookie file"))
        self.go_to("text", "Details")
        key("ctrl+Home", "shift+Down", "ctrl+c", "Escape")
        self.wait_for_focus(LIST)
        left, top, _, height = program.control(*LIST).cells()[0][0].place()
        key("Menu")
        menu, = wait_until(lambda: program.windows(""), "the menu")
        x, y, *_ = program.geometry(menu)
        self.assertLessEqual(max(abs(x - left), abs(y - top - height)), 2, "not at its row")
        key("Escape", "ctrl+f", "ctrl+v")
        searched = program.control("text", "Search for")
        self.wait_for_equal(lambda: searched.text.strip(), "Cookie name: id")
        program.control("page tab", "Tools").click()
        self.wait_for_focus(("page tab list", "Tools"))
        key("F1")
        wait_until(lambda: viewers(program), "the help")
        wait_until(lambda: self.focused() == ("label", "Help page"), "its window")
        key("Escape")

    def check_size(self, size, scale):
        wait_until(lambda: all(math.isclose(a, b * scale, abs_tol=1) for a, b in zip(
            self.shown.geometry(front())[2:], size)), f"{size} at {scale}")


if __name__ == "__main__":
    main()
