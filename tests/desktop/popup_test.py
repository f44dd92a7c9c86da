"""The popups at the corner: their place, whose keys they leave alone, and storms of them."""

import re
import time

from harness import SANITIZED, TWIPS_PER_PIXEL, DesktopTest, main, run, wait_until

CONFIG = b"SaveLog=True\r\nToTray=True\r\nPlaySound1=False\r\nPlaySound2=False\r\n"
CLIENT = (3435 // TWIPS_PER_PIXEL, 1365 // TWIPS_PER_PIXEL)
# Its outer size counts 120 x 420 twips of frame, whatever is drawn.
CORNER = (round((1280 * 15 - 3435 - 120 - 35) / TWIPS_PER_PIXEL),
          round((1024 * 15 - 1365 - 420 - 450) / TWIPS_PER_PIXEL))
MOST_WINDOWS = 60
LISTS_MEGABYTES = 15


class PopupTest(DesktopTest):
    def popups(self):
        """The popups that are mapped, as the window manager lists them, the topmost last."""
        listed = re.findall(r"0x[0-9a-f]+", run("xprop", "-root", "_NET_CLIENT_LIST_STACKING"))
        size = "{}x{}".format(*CLIENT)
        # The look at the tree fails when a window goes meanwhile.
        text = wait_until(lambda: run("xwininfo", "-root", "-tree", check=False), "the windows")
        small = {line.split()[0] for line in text.splitlines()
                 if '"Quillmere": (' in line and f" {size}+" in line}
        return [window for window in listed if window in small]

    def wait_for_popups(self, count, seconds=15):
        return wait_until(lambda: len(self.popups()) == count and (self.popups() or True),
                          f"{count} popups", seconds)

    def change(self, program, *names):
        with program.paused():
            for name in names:
                (program.cookies / name).write_bytes(b"x")

    def resident(self, program):
        """Megabytes."""
        text = open(f"/proc/{program.process.pid}/status").read()
        return int(re.search(r"VmRSS:\s+(\d+)", text)[1]) / 1024

    def test_place(self):
        """Three changes, three popups at one place, also with the window hidden."""
        for switch in ((), ("/1",)):
            with self.subTest(switch=switch):
                program = self.started(config=CONFIG, switch=switch)
                self.change(program, "a.txt", "b.txt", "c.txt")
                for window in self.wait_for_popups(3):
                    left, top, *size = program.geometry(window)
                    frame = run("xprop", "-id", window, "_NET_FRAME_EXTENTS")
                    frame = [int(each) for each in re.findall(r"\d+", frame)]
                    self.assertEqual((left - frame[0], top - frame[2]), CORNER)
                    self.assertEqual(tuple(size), CLIENT)
                    states = run("xprop", "-id", window, "_NET_WM_STATE")
                    self.assertIn("_NET_WM_STATE_ABOVE", states)
                    self.assertIn("_NET_WM_STATE_SKIP_TASKBAR", states)
                begun = time.monotonic()
                self.wait_for_popups(0)
                self.assertGreater(time.monotonic() - begun, 3)
                program.end()

    def test_keys_stay_where_they_are(self):
        """While popups open and close, every key reaches the window that the user types in."""
        program = self.started(config=CONFIG)
        output = program.folder.parent / "keys"
        with open(output, "w") as file:
            self.desktop.start("xev", "-event", "keyboard", stdout=file)
        typing = wait_until(lambda: run("xdotool", "search", "--name", "^Event Tester$",
                                        check=False).split(), "the other window")[0]
        run("xdotool", "windowactivate", "--sync", typing)
        letters = "thequickbrownfoxjumpsoverthelazydog"
        rounds = 8
        for number in range(rounds):
            for popup in range(20):
                (program.cookies / f"{number}-{popup}.txt").write_bytes(b"x")
            run("xdotool", "type", "--delay", 15, letters)
        self.assertTrue(self.popups())
        typed = r"KeyPress event.*?XLookupString gives 1 bytes: \(\w+\) \"(\w)\""
        wait_until(lambda: len(re.findall(typed, output.read_text(), re.S)) >= rounds * len(letters),
                   "all keys")
        self.assertEqual("".join(re.findall(typed, output.read_text(), re.S)), letters * rounds)
        self.assertEqual(run("xdotool", "getactivewindow").strip(), typing)

    def test_buttons_by_keyboard(self):
        """A popup that is clicked can be used by keyboard."""
        program = self.started(config=CONFIG)
        self.change(program, "a.txt", "b.txt")
        for keys, left in ((("alt+c",), 1), (("Tab", "Return"), 0)):
            window = self.popups()[-1] if left == 0 else self.wait_for_popups(2)[-1]
            x, y, *_ = program.geometry(window)
            run("xdotool", "mousemove", x + 10, y + 10, "click", 1)
            wait_until(lambda: int(run("xdotool", "getactivewindow")) == int(window, 16),
                       "the popup to take the keys")
            run("xdotool", "key", *keys)
            wait_until(lambda: len(self.popups()) == left, "the popup to close", 3)
        wait_until(lambda: run("xdotool", "search", "--onlyvisible", "--all", "--pid",
                               program.process.pid, "--name", "^Detail$", check=False),
                   "the detail window")

    def test_storm(self):
        """Ten thousand changes at once exhaust neither the display nor the memory."""
        program = self.started(config=CONFIG, accessible=False)
        self.change(program, *(f"{number}.txt" for number in range(100)))
        wait_until(self.popups, "popups")
        self.assertLess(len(self.popups()), MOST_WINDOWS)
        self.wait_for_popups(0, 30)
        before = self.resident(program)
        highest = before
        after = []
        for storm in range(3):  # added, removed, added
            with program.paused():
                for number in range(10_000):
                    path = program.cookies / f"storm{number}.txt"
                    path.unlink() if path.exists() else path.write_bytes(b"x")
            wait_until(self.popups, "popups", 60)
            while popups := self.popups():
                self.assertLess(len(popups), MOST_WINDOWS)
                highest = max(highest, self.resident(program))
                time.sleep(0.1)
            if SANITIZED:
                continue
            # What stays is the log's and the lists'.
            wait_until(lambda: self.resident(program) < before + LISTS_MEGABYTES,
                       "the memory to be given back")
            after.append(self.resident(program))
        print(f"\nresident: {before:.0f} MB, at most {highest:.0f} MB, after each storm",
              ", ".join(f"{each:.0f} MB" for each in after))
        if not SANITIZED:
            self.assertLess(highest - before, 100)


if __name__ == "__main__":
    main()
