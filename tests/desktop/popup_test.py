"""The popups at the corner: their place, whose keys they leave alone, and storms of them."""

import math
import re
import time

from harness import (MACHINE, SANITIZED, SAVE_LOG, TWIPS_PER_PIXEL, WINDOW_MANAGERS, DesktopTest,
                     cookies, end_process, front, main, run, under, wait_until)

CLIENT = (3435 // TWIPS_PER_PIXEL, 1365 // TWIPS_PER_PIXEL)
# Its outer size counts 120 x 420 twips of frame, whatever is drawn.
CORNER = (round((1280 * 15 - 3435 - 120 - 35) / TWIPS_PER_PIXEL),
          round((1024 * 15 - 1365 - 420 - 450) / TWIPS_PER_PIXEL))
MANY = 10_000 if MACHINE == "linux" else 1000
MOST_AT_ONE_PLACE, MOST_WINDOWS = 16, 60
POPUPS_MEGABYTES, LISTS_MEGABYTES = 100, 15  # at most; what stays is the log's and the lists'


def listed():
    """The windows on the screen, as the window manager lists them."""
    return set(re.findall(r"0x[0-9a-f]+", run("xprop", "-root", "_NET_CLIENT_LIST")))


def megabytes(program):
    text = open(f"/proc/{program.process.pid}/status").read()
    return int(re.search(r"VmRSS:\s+(\d+)", text)[1]) / 1024


class PopupTest(DesktopTest):
    @under("openbox", "xfwm4")
    def test_place_and_texts(self):
        """Three changes, three popups at one place, also with the window hidden."""
        program = self.program(config=SAVE_LOG, switch=("/1",))
        (program.cookies / "gone.txt").touch()
        program.start()
        announced = []
        self.listen("object:state-changed:showing", announced)
        start = time.monotonic()
        with program.paused():
            (program.cookies / "gone.txt").unlink()
            for name in ("a.txt", "b.txt"):
                (program.cookies / name).write_bytes(cookies("id"))
        popups = lambda: {f"{int(each):#x}" for each in program.windows("Quillmere")} & listed()
        self.wait_for_equal(lambda: len(popups()), 3)
        for window in popups():
            left, top, *size = program.geometry(window)
            frame = program.frame(window)
            self.assertEqual((left - frame[0], top - frame[2], *size), CORNER + CLIENT)
            for state in ("_NET_WM_STATE_ABOVE", "_NET_WM_STATE_SKIP_TASKBAR"):
                self.assertIn(state, program.window_states(window))
        controls = [*program.application().everything()]
        if MACHINE == "linux":
            self.assertIn(("notification", "Quillmere"), announced)
        texts = [each.name for each in controls if each.name.startswith("Cookie file ")]
        views = [each for each in controls if each.name == "View"]
        self.assertEqual({text: view.enabled for text, view in zip(texts, views, strict=True)}, {
            "Cookie file added\r\na.txt": True, "Cookie file added\r\nb.txt": True,
            "Cookie file removed\r\ngone.txt": False})
        latest = program.told(3)[1]  # the removals come last, and are nothing to view
        next(view for view in views if view.enabled).press()
        wait_until(lambda: program.windows(f"Detail - {latest.split()[1]}"), "its details")
        for left in (2, 0):
            self.wait_for_equal(lambda: len(program.windows("Quillmere")), left)
        self.assertGreater(time.monotonic() - start, 6)  # at its sixth tick each closes by itself

    @under(*WINDOW_MANAGERS)
    def test_keys_stay_where_they_are(self):
        """While popups open and close, every key reaches the window that the user types in."""
        program = self.started(config=SAVE_LOG)
        wait_until(lambda: front() == program.find_window(), "the window, which takes the keys")
        output = program.folder.parent / "keys"
        with open(output, "w") as file:
            tester = self.desktop.start("xev", "-event", "keyboard", stdout=file)
        self.addCleanup(end_process, tester)
        typing = wait_until(lambda: run("xdotool", "search", "--name", "^Event Tester$",
                                        check=False).split(), "the other window")[0]
        run("xdotool", "windowactivate", "--sync", typing)
        letters = "thequickbrownfoxjumpsoverthelazydog"
        for number in range(8):
            for popup in range(20):
                (program.cookies / f"{number}-{popup}.txt").touch()
            run("xdotool", "type", "--delay", 15, letters)
        wait_until(lambda: len(listed()) > 2, "popups")
        self.wait_for_equal(lambda: "".join(re.findall(
            r"KeyPress event.*?XLookupString gives 1 bytes: \(\w+\) \"(\w)\"",
            output.read_text(), re.DOTALL)), letters * 8)
        self.assertEqual(front(), typing)

    @under("openbox", "xfwm4", "metacity")
    def test_pile(self):
        """Of forty at once the newest are shown, each once, the newest of all on top."""
        program = self.started(config=SAVE_LOG, accessible=False)
        wait_until(program.mapped, "the window")
        output = program.folder.parent / "maps"
        with open(output, "w") as file:
            watcher = self.desktop.start("xev", "-root", "-event", "substructure", stdout=file)
        self.addCleanup(end_process, watcher)
        with program.paused():
            for number in range(40):
                (program.cookies / f"{number}.txt").touch()
        popups = lambda: {*map(int, program.windows("Quillmere"))} - {int(program.find_window())}
        self.wait_for_equal(lambda: len(popups()), MOST_AT_ONE_PLACE)
        order = run("xprop", "-root", "_NET_CLIENT_LIST_STACKING").split()
        self.assertEqual(int(order[-1], 16), max(popups()))  # windows are numbered as they come
        wait_until(lambda: not popups(), "the popups to close")
        self.assertEqual(output.read_text().count("\nMapNotify"), MOST_AT_ONE_PLACE)

    def test_storm(self):
        """Thousands of changes at once exhaust neither the display nor the memory."""
        program = self.started(config=SAVE_LOG, accessible=False)
        others = wait_until(listed, "the window")
        base = math.inf
        for count in (100, MANY, MANY):  # added, removed with more added, the rest removed
            with program.paused():
                for number in range(count):
                    path = program.cookies / f"storm{number}.txt"
                    path.unlink() if path.exists() else path.touch()
            wait_until(lambda: listed() - others, "popups", 60)
            while popups := listed() - others:
                self.assertLess(len(popups), MOST_WINDOWS)
                self.assertLess(megabytes(program), base + POPUPS_MEGABYTES)
                time.sleep(0.1)
            wait_until(lambda: megabytes(program) < base + LISTS_MEGABYTES, "the memory given back")
            if count == 100 and not SANITIZED:
                base = megabytes(program)


if __name__ == "__main__":
    main()
