"""The cookie lists as a person meets them: rows, search, detail windows, menus and deletion."""

import os
from datetime import datetime, timedelta, timezone

from harness import SAVE_LOG, DesktopTest, cookies, double_click, key, main, run, wait_until

SAMPLE = (b"uid\na%3Db\nshop.example/\n1536\n2915392512\n29721845\n1823712256\n29680011\n*\n"
          b"lang\nen\nshop.example/cart/\n1024\n0\n30000000\n1823712256\n29680011\n*\n")
MODIFIED = "2004-12-20 10:15:30"
QUESTION = "Do you want to delete selected cookie file(s) and all cookies in them?"
LISTS = {"Cookies": "Cookies", "Search": "Search results"}  # by their tabs
NAME = 2  # the column by which rows are told apart here
VIEW, DELETE = 0, 1  # entries of the menus


class CookiesTest(DesktopTest):
    def put(self, name, content, hours_east=0):
        """A file comes into the folder whole and with its time, as one change."""
        moment = datetime.strptime(MODIFIED, "%Y-%m-%d %H:%M:%S").replace(
            tzinfo=timezone(timedelta(hours=hours_east))).timestamp()
        outside = self.shown.cookies.with_name("coming")
        outside.write_bytes(content)
        os.utime(outside, (moment, moment))
        outside.rename(self.shown.cookies / name)

    def rows(self, tab):
        """The cells of the list on the tab that is selected."""
        return self.shown.control("tree", LISTS[tab]).cells()

    def wait_for_names(self, tab, names):
        self.wait_for_equal(lambda: {row[NAME].name for row in self.rows(tab)}, set(names))

    def cell(self, tab, name):
        return next(row[NAME] for row in self.rows(tab) if row[NAME].name == name)

    # The menus, by mouse and by keyboard.

    def menu_by_mouse(self, tab, name, entry):
        self.cell(tab, name).click(3)
        menu, = wait_until(lambda: self.shown.windows(""), "the menu")
        self.desktop.screenshot(f"menu-{tab.lower()}")
        left, top, width, height = self.shown.geometry(menu)
        run("xdotool", "mousemove", left + width // 3, top + height * (1 + 2 * entry) // 4,
            "click", 1)

    def menu_by_key(self, tab, name, entry):
        self.cell(tab, name).click()
        key("Menu")
        wait_until(lambda: self.shown.windows(""), "the menu")
        key(*["Down"] * (entry + 1), "Return")

    # --- Rows and detail windows

    def double_click(self, tab, name, _):
        left, top, *_ = self.cell(tab, name).place()
        double_click(left + 5, top + 5)

    def enter(self, tab, name, _):
        self.cell(tab, name).click()
        key("Return")

    def test_a_file_in_two_zones(self):
        for zone, hours, second_date, ways in (
                ("UTC", 0, "2009-04-22", (self.double_click, self.menu_by_key)),
                ("CST-8", 8, "2009-04-23", (self.enter, self.menu_by_mouse))):
            with self.subTest(zone=zone):
                self.shown = program = self.started(env={"TZ": zone})
                self.put("sample.txt", SAMPLE, hours)
                file = ["sample.txt", "136", MODIFIED]
                program.select_tab("Cookies")
                self.wait_for_equal(program.control("tree", "Cookies").rows, [
                    ["shop.example", "2005-07-10", "uid", "a%3Db", *file],
                    ["shop.example/cart", second_date, "lang", "en", *file]])
                self.desktop.screenshot(f"cookies-{zone}")
                for way, name in zip(ways, ("uid", "lang")):
                    way("Cookies", name, VIEW)
                    wait_until(lambda: program.windows("Detail - sample.txt"), "the details")
                    self.desktop.screenshot(f"detail-{zone}")
                    *above, details = [program.control("text", box).text for box in (
                        "Cookie file", "Modified", "Size", "Details")]
                    self.assertEqual(above, [f"{program.cookies}/sample.txt", MODIFIED,
                                             "136 bytes"])
                    self.assertEqual(details.splitlines(), [
                        "Cookie name: uid", "Value: a%3Db", "Server: shop.example",
                        "Expire: 2005-07-10", "", "Cookie name: lang", "Value: en",
                        "Server: shop.example/cart", f"Expire: {second_date}", ""])
                    key("Escape")
                    wait_until(lambda: not program.windows("Detail.*"), "Esc to close it")
                self.assertEqual(program.end(), 0)

    # --- Deletion

    def delete(self, way, tab, name, yes=True):
        way(tab, name, DELETE)
        self.shown.control("label", QUESTION)
        if way == self.menu_by_key:
            key("Return" if yes else "alt+n")
        else:
            self.shown.button("Yes" if yes else "No").click()
        wait_until(lambda: self.shown.count("label", QUESTION) == 0, "the question to go")

    def check(self, tab, rows, files, log):
        """What both lists show, the list on `tab` last; what the folder and the log hold."""
        for each in sorted(rows, key=lambda each: each == tab):
            self.shown.select_tab(each)
            self.wait_for_names(each, rows[each])
        self.assertEqual(set(os.listdir(self.shown.cookies)), files)
        self.assertEqual([line.split(" - ", 1)[1].split(",")[0]
                          for line in self.shown.wait_for_log(len(log))], log)

    def test_deletion(self):
        for tab, way, watching in (("Cookies", self.menu_by_mouse, True),
                                   ("Search", self.menu_by_key, True),
                                   ("Cookies", self.menu_by_key, False),
                                   ("Search", self.menu_by_mouse, False)):
            with self.subTest(tab=tab, way=way.__name__, watching=watching):
                self.check_deletion(tab, way, watching)

    def check_deletion(self, tab, way, watching):
        self.shown = program = self.program(config=SAVE_LOG)
        target = program.cookies.with_name("target")
        target.write_bytes(cookies("linked"))
        (program.cookies / "link.txt").symlink_to(target)
        for stem, names in (("many", ["one", "two", "three"]), ("fixed", ["fixed"]),
                            ("rest", ["rest"])):
            self.put(f"{stem}.txt", cookies(*names))
        (program.cookies / "fixed.txt").chmod(0o444)
        program.start()
        everything = {"one", "two", "three", "fixed", "linked", "rest"}
        rows = {"Cookies": set(everything), "Search": everything - {"two"}}  # those with an "e"
        program.select_tab("Search")
        program.control("text", "Search for").click()
        key("ctrl+a", "e")
        wait_until(lambda: key("Return") or self.rows("Search"), "the search")
        self.desktop.screenshot("search")
        if not watching:
            program.button("Stop").click()
            wait_until(lambda: not program.watching(), "the watch to end")
        files, log = {"many.txt", "fixed.txt", "rest.txt", "link.txt"}, []
        self.check(tab, rows, files, log)

        self.delete(way, tab, "one", yes=False)
        self.check(tab, rows, files, log)

        # A rebuild, which needs the watch, takes the other rows of the file along.
        self.delete(way, tab, "one")
        files.remove("many.txt")
        rows[tab].remove("one")
        if watching:
            rows["Cookies"] -= {"one", "two", "three"}
            log.append("Cookie file removed: many.txt")
        self.check(tab, rows, files, log)
        self.assertEqual(program.count("push button", "View") > 0, watching)

        # A read-only file stays, and its row goes all the same, until the next rebuild.
        self.delete(way, tab, "fixed")
        rows[tab].remove("fixed")
        self.check(tab, rows, files, log)

        self.delete(way, tab, "linked")
        files.remove("link.txt")
        rows[tab].remove("linked")
        if watching:
            rows["Cookies"] = {"fixed", "rest"}
            log.append("Cookie file removed: link.txt")
        self.check(tab, rows, files, log)
        self.assertTrue(target.exists())

        if not watching:
            program.button("Start").click()
            wait_until(program.watching, "the watch to begin")
        self.put("new.txt", cookies("new"))
        files.add("new.txt")
        rows["Cookies"] = {"fixed", "rest", "new"}
        log.append("Cookie file added: new.txt")
        self.check(tab, rows, files, log)
        self.assertEqual(program.end(), 0)


if __name__ == "__main__":
    main()
