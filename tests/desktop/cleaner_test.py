"""The cleaner on real folders, and on a trash that the desktop's own tool has filled."""

import os
from pathlib import Path

from harness import SAVE_LOG, DesktopTest, main, run

SHELL_FOLDERS = r"Software\Microsoft\Windows\CurrentVersion\Explorer\User Shell Folders"


def others_trash(but):
    """What the user has in the trash of volumes of this machine: it would be emptied too."""
    for volume in run("df", "--all", "--output=target", check=False).splitlines():
        for trash in (Path(volume, f".Trash-{os.getuid()}"), Path(volume, f".Trash/{os.getuid()}")):
            if volume != str(but) and os.access(trash / "files", os.R_OK) and any((trash / "files").iterdir()):
                return trash


def fill(*paths):
    for path in paths:
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text("text")


class CleanerTest(DesktopTest):
    def clean(self, program, *boxes):
        program.start().select_tab("Tools")
        program.tick(*boxes, "Clean Cookies", "Clean Windows Recent Documents History")
        program.button("Clean").click()
        for text, button in (("Do you want to clean selected items", "Yes"),
                             ("Successfully cleaned!", "OK")):
            program.control("label", text)
            program.button(button).press()

    def test_everything(self):
        program = self.program(config=SAVE_LOG)
        top, recent = program.folder.parent, program.folder.parent / "data/RecentDocuments"
        outside, volume = top / "outside/kept", top / "volume"
        volume.mkdir()
        run("mount", "-t", "tmpfs", "none", volume, check=False)
        self.addCleanup(run, "umount", "--lazy", volume, check=False)
        if trash := others_trash(volume):
            self.skipTest(f"{trash} would be emptied")
        gone = [recent / "document.desktop", program.cookies / "a.txt", program.cookies / "B.TXT"]
        kept = [outside, recent / "folder/below", program.cookies / "other.dat"]
        if volume.is_mount():  # gio puts nothing into the trash of such a volume, other desktops do
            gone.append(volume / f".Trash-{os.getuid()}/files/file")
            kept.append(volume / ".Trash-4242/files/kept")
        fill(*gone, *kept, top / "file", top / "folder/below/file")
        for link in (program.cookies / "link.txt", recent / "link", top / "folder/link",
                     top / "link"):
            link.symlink_to(outside)
        gio_trash = "env", f"XDG_DATA_HOME={top}/data", "gio", "trash"
        run(*gio_trash, top / "file", top / "folder", top / "link")
        trash = top / "data/Trash"
        gone += [recent / "link", program.cookies / "link.txt",
                 *(trash / "files").iterdir(), *(trash / "info").iterdir()]
        self.assertTrue(all(os.path.lexists(path) for path in gone + kept))

        self.clean(program, "Empty Recycle Bin")
        self.assertEqual([path for path in gone if os.path.lexists(path)], [])
        self.assertEqual([path for path in kept if not path.exists()], [])
        # The cleaned cookies are one line and no report.
        fill(program.cookies / "next.txt")
        cleaned, added = program.wait_for_log(2)
        self.assertRegex(cleaned, r" - Cookies are cleaned \*{10}$")
        self.assertIn("added: next.txt", added)
        self.assertEqual(program.log_lines(), [cleaned, added])
        # The desktop's tool finds a whole trash and can go on with it.
        fill(top / "again")
        run(*gio_trash, top / "again")
        self.assertTrue((trash / "files/again").exists())

    def test_folders_that_are_not_to_be_cleared(self):
        home, link = self.desktop.home, self.desktop.home / "link-to-home"
        link.symlink_to(home)
        fill(home / "precious.txt")
        for folder in (home, link):
            with self.subTest(folder=folder):
                program = self.program()
                program.cookies = folder
                registry = program.folder.parent / "config/quillmere/registry.ini"
                fill(registry)
                registry.write_text(f"[{SHELL_FOLDERS}]\nCookies={folder}\nRecent={folder}\n")
                trashed = program.folder.parent / "data/Trash/files/trashed"  # that is not ticked
                fill(trashed)
                self.clean(program)
                self.assertTrue((home / "precious.txt").exists() and trashed.exists())
                self.assertIn("Cookies are cleaned", program.log_lines()[-1])
                program.end()


if __name__ == "__main__":
    main()
