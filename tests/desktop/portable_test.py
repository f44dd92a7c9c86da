"""The archive, unpacked anywhere by a user who has nothing of the program's yet; and its help."""

import os
import re
from pathlib import Path

from harness import (ROOT, DesktopTest, act_until, front, key, main, run, viewers,
                     wait_until)

BUILD = Path(os.environ.get("QUILLMERE_BUILD_DIR", ROOT / "build/release"))


class PortableTest(DesktopTest):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        run("cpack", "--config", BUILD / "CPackConfig.cmake", "-B", cls.desktop.home / "made")

    def setUp(self):
        super().setUp()
        place = self.desktop.home / "pläce of 100%20 blanks, 日本"
        place.mkdir(exist_ok=True)
        run("tar", "-xzf", *self.desktop.home.glob("made/quillmere-*.tar.gz"), "-C", place)
        opener = self.desktop.home / "xdg-open"
        opener.write_text('#!/bin/sh\necho "$PWD|$QT_QPA_PLATFORM|$1" >"$0.told"\n')
        opener.chmod(0o700)
        self.unpacked = self.program(env={"HOME": str(place),
                                          "PATH": f"{opener.parent}:{self.desktop.env['PATH']}"})
        self.unpacked.folder = place / "quillmere"
        del self.unpacked.env["XDG_DATA_HOME"], self.unpacked.env["XDG_CONFIG_HOME"]
        self.unpacked.cookies = place / ".local/share/quillmere/cookies"

    def test_archive(self):
        program = self.unpacked.start()
        self.check_try_it(program, (program.folder / "help/try.html").read_text())
        for part in ("help", "sound"):
            run("diff", "-r", ROOT / "assets" / part, program.folder / part)
        for file in re.findall(r"\]\(([^)]+)\)", (program.folder / "README.md").read_text()):
            self.assertTrue((program.folder / file).is_file(), file)
        self.check_help(program.folder / "help")

        # What a link opens is to work in the program's folder, and on a display of its own choice.
        address = "https://www.quillmere.example/"
        program.button("About").press()
        told = self.desktop.home / "xdg-open.told"
        act_until(program.control("link", address).click, told.exists, "the browser")
        self.wait_for_equal(told.read_text, f"{program.folder}||{address}\n")

    def check_try_it(self, program, page):
        """The lines that the help wants to be tried do what it tells."""
        lines = re.search("<pre>(.*?)</pre>", page, re.DOTALL)[1]
        (program.cookies / "try.txt").write_text(lines + "\n")
        told = re.search("Cookie file added: try.txt, [^,]*", page)[0]
        wait_until(lambda: told in "".join(program.log_lines()), "its line")
        program.select_tab("Cookies")
        row, = wait_until(program.control("tree", "Cookies").rows, "its row")
        self.assertEqual(row[0], "shop.example")
        self.assertRegex(row[1], "^2031-01-31")

    def check_help(self, folder):
        """Every page is reached by links, and every picture is on one."""
        reached = ["index.html"]
        for page in reached:  # which grows meanwhile
            links = re.findall(r'(?:href|src)="([^":#]*)["#]', (folder / page).read_text("latin-1"))
            reached += sorted({*links} - {*reached})
        self.assertEqual({folder / each for each in reached},
                         {*folder.glob("*.html"), *folder.glob("pictures/*.png")})

    def show_help(self):
        """Returns the one viewer there is, in front."""
        self.unpacked.activate()
        self.unpacked.button("Help").press()
        wait_until(lambda: any(front() in each.windows("Quillmere Help")
                               for each in viewers(self.unpacked)), "the help in front")
        viewer, = viewers(self.unpacked)
        return viewer

    def test_help_outlives_the_program(self):
        program = self.unpacked.start()
        viewer = self.show_help()
        key("Tab", "Return")  # the first link of the page
        wait_until(lambda: viewer.application() and viewer.button("Back").enabled, "the next page")
        self.assertEqual(self.show_help().process, viewer.process)
        children = Path(f"/proc/{program.process.pid}/task").glob("*/children")
        self.assertEqual("".join(each.read_text() for each in children), "")
        self.assertEqual(program.end(), 0)
        self.assertTrue(viewer.windows("Quillmere Help"))
        program.start()
        self.assertEqual(self.show_help().process, viewer.process)
        key("Escape")
        wait_until(lambda: not viewers(program), "the viewer to end")
        self.assertNotEqual(self.show_help().process, viewer.process)


if __name__ == "__main__":
    main()
