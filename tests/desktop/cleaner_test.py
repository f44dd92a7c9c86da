"""The cleaner on real folders, and on a trash that the desktop's own tool has filled."""

import os
from pathlib import Path

from harness import MACHINE, SAVE_LOG, DesktopTest, main, run

# Ways to the user's own folder, and above it.
HOMES = ["", "link"] if MACHINE == "linux" else ["", ".."]


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

    def fill_folders(self, program):
        """What is to go, and what is to stay."""
        gone = [program.recent / "document.lnk", program.cookies / "a.txt",
                program.cookies / "B.TXT"]
        kept = [program.recent / "folder/below", program.cookies / "other.dat"]
        fill(*gone, *kept)
        return gone, kept

    def fill_volume(self, program, gone, kept):
        """A trash on another volume than the user's own, and links to what is none of them."""
        outside, volume = program.folder.parent / "outside/kept", program.folder.parent / "volume"
        volume.mkdir()
        run("mount", "-t", "tmpfs", "none", volume, check=False)
        self.addCleanup(run, "umount", "--lazy", volume, check=False)
        if trash := others_trash(volume):
            self.skipTest(f"{trash} would be emptied")
        if volume.is_mount():  # gio puts nothing into the trash of such a volume, other desktops do
            gone.append(volume / f".Trash-{os.getuid()}/files/file")
            kept.append(volume / ".Trash-4242/files/kept")
            fill(gone[-1], kept[-1])
        kept.append(outside)
        fill(outside, program.folder.parent / "folder/file")
        links = [program.cookies / "link.txt", program.recent / "link"]
        for link in (*links, program.folder.parent / "folder/link"):
            link.symlink_to(outside)
        gone += links

    def test_everything(self):
        program = self.program(config=SAVE_LOG)
        top, trash = program.folder.parent, program.trash
        gone, kept = self.fill_folders(program)
        if MACHINE == "linux":  # Wine 8 has no links, and no trash on another volume
            self.fill_volume(program, gone, kept)
        # Wine 8 does not empty its trash of folders.
        thrown = [top / "file", *([top / "folder"] if MACHINE == "linux" else [])]
        fill(top / "file", top / "folder/below/file")
        program.throw_away(*thrown)
        gone += [*(trash / "files").iterdir(), *(trash / "info").iterdir()]
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
        # The machine's own finds a whole trash and can go on with it.
        fill(top / "again")
        program.throw_away(top / "again")
        self.assertTrue((trash / "files/again").exists())

    def test_folders_that_are_not_to_be_cleared(self):
        for name in HOMES:
            with self.subTest(folder=name):
                program = self.program()
                home = Path(os.path.normpath(program.home / name))
                if name == "link":
                    home.symlink_to(program.home)
                precious, trashed = program.home / "precious.txt", program.trash / "files/trashed"
                fill(precious, home / "precious.txt", trashed)  # the trash is not ticked
                program.set_shell_folders(home)
                self.clean(program)
                self.assertTrue((home / "precious.txt").exists() and trashed.exists())
                self.assertIn("Cookies are cleaned", program.log_lines()[-1])
                program.end()


if __name__ == "__main__":
    main()
