"""The archive, unpacked anywhere by a user who has nothing of the program's yet; and the help viewer
out of it, which is on its own."""

import os
import re
from pathlib import Path

from harness import ROOT, DesktopTest, Program, cookies, key, main, run, wait_until
from help_viewer import viewers

BUILD = Path(os.environ.get("QUILLMERE_BUILD_DIR", ROOT / "build/release"))
HELP = "Quillmere Help"


class Unpacked(Program):
    def __init__(self, desktop, archive):
        super().__init__(desktop)
        place = self.folder.with_name("pläce of 100%20 blanks, 日本")
        self.folder = place / "quillmere"
        home = place / "home"
        home.mkdir(parents=True)
        run("tar", "-xzf", archive, "-C", place)
        self.env["HOME"] = str(home)
        del self.env["XDG_DATA_HOME"], self.env["XDG_CONFIG_HOME"]
        self.cookies = home / ".local/share/quillmere/cookies"

    def watching(self):
        return self.cookies.exists() and super().watching()


class PortableTest(DesktopTest):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        run("cpack", "--config", BUILD / "CPackConfig.cmake", "-B", cls.desktop.home / "made")
        cls.archive, = cls.desktop.home.glob("made/quillmere-*.tar.gz")

    def setUp(self):
        self.unpacked = Unpacked(self.desktop, self.archive)
        self.addCleanup(self.unpacked.kill)

    def test_archive(self):
        program = self.unpacked.start()
        (program.cookies / "a.txt").write_bytes(cookies("id"))
        line, = wait_until(program.log_lines, "the line of the new file")
        self.assertIn("added: a.txt", line)
        for part in ("help", "sound"):
            run("diff", "-r", ROOT / "assets" / part, program.folder / part)
        readme = (program.folder / "README.md").read_text()
        for picture in re.findall(r"\]\((.*\.png)\)", readme):
            self.assertTrue((program.folder / picture).is_file(), picture)
        self.assertTrue((program.folder / "LICENSE").is_file())
        self.assertEqual(program.end(), 0)

    def show_help(self):
        """Returns the one viewer there is, in front."""
        def in_front():
            front = run("xdotool", "getactivewindow", check=False).strip()
            return [viewer for viewer in viewers(program) if front in viewer.windows(HELP)]
        program = self.unpacked
        program.activate()
        program.button("Help").press()
        wait_until(in_front, "the help in front")
        viewer, = viewers(program)
        return viewer

    def test_help_outlives_the_program(self):
        program = self.unpacked.start()
        viewer = self.show_help()
        key("Tab", "Return")  # the first link of the page
        wait_until(lambda: viewer.application() and viewer.button("Back").enabled, "the next page")
        self.assertEqual(self.show_help().process, viewer.process)
        children = Path(f"/proc/{program.process.pid}/task/{program.process.pid}/children")
        self.assertEqual(children.read_text(), "")
        self.assertEqual(program.end(), 0)
        self.assertTrue(viewer.windows(HELP))
        program.window = None
        program.start()
        self.assertEqual(self.show_help().process, viewer.process)
        key("Escape")
        wait_until(lambda: not viewers(program), "the viewer to end")
        self.assertNotEqual(self.show_help().process, viewer.process)


if __name__ == "__main__":
    main()
