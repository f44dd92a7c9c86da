"""The cleaner's third box against a trash that the desktop's own tool has filled."""

import contextlib
import os
import re
import subprocess
from pathlib import Path

from harness import SAVE_LOG, DesktopTest, main, wait_until


def unescaped(text):
    return re.sub(r"\\(\d{3})", lambda match: chr(int(match[1], 8)), text)


def others_trash(but):
    """What the user of this machine has in the trash of its volumes: the program empties that too."""
    for line in Path("/proc/self/mountinfo").read_text().splitlines():
        volume = Path(unescaped(line.split()[4]))
        for trash in (volume / f".Trash-{os.getuid()}", volume / f".Trash/{os.getuid()}"):
            with contextlib.suppress(OSError):
                if volume != but and any((trash / "files").iterdir()):
                    return trash
    return None


class TrashTest(DesktopTest):
    def clean(self, program):
        program.select_tab("Tools")
        program.check_box("Empty Recycle Bin").click()
        program.button("Clean").click()
        program.button("Yes").press()
        program.button("OK").press()

    def test_desktop_trash(self):
        program = self.program(config=SAVE_LOG)
        top = program.folder.parent
        volume = top / "volume"
        volume.mkdir()
        mounted = subprocess.run(["mount", "-t", "tmpfs", "tmpfs", volume],
                                 capture_output=True).returncode == 0
        if mounted:
            self.addCleanup(subprocess.run, ["umount", "-l", volume])
        if trash := others_trash(volume):
            self.skipTest(f"{trash} would be emptied")

        (top / "outside").mkdir()
        (top / "outside/kept").write_text("kept")
        (top / "file").write_text("text")
        (top / "folder/below").mkdir(parents=True)
        (top / "folder/below/file").write_text("text")
        (top / "folder/link").symlink_to(top / "outside")
        (top / "link").symlink_to(top / "outside")
        subprocess.run(["gio", "trash", "file", "folder", "link"], cwd=top, env=program.env,
                       check=True)
        trash = top / "data/Trash"
        self.assertEqual(len(list((trash / "files").iterdir())), 3)
        self.assertEqual(len(list((trash / "info").iterdir())), 3)
        if mounted:  # gio puts nothing into the trash of such a volume, other desktops do
            foreign = volume / f".Trash-{os.getuid()}"
            for part in ("files", "info"):
                (foreign / part).mkdir(parents=True)
            (foreign / "files/file").write_text("text")
            (foreign / "info/file.trashinfo").write_text("[Trash Info]\nPath=file\n")
            (volume / ".Trash-4242/files").mkdir(parents=True)
            (volume / ".Trash-4242/files/kept").write_text("kept")

        program.start()
        self.clean(program)
        wait_until(lambda: not any((trash / "files").iterdir()), "the trash to be empty")
        self.assertFalse(any((trash / "info").iterdir()))
        self.assertEqual((top / "outside/kept").read_text(), "kept")
        if mounted:
            self.assertFalse(any((foreign / "files").iterdir()))
            self.assertFalse(any((foreign / "info").iterdir()))
            self.assertTrue((volume / ".Trash-4242/files/kept").exists())
        # The desktop's tool finds a whole trash and can go on with it.
        (top / "again").write_text("text")
        subprocess.run(["gio", "trash", "again"], cwd=top, env=program.env, check=True)
        self.assertTrue((trash / "files/again").exists())
        self.assertEqual(program.log_file(), b"", "the recycle bin is no matter of the log")


if __name__ == "__main__":
    main()
