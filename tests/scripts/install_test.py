"""scripts/install among commands that only note how they are called."""

import os
import subprocess
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
APT = """#!/bin/sh
echo "$*" >>"$0.asked"
case "$*" in
  *print-uris*) echo 'Need to get 1 B of archives.'; [ -z "$CONFLICT" ] || echo "E: $CONFLICT" ;;
  *install*) echo "apt talks"; exit "${INSTALL:-0}" ;;
esac
"""
COMMANDS = {"apt-get": APT, "dpkg-query": "#!/bin/sh\necho 'ii  cmake'\necho 'rc  g++'\n",
            "sudo": '#!/bin/sh\n[ "$1" = -n ] && shift\nexec "$@"\n'}


class InstallTest(unittest.TestCase):
    def setUp(self):
        place = tempfile.TemporaryDirectory()
        self.addCleanup(place.cleanup)
        self.commands = Path(place.name)
        for name in "bash cat dirname env grep id mktemp rm sh true".split():
            (self.commands / name).symlink_to(f"/usr/bin/{name}")

    def install(self, group, commands, **environment):
        for name in commands:
            (self.commands / name).write_text(COMMANDS[name])
            (self.commands / name).chmod(0o700)
        return subprocess.run(
            [ROOT / "scripts/install", group], capture_output=True, text=True, check=False,
            stdin=subprocess.DEVNULL, env={"PATH": str(self.commands), **environment})

    def asked(self):
        return (self.commands / "apt-get.asked").read_text().splitlines()

    def test_a_line_a_step_and_nothing_removed(self):
        done = self.install("build", COMMANDS)
        self.assertEqual(done.returncode, 0, done)
        self.assertLess(len(done.stdout.splitlines()), 6)
        self.assertNotIn("talks", done.stdout + done.stderr)
        *_, last = self.asked()
        self.assertRegex(last, "^-q -y install .*--no-remove ")
        self.assertIn("g++", last.split())
        self.assertNotIn("cmake", last.split())

    def test_words_of_apt_on_failure(self):
        done = self.install("build", COMMANDS, INSTALL="100")
        self.assertEqual(done.returncode, 1)
        self.assertIn("apt talks", done.stderr)

    def test_others_would_have_to_go(self):
        done = self.install("sound", COMMANDS,
                            CONFLICT="Packages need to be removed but remove is disabled.")
        self.assertEqual((done.returncode, len(done.stdout.splitlines())), (2, 1))
        self.assertEqual(len(self.asked()), 1)

    def test_no_apt(self):
        for commands in (), ("apt-get",):
            done = self.install("build", commands)
            self.assertEqual((done.returncode, len(done.stdout.splitlines())), (0, 1))
        self.assertFalse((self.commands / "apt-get.asked").exists())


if __name__ == "__main__":
    unittest.main()
