"""The main window: where everything lies, and what happens to it under a window manager."""

from harness import LISTS, TWIPS_PER_PIXEL, DesktopTest, main, run, wait_until

COOKIE = b"id\n42\nshop.example/\n0\n0\n30000000\n0\n0\n*\n"
CLIENT = (8025, 3810)
PAGE = (2040, 555)   # the panels
FRAME = (2070, 600)  # "Cleaner" on its panel


def on(origin, *place):
    return (origin[0] + place[0], origin[1] + place[1], *place[2:])


BUTTONS = [
    ("push button", "Start", (270, 390, 1500, 465)),
    ("push button", "Stop", (270, 920, 1500, 465)),
    ("push button", "Help", (270, 1450, 1500, 465)),
    ("push button", "About", (270, 1980, 1500, 465)),
]
GROWING = {"Pages", "Log", "Cookies", "Search results", "Cleaner"}
STRIP = [("filler", "Pages", (1950, 180, 6045, 3600))]
# What each tab shows and where, in twips of the window's client area as it opens.
TABS = {
    "Log": [("list", "Log", (2070, 615, 5805, 3030))],
    "Cookies": [("tree", "Cookies", (2070, 615, 5805, 3030))],
    "Search": [
        ("tree", "Search results", on(PAGE, 45, 495, 5775, 2580)),
        ("label", "Search", on(PAGE, 60, 90, 510, 195)),
        ("text", "Search for", on(PAGE, 675, 75, 1575, 285)),
        ("combo box", "Cookie Name", on(PAGE, 2565, 75, 1920, 315)),
        ("label", "in", on(PAGE, 2325, 90, 120, 195)),
        ("push button", "Search", on(PAGE, 4545, 90, 900, 315)),
    ],
    "Tools": [
        ("panel", "Cleaner", on(PAGE, 30, 45, 5805, 3030)),
        ("check box", "Clean Cookies", on(FRAME, 315, 390, 1950, 240)),
        ("check box", "Empty Recycle Bin", on(FRAME, 315, 765, 2130, 240)),
        ("check box", "Clean Windows Recent Documents History", on(FRAME, 315, 1125, 4260, 240)),
        ("push button", "Clean", on(FRAME, 3975, 375, 1155, 405)),
    ],
    "Sound": [
        ("check box", "Play sound when a new cookie file is added",
         on(PAGE, 135, 255, 3885, 270)),
        ("check box", "Play sound when a cookie file is removed", on(PAGE, 135, 720, 3885, 270)),
        ("push button", "Play", on(PAGE, 4080, 240, 990, 315)),
    ],
    "Options": [
        ("check box", "Do not save log file", on(PAGE, 135, 240, 2415, 285)),
        ("check box", "Start with windows", on(PAGE, 135, 660, 2415, 285)),
        ("check box", "Minimize to system tray", on(PAGE, 135, 1095, 2415, 285)),
    ],
}
ALL_PAGES = {(role, name) for page in TABS.values() for role, name, _ in page}
MINIMUM = tuple(side // TWIPS_PER_PIXEL for side in CLIENT)


class WindowTest(DesktopTest):
    def check_layout(self, program, picture):
        """Every tab in turn: its controls in their places, and none of another tab."""
        left, top, width, height = program.geometry()
        grown = (width - MINIMUM[0], height - MINIMUM[1])
        for tab, page in TABS.items():
            program.select_tab(tab)
            self.desktop.screenshot(f"{picture}-{tab.lower()}")
            showing = [control for control in self.everything(program) if control.showing]
            names = {(control.role, control.name) for control in showing}
            others = ALL_PAGES - {(role, name) for role, name, _ in page}
            self.assertEqual(names & others, set())
            for role, name, place in BUTTONS + STRIP + page:
                with self.subTest(picture=picture, tab=tab, name=name):
                    control = next((each for each in showing
                                    if (each.role, each.name) == (role, name)), None)
                    self.assertIsNotNone(control, f"no {role} '{name}'")
                    expected = [twips / TWIPS_PER_PIXEL for twips in place]
                    if name in GROWING:
                        expected[2] += grown[0]
                        expected[3] += grown[1]
                    self.check_place(role, control.place(), (left, top), expected)

    def check_place(self, role, place, origin, expected):
        x, y, width, height = place
        differences = [x - origin[0] - expected[0], y - origin[1] - expected[1],
                       width - expected[2], height - expected[3]]
        if role == "check box":
            # Of a check box only mark and caption are told: they start at the left, in the middle
            # of its height, and must fit in.
            differences[1] += differences[3] / 2
            differences[2:] = [max(each, 0) for each in differences[2:]]
        elif role == "label":
            differences[3] = max(differences[3], 0)
        self.assertLessEqual(max(map(abs, differences)), 1, f"{place} from {origin}: {expected}")

    def everything(self, program):
        def below(control):
            for child in control.children():
                yield child
                if child.role not in LISTS:
                    yield from below(child)
        return below(program.application())

    def wait_for_size(self, program, width, height):
        wait_until(lambda: program.geometry()[2:] == (width, height), f"{width} x {height}", 5)

    def double_click_title(self, program):
        left, top, width, _ = program.geometry()
        run("xdotool", "mousemove", left + width // 2, top - program.frame()[2] // 2,
            "click", "--repeat", 2, "--delay", 50, 1)

    def client_list(self):
        return run("xprop", "-root", "_NET_CLIENT_LIST")

    def test_opening_and_maximised(self):
        program = self.started()
        left, top, width, height = program.geometry()
        self.assertEqual((width, height), MINIMUM)
        # In the middle of the screen, give or take what the window manager draws around it.
        self.assertLessEqual(abs(left + width / 2 - 640), 15)
        self.assertLessEqual(abs(top + height / 2 - 512), 30)
        self.assertEqual(run("xdotool", "getwindowname", program.find_window()), "Quillmere\n")
        self.assertIn("Icon (", run("xprop", "-id", program.find_window(), "_NET_WM_ICON"))
        self.check_layout(program, "opening")

        self.double_click_title(program)
        wait_until(lambda: "MAXIMIZED" in program.window_states(), "the window to be maximised")
        wait_until(lambda: program.geometry()[2] > 1200, "the whole screen's width")
        self.check_layout(program, "maximised")
        self.double_click_title(program)
        self.wait_for_size(program, *MINIMUM)
        self.check_layout(program, "restored")

    def test_smallest_size(self):
        program = self.started()
        window = program.find_window()
        for asked, given in (((800, 600), (800, 600)), ((300, 500), (MINIMUM[0], 500)),
                             ((700, 100), (700, MINIMUM[1])), ((100, 100), MINIMUM)):
            run("xdotool", "windowsize", window, *asked)
            self.wait_for_size(program, *given)
        run("xdotool", "windowsize", window, 700, 500)
        self.wait_for_size(program, 700, 500)
        left, top, width, height = program.geometry()
        corner = (left + width - 1, top + height + program.frame()[3] - 2)
        run("xdotool", "mousemove", *corner, "mousedown", 1)
        for step in range(1, 11):
            run("xdotool", "mousemove", corner[0] - 45 * step, corner[1] - 40 * step)
        run("xdotool", "mouseup", 1)
        self.wait_for_size(program, *MINIMUM)
        self.check_layout(program, "smallest")

    def test_minimised_to_the_taskbar(self):
        program = self.started(config=b"ToTray=False\r\n")
        wait_until(program.mapped, "the window")
        window = program.find_window()
        place = program.geometry()
        run("xdotool", "windowminimize", window)
        wait_until(lambda: not program.mapped(), "the window to be minimised")
        self.assertIn("Iconic", program.window_states())
        self.assertIn(f"{int(window):#x}", self.client_list())
        (program.cookies / "new.txt").write_bytes(COOKIE)
        wait_until(program.log_lines, "the report of a minimised window")
        program.activate()
        wait_until(program.mapped, "the window to come back")
        wait_until(lambda: program.geometry() == place, "its old place")
        program.select_tab("Cookies")
        cookies = program.control("tree", "Cookies")
        wait_until(lambda: [(row[0], row[2]) for row in cookies.rows()]
                   == [("shop.example", "id")], "the new cookie in the list")

    def test_minimised_to_the_tray(self):
        program = self.started(config=b"ToTray=True\r\n")
        wait_until(program.mapped, "the window")
        window = program.find_window()
        run("xdotool", "windowminimize", window)
        wait_until(lambda: f"{int(window):#x}" not in self.client_list(),
                   "the window to leave the taskbar")
        self.assertFalse(program.mapped())
        (program.cookies / "new.txt").touch()
        wait_until(program.log_lines, "the report of a hidden window")
        self.assertEqual(program.end(), 0)


if __name__ == "__main__":
    main()
