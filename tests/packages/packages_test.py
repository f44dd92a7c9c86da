"""What cpack makes for Windows: the portable folder, and the installer's way in and out again."""

import re
import shutil
import subprocess
import sys
import tempfile
import time
import unittest
import zipfile
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
BUILD = Path(sys.argv.pop()).resolve()
WINE = (ROOT / "scripts/run-windows-program", BUILD / "wine")
SYSTEM = BUILD / "wine/drive_c/windows/system32"
UNINSTALL_KEY = r"HKCU\Software\Microsoft\Windows\CurrentVersion\Uninstall\Quillmere"
RUN_KEY = r"HKCU\Software\Microsoft\Windows\CurrentVersion\Run"
FILES = {"LICENSE.txt", "help.chm", "quillmere.exe", "sound/1.wav", "sound/2.wav"}


def run(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def registry(*command):
    return subprocess.run((*WINE, "reg", *command), check=False, capture_output=True, text=True)


def files(folder):
    return {str(path.relative_to(folder)) for path in folder.rglob("*") if path.is_file()}


class PackagesTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        place = tempfile.TemporaryDirectory()
        cls.addClassCleanup(place.cleanup)
        cls.made = Path(place.name)
        run(*WINE, "wineboot")  # the machine, if it is not there
        run("cpack", "--config", BUILD / "CPackConfig.cmake", "-B", cls.made)

    def package(self, suffix):
        package, = self.made.glob(f"quillmere-*-Windows-*{suffix}")
        return package

    def test_portable_folder(self):
        with zipfile.ZipFile(self.package(".zip")) as archive:
            archive.extractall(self.made)
        folder = self.made / "quillmere"
        self.assertEqual(files(folder), FILES)

        program = folder / "quillmere.exe"
        self.assertLess(program.stat().st_size, 1_200_000)
        needed = re.findall(r"DLL Name: (\S+)", run("x86_64-w64-mingw32-objdump", "-p", program))
        own = {path.name.lower() for path in SYSTEM.iterdir()}
        self.assertTrue(needed)
        self.assertLessEqual({name.lower() for name in needed}, own)

        run("chmls", "extractall", folder / "help.chm", self.made / "help")
        for page in files(ROOT / "assets/help"):
            self.assertEqual((self.made / "help" / page).read_bytes(),
                             (ROOT / "assets/help" / page).read_bytes(), page)

    def install(self):
        run(*WINE, self.package(".exe"), "/S")
        folder, = (BUILD / "wine/drive_c/users").glob("*/AppData/Local/Programs/quillmere")
        return folder

    def uninstall(self, folder, *switches):
        run(*WINE, folder / "uninstall.exe", "/S", *switches)
        end = time.monotonic() + 60  # a copy of it goes on
        while registry("query", UNINSTALL_KEY).returncode == 0 or (folder / "help.chm").exists():
            self.assertLess(time.monotonic(), end)
            time.sleep(0.1)

    def test_installer(self):
        folder = self.install()
        self.addCleanup(shutil.rmtree, folder, ignore_errors=True)
        self.assertEqual(files(folder), FILES | {"uninstall.exe"})
        entry, = folder.parents[3].glob("AppData/Roaming/**/Start Menu/Programs/Quillmere.lnk")
        self.assertIn("uninstall.exe", registry("query", UNINSTALL_KEY).stdout)

        kept = {"config.ini", "log/20040501.txt"}
        (folder / "log").mkdir()
        for name in (*kept, "sound/1.wav"):
            (folder / name).write_text("the user's own")
        registry("add", RUN_KEY, "/v", "Quillmere", "/d", "quillmere.exe /1", "/f")
        self.install()
        self.assertEqual((folder / "sound/1.wav").read_text(), "the user's own")

        self.uninstall(folder)
        self.assertEqual(files(folder), kept)
        self.assertFalse(entry.exists())
        self.assertNotEqual(registry("query", RUN_KEY, "/v", "Quillmere").returncode, 0)

        self.install()
        self.uninstall(folder, "/all")
        self.assertFalse(folder.exists())


if __name__ == "__main__":
    unittest.main()
