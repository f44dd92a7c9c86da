"""watch_test.py COUNT WATCH_FOLDER: what the watch reports of other processes' work on a folder.

WATCH_FOLDER stands behind whatever it is run by; as a program for Windows it is run by Wine.
"""

import subprocess
import sys
import tempfile
import unittest
from collections import Counter
from pathlib import Path

COUNT = int(sys.argv[1])
PROGRAM = sys.argv[2:]
WINDOWS = PROGRAM[-1].endswith(".exe")
NUMBERS = range(1, COUNT + 1)
# Each leaves nothing half done that the watch could meet. "#" stands for a number.
STEPS = ["type nul> #.txt", "type ..\\one>> #.txt", "ren #.txt new#.txt", "del new#.txt"]


def by_this_process(folder):
    for number in NUMBERS:
        (folder / f"{number}.txt").touch()
    yield
    for number in NUMBERS:
        with open(folder / f"{number}.txt", "a") as file:
            file.write("a")
    yield
    for number in NUMBERS:
        (folder / f"{number}.txt").rename(folder / f"new{number}.txt")
    yield
    for number in NUMBERS:
        (folder / f"new{number}.txt").unlink()
    yield


def by_a_windows_process(folder):
    for step in STEPS:
        loop = f"for /L %i in (1,1,{COUNT}) do @{step.replace('#', '%i')}"
        subprocess.run([*PROGRAM[:-1], "cmd", "/c", loop], cwd=folder, check=True)
        yield


def each(what, name):
    return Counter(f"{what} {name}{number}.txt" for number in NUMBERS)


class WatchTest(unittest.TestCase):
    def setUp(self):
        made = tempfile.TemporaryDirectory()
        self.addCleanup(made.cleanup)
        self.folder = Path(made.name, "Kekse für Ωλγα 🍪")
        self.folder.mkdir()
        self.folder.with_name("one").write_text("a")
        path = "Z:" + str(self.folder).replace("/", "\\") if WINDOWS else self.folder
        self.watch = subprocess.Popen([*PROGRAM, path], stdout=subprocess.PIPE)
        self.addCleanup(self.watch.communicate)
        self.addCleanup(self.watch.kill)
        self.assertEqual(self.watch.stdout.readline(), b"watching\n")

    def reported(self, count):
        return Counter(self.watch.stdout.readline().decode().strip() for _ in range(count))

    def assert_no_more(self):
        (self.folder / "end.txt").touch()
        self.assertEqual(self.watch.communicate(timeout=60)[0].decode(), "added end.txt\n")

    def test_each_of_many_changes_is_told_once(self):
        for others in [by_this_process, *([by_a_windows_process] if WINDOWS else [])]:
            steps = others(self.folder)
            for expected in (each("added", ""), each("modified", ""),
                             each("removed", "") + each("added", "new"), each("removed", "new")):
                next(steps)
                self.assertEqual(self.reported(expected.total()), expected, others.__name__)
        self.assert_no_more()

    def test_a_folder_that_goes_and_comes_back_is_watched_again(self):
        away = self.folder.with_name("away")
        (self.folder / "a.txt").touch()
        self.assertEqual(self.reported(1), {"added a.txt": 1})
        self.folder.rename(away)
        self.assertEqual(self.reported(1), {"removed a.txt": 1})
        (away / "b.txt").touch()
        away.rename(self.folder)
        self.assertEqual(self.reported(2), {"added a.txt": 1, "added b.txt": 1})
        for name in ("a.txt", "b.txt"):
            (self.folder / name).unlink()
        self.folder.rmdir()
        self.assertEqual(self.reported(2), {"removed a.txt": 1, "removed b.txt": 1})
        self.folder.mkdir()
        (self.folder / "c.txt").touch()
        self.assertEqual(self.reported(1), {"added c.txt": 1})
        self.assert_no_more()


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
