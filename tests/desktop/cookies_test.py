"""The cookie lists as a person meets them: rows, search, detail windows, menus and deletion."""

import contextlib
import os
import subprocess
from datetime import datetime, timedelta, timezone

from gi.repository import GLib

from harness import SAVE_LOG, Control, DesktopTest, main, run, wait_until

SAMPLE = (b"uid\na%3Db\nshop.example/\n1536\n2915392512\n29721845\n1823712256\n29680011\n*\n"
          b"lang\nen\nshop.example/cart/\n1024\n0\n30000000\n1823712256\n29680011\n*\n")
MODIFIED = "2004-12-20 10:15:30"
QUESTION = "Do you want to delete selected cookie file(s) and all cookies in them?"
LISTS = {"Cookies": "Cookies", "Search": "Search results"}  # by their tabs
NAME = 2  # the column by which rows are told apart here


def cookies(*names):
    """A file of so many cookies."""
    records = (f"{name}\n1\nshop.example/\n0\n0\n30000000\n0\n0\n*\n" for name in names)
    return "".join(records).encode()


def text_of(box):
    return box.accessible.get_text_iface().get_text(0, -1)


class CookiesTest(DesktopTest):
    def put(self, program, name, content, hours_east=0):
        """A file comes into the folder whole and with its time, as one change."""
        moment = datetime.strptime(MODIFIED, "%Y-%m-%d %H:%M:%S").replace(
            tzinfo=timezone(timedelta(hours=hours_east))).timestamp()
        outside = program.cookies.parent / "coming"
        outside.write_bytes(content)
        os.utime(outside, (moment, moment))
        outside.rename(program.cookies / name)

    def list_of(self, program, tab):
        return program.control("tree", LISTS[tab])

    def rows(self, program, tab):
        """What the list on the tab that is selected shows; nothing when it changed meanwhile."""
        with contextlib.suppress(GLib.Error, AttributeError):
            return self.list_of(program, tab).rows()

    def wait_for(self, expected, read, seconds=15):
        """Waits until what is read is as expected; a failure shows both."""
        try:
            wait_until(lambda: read() == expected, "", seconds)
        except AssertionError:
            self.assertEqual(read(), expected)

    def wait_for_names(self, program, tab, *names):
        def shown():
            rows = self.rows(program, tab)
            return rows and sorted(row[NAME] for row in rows)

        self.wait_for(sorted(names), shown)

    def cell(self, program, tab, name):
        table = self.list_of(program, tab).accessible.get_table_iface()
        row = next(row for row in range(table.get_n_rows())
                   if table.get_accessible_at(row, NAME).get_name() == name)
        return Control(table.get_accessible_at(row, NAME))

    def windows(self, program, name):
        """The windows of that name that can be seen; an open menu has none."""
        return subprocess.run(["xdotool", "search", "--onlyvisible", "--all", "--pid",
                               str(program.process.pid), "--name", f"^{name}$"],
                              capture_output=True, text=True).stdout.split()

    def wait_for_window(self, program, name):
        return wait_until(lambda: self.windows(program, name), f"window '{name}'")[0]

    def button_of_search(self, program):
        return next(program.controls("push button", "Search"))

    def search(self, program, text, press=lambda: run("xdotool", "key", "Return")):
        """Types a text into the search box and searches for it."""
        box = program.control("text", "Search for")
        box.click()
        run("xdotool", "key", "ctrl+a", "Delete")
        if text:
            run("xdotool", "type", text)
        wait_until(lambda: text_of(box) == text, f"'{text}' in the box")
        press()
        wait_until(lambda: text_of(box) == text.strip(), "the box without spaces around")

    # The menus, by mouse and by keyboard.

    def menu_by_mouse(self, program, tab, name, entry, picture=None):
        self.cell(program, tab, name).click(3)
        menu = self.wait_for_window(program, "")
        if picture:
            self.desktop.screenshot(picture)
        left, top, width, height = program.geometry(menu)
        run("xdotool", "mousemove", left + width // 3, top + height * (1 + 2 * entry) // 4,
            "click", 1)

    def menu_by_key(self, program, tab, name, entry, picture=None):
        self.cell(program, tab, name).click()
        run("xdotool", "key", "Menu")
        self.wait_for_window(program, "")
        if picture:
            self.desktop.screenshot(picture)
        run("xdotool", "key", *["Down"] * (entry + 1), "Return")

    def delete(self, program, way, tab, name, yes, picture=None):
        way(program, tab, name, 1, picture)
        program.control("label", QUESTION)
        if way == self.menu_by_key:
            run("xdotool", "key", "Return" if yes else "alt+n")
        else:
            program.button("Yes" if yes else "No").click()
        wait_until(lambda: self.count(program, "label", QUESTION) == 0, "the question to go")

    def count(self, program, role, name):
        def look():
            with contextlib.suppress(GLib.Error):  # one went while it was looked at
                return [sum(1 for _ in program.controls(role, name))]
        return wait_until(look, f"a count of {role} '{name}'")[0]

    def popups(self, program):
        return self.count(program, "push button", "View")

    # --- Rows and detail windows

    def check_detail(self, program, second_date):
        window = self.wait_for_window(program, "Detail - sample.txt")
        boxes = [text_of(program.control("text", name))
                 for name in ("Cookie file", "Modified", "Size", "Details")]
        self.assertEqual(boxes[:3], [f"{program.cookies}/sample.txt", MODIFIED, "136 bytes"])
        self.assertEqual(boxes[3].splitlines(), [
            "Cookie name: uid", "Value: a%3Db", "Server: shop.example", "Expire: 2005-07-10", "",
            "Cookie name: lang", "Value: en", "Server: shop.example/cart",
            f"Expire: {second_date}", ""])
        return window

    def test_a_file_in_two_zones(self):
        for zone, hours, second_date in (("UTC", 0, "2009-04-22"), ("CST-8", 8, "2009-04-23")):
            with self.subTest(zone=zone):
                program = self.started(env={"TZ": zone})
                self.put(program, "sample.txt", SAMPLE, hours)
                common = ["sample.txt", "136", MODIFIED]
                expected = [["shop.example", "2005-07-10", "uid", "a%3Db", *common],
                            ["shop.example/cart", second_date, "lang", "en", *common]]
                program.select_tab("Cookies")
                self.wait_for(expected, lambda: self.rows(program, "Cookies"))
                self.desktop.screenshot(f"cookies-{zone}")

                def double_click():
                    self.cell(program, "Cookies", "lang").click()
                    run("xdotool", "click", "--repeat", 2, "--delay", 50, 1)

                def enter():
                    self.cell(program, "Cookies", "uid").click()
                    run("xdotool", "key", "Return")

                for way in (double_click, enter,
                            lambda: self.menu_by_mouse(program, "Cookies", "lang", 0),
                            lambda: self.menu_by_key(program, "Cookies", "uid", 0)):
                    way()
                    window = self.check_detail(program, second_date)
                    run("xdotool", "windowactivate", "--sync", window)
                    self.desktop.screenshot(f"detail-{zone}")
                    run("xdotool", "key", "Escape")
                    wait_until(lambda: not self.windows(program, "Detail.*"), "Esc to close it")
                    program.activate()
                self.assertEqual(program.end(), 0)

    def test_windows_stand_side_by_side(self):
        """Each shows its file as it was when it opened, and closes alone."""
        program = self.program(env={"TZ": "UTC"})
        self.put(program, "sample.txt", SAMPLE)
        self.put(program, "other.txt", cookies("other"))
        program.start()
        program.select_tab("Cookies")
        self.wait_for_names(program, "Cookies", "uid", "lang", "other")
        for name in ("uid", "lang", "other"):
            program.activate()
            self.menu_by_key(program, "Cookies", name, 0)
            wait_until(lambda: self.windows(program, "Detail - .*"), f"detail of {name}")
        wait_until(lambda: len(self.windows(program, "Detail - sample.txt")) == 2, "two windows")
        (program.cookies / "sample.txt").unlink()
        self.wait_for_names(program, "Cookies", "other")
        self.check_detail(program, "2009-04-22")
        next(program.controls("push button", "Close")).press()
        wait_until(lambda: len(self.windows(program, "Detail - .*")) == 2, "one to close")
        while self.windows(program, "Detail - .*"):
            count = len(self.windows(program, "Detail - .*"))
            run("xdotool", "windowactivate", "--sync", self.windows(program, "Detail - .*")[0],
                "key", "alt+F4")
            wait_until(lambda: len(self.windows(program, "Detail - .*")) == count - 1, "one less")
        self.assertIsNone(program.process.poll())

    # --- Search

    def test_search(self):
        program = self.program(env={"TZ": "UTC"})
        self.put(program, "a.txt", cookies("UserPassword", "id", "PASSWORD_HINT"))
        self.put(program, "password.txt", cookies("kÄse"))
        program.start()
        program.select_tab("Cookies")
        self.wait_for_names(program, "Cookies", "UserPassword", "id", "PASSWORD_HINT", "kÄse")
        program.select_tab("Search")
        self.assertEqual(text_of(program.control("text", "Search for")), "password")
        self.button_of_search(program).click()
        self.wait_for_names(program, "Search", "UserPassword", "PASSWORD_HINT")
        self.desktop.screenshot("search")

        def by_button():
            self.button_of_search(program).click()

        def by_enter():
            run("xdotool", "key", "Return")

        # What is typed, and the names found with the key and with the button.
        for text, found in (("  hint ", ["PASSWORD_HINT"]), ("", []), ("ID", ["id"]), ("i d", []),
                            ("*", []), ("   ", [])):
            for press in (by_enter, by_button):
                with self.subTest(text=text):
                    self.search(program, "s", press)
                    self.search(program, text, press)
                    self.wait_for_names(program, "Search", *found)
        # Another field searches only when asked to.
        self.search(program, "password", by_enter)
        self.wait_for_names(program, "Search", "UserPassword", "PASSWORD_HINT")
        program.control("combo box", "Cookie Name").click()
        run("xdotool", "key", "Down", "Down", "Return")
        program.control("combo box", "Cookie File")
        self.wait_for_names(program, "Search", "UserPassword", "PASSWORD_HINT")
        self.button_of_search(program).click()
        self.wait_for_names(program, "Search", "kÄse")

    # --- Deletion

    def test_deletion_while_watching(self):
        for tab, other in (("Cookies", "Search"), ("Search", "Cookies")):
            for way in (self.menu_by_mouse, self.menu_by_key):
                with self.subTest(tab=tab, way=way.__name__):
                    self.check_deletion(tab, other, way, True)

    def test_deletion_while_stopped(self):
        for tab, other in (("Cookies", "Search"), ("Search", "Cookies")):
            for way in (self.menu_by_mouse, self.menu_by_key):
                with self.subTest(tab=tab, way=way.__name__):
                    self.check_deletion(tab, other, way, False)

    def check_deletion(self, tab, other, way, watching):
        program = self.program(config=SAVE_LOG)
        folder = program.cookies
        target = folder.parent / "target"
        target.write_bytes(cookies("linked"))
        (folder / "link.txt").symlink_to(target)
        for name, content in (("many.txt", cookies("one", "two", "three")),
                              ("fixed.txt", cookies("fixed")), ("rest.txt", cookies("rest"))):
            self.put(program, name, content)
        (folder / "fixed.txt").chmod(0o444)
        everything = {"one", "two", "three", "fixed", "linked", "rest"}
        program.start()
        program.select_tab("Cookies")
        self.wait_for_names(program, "Cookies", *everything)
        program.select_tab("Search")
        self.search(program, "e")
        self.wait_for_names(program, "Search", *(everything - {"two"}))
        if not watching:
            program.button("Stop").click()
            wait_until(lambda: not program.watching(), "the watch to end")
        shown = {"Cookies": set(everything), "Search": everything - {"two"}}

        def present():
            return {path.name for path in folder.iterdir()}

        def check(log):
            for each in (other, tab):
                program.select_tab(each)
                self.wait_for_names(program, each, *shown[each])
            if watching:
                program.wait_for_log(len(log))
            self.assertEqual([line.split(" - ", 1)[1].split(",")[0]
                              for line in program.log_file().decode().splitlines()], log)

        program.select_tab(tab)
        files = {"many.txt", "fixed.txt", "rest.txt", "link.txt"}
        gone = [f"Cookie file removed: {name}" for name in ("many.txt", "link.txt")]

        self.delete(program, way, tab, "one", False, f"menu-{tab.lower()}-{way.__name__}")
        check([])
        self.assertEqual(present(), files)

        self.delete(program, way, tab, "one", True)
        wait_until(lambda: present() == files - {"many.txt"}, "the file to go")
        shown[tab] -= {"one"}
        if watching:
            shown["Cookies"] -= {"one", "two", "three"}
            wait_until(lambda: self.popups(program), "the popup")
        check(gone[:watching])

        # A read-only file stays, and its row goes all the same, until the next rebuild.
        self.delete(program, way, tab, "fixed", True)
        shown[tab] -= {"fixed"}
        check(gone[:watching])

        self.delete(program, way, tab, "linked", True)
        shown[tab] -= {"linked"}
        if watching:
            shown["Cookies"] = {"fixed", "rest"}
        check(gone[:2 * watching])
        self.assertTrue(target.exists())
        self.assertEqual(present(), {"fixed.txt", "rest.txt"})
        self.assertEqual(self.popups(program) > 0, watching)

        if not watching:
            program.button("Start").click()
            wait_until(program.watching, "the watch to begin")
        self.put(program, "new.txt", cookies("new"))
        shown["Cookies"] = {"fixed", "rest", "new"}
        log = gone[:2 * watching] + ["Cookie file added: new.txt"]
        program.wait_for_log(len(log))
        check(log)
        self.assertEqual(program.end(), 0)


if __name__ == "__main__":
    main()
