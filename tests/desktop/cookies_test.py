"""The cookie lists as a person meets them: rows, search, detail windows, menus and deletion."""

import os
from datetime import datetime

from harness import MACHINE, SAVE_LOG, DesktopTest, cookies, double_click, key, main, run, wait_until

SAMPLE = (b"uid\na%3Db\nshop.example/\n1536\n2915392512\n29721845\n1823712256\n29680011\n*\n"
          b"lang\nen\nshop.example/cart/\n1024\n0\n30000000\n1823712256\n29680011\n*\n")
MODIFIED = "2004-12-20 10:15:30"
QUESTION = "Do you want to delete selected cookie file(s) and all cookies in them?"
LISTS = {"Cookies": "Cookies", "Search": "Search results"}  # by their tabs
NAME = 2  # the column by which rows are told apart here
VIEW, DELETE = 1, 2  # entries of the menus


class CookiesTest(DesktopTest):
    def names(self, tab):
        return {row[NAME] for row in self.shown.control("tree", LISTS[tab]).rows()}

    def cell(self, tab, name):
        rows = self.shown.control("tree", LISTS[tab]).cells()
        return next(row[NAME] for row in rows if row[NAME].name == name)

    def menu_by_mouse(self, tab, name, entry):
        self.cell(tab, name).click(3)
        menu, = wait_until(lambda: self.shown.windows(""), "the menu")
        left, top, width, height = self.shown.geometry(menu)
        run("xdotool", "mousemove", left + width // 3, top + height * (2 * entry - 1) // 4,
            "click", 1)

    def menu_by_key(self, tab, name, entry):
        self.shown.control("page tab", tab).click()  # else a quick second click makes a double one
        self.cell(tab, name).click()
        self.shown.choose(entry)

    def double_click(self, tab, name, _):
        left, top, *_ = self.cell(tab, name).place()
        double_click(left + 5, top + 5)

    def test_a_file_in_two_zones(self):
        for zone, offset, second_date, ways in (
                ("UTC", "+00:00", "2009-04-22", (self.double_click, self.menu_by_key)),
                ("CST-8", "+08:00", "2009-04-23", (self.menu_by_mouse,))):
            with self.subTest(zone=zone):
                self.shown = program = self.program(env={"TZ": zone})
                path = program.cookies / "sample.txt"
                path.write_bytes(SAMPLE)
                moment = datetime.fromisoformat(MODIFIED + offset).timestamp()
                os.utime(path, (moment, moment))
                program.start().select_tab("Cookies")
                file = ["sample.txt", "136", MODIFIED]
                self.wait_for_equal(program.control("tree", "Cookies").rows, [
                    ["shop.example", "2005-07-10", "uid", "a%3Db", *file],
                    ["shop.example/cart", second_date, "lang", "en", *file]])
                for way, name in zip(ways, ("uid", "lang")):
                    way("Cookies", name, VIEW)
                    wait_until(lambda: program.windows("Detail - sample.txt"), "the details")
                    boxes = [program.control("text", box) for box in (
                        "Cookie file", "Modified", "Size", "Details")]
                    self.assertTrue(all(box.has("read-only") for box in boxes))
                    *above, details = [box.text for box in boxes]
                    self.assertEqual(above, [program.shown_path(path), MODIFIED, "136 bytes"])
                    self.assertEqual(details.splitlines(), [
                        "Cookie name: uid", "Value: a%3Db", "Server: shop.example",
                        "Expire: 2005-07-10", "", "Cookie name: lang", "Value: en",
                        "Server: shop.example/cart", f"Expire: {second_date}", ""])
                    key("Escape")
                    wait_until(lambda: not program.windows("Detail.*"), "Esc to close it")
                program.end()

    def test_deletion(self):
        for tab, way, watching in (("Cookies", self.menu_by_mouse, True),
                                   ("Search", self.menu_by_key, True),
                                   ("Cookies", self.menu_by_key, False),
                                   ("Search", self.menu_by_mouse, False)):
            with self.subTest(tab=tab, watching=watching):
                self.check_deletion(tab, way, watching)

    def check_deletion(self, tab, way, watching):
        self.shown = program = self.program(config=SAVE_LOG)
        folder, target = program.cookies, program.cookies.with_name("target")
        target.write_bytes(cookies("linked"))
        if MACHINE == "linux":
            (folder / "link.txt").symlink_to(target)
        else:  # Wine 8 knows no links
            (folder / "link.txt").write_bytes(target.read_bytes())
        (folder / "many.txt").write_bytes(cookies("one", "two", "three"))
        (folder / "fixed.txt").write_bytes(cookies("fixed"))
        (folder / "fixed.txt").chmod(0o444)
        program.start().select_tab("Search")
        program.control("text", "Search for").click()
        key("ctrl+a", "e")
        wait_until(lambda: key("Return") or self.names("Search"), "the search")
        if not watching:
            program.switch_watch("Stop")
        program.select_tab(tab)
        # The search keeps to what it found, as does the list without a watch.
        rebuilt = watching and tab == "Cookies"
        names = {"one", "three", "fixed", "linked"} | ({"two"} if tab == "Cookies" else set())
        files = {"many.txt", "fixed.txt", "link.txt"}
        # What is chosen and what is answered, the rows and the file that go with it. A read-only
        # file stays, and its row comes back with a rebuild.
        for name, yes, rows, file in (
                ("one", False, set(), set()),
                ("one", True, {"one", "two", "three"} if rebuilt else {"one"}, {"many.txt"}),
                ("fixed", True, {"fixed"}, set()),
                ("linked", True, {"linked"}, {"link.txt"})):
            way(tab, name, DELETE)
            program.control("label", QUESTION)
            if way == self.menu_by_key:
                key("Return" if yes else "alt+n")
            else:
                program.button("Yes" if yes else "No").click()
            wait_until(lambda: not program.controls("label", QUESTION), "the question to go")
            names -= rows
            files -= file
            if name == "linked" and rebuilt:
                names.add("fixed")
            self.wait_for_equal(lambda: self.names(tab), names)
            self.assertEqual(set(os.listdir(folder)), files)
        self.assertTrue(target.exists())
        told = ["removed: many.txt", "removed: link.txt"] if watching else []
        self.assertEqual(program.told(len(told)), told)
        program.end()


if __name__ == "__main__":
    main()
