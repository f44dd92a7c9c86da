"""The program where there is no display, as ./run starts it there."""

import signal
import subprocess
from types import SimpleNamespace

from harness import ROOT, DesktopTest, Program, main, options, running, wait_until

REGISTRY = r"""[software\microsoft\windows\currentversion\explorer\user shell folders]
cookies = sz:{}/my\x20cookies
[Another]
Cookies=/tmp
"""


class VirtualDisplayTest(DesktopTest):
    def check(self, config, log, lines):
        program = Program(self.desktop, config=config)
        program.cookies = program.folder.parent / "my cookies"
        program.cookies.mkdir()
        registry = program.folder.parent / "config/quillmere/registry.ini"
        registry.parent.mkdir()
        registry.write_text(REGISTRY.format(program.cookies.parent))
        script = self.desktop.start(ROOT / "scripts/run-on-virtual-display", program.folder,
                                    env=program.env, stdout=subprocess.PIPE, text=True)
        told = "".join(script.stdout.readline() for _ in range(3))
        self.assertIn(f"Watched folder: {program.cookies}/\n", told)
        self.assertIn(log.format(program.folder), told)
        pid, = wait_until(lambda: running(program.folder / "quillmere"), "the program")
        program.process = SimpleNamespace(pid=pid, poll=script.poll)
        wait_until(program.watching, "the watch", 30)
        (program.cookies / "a.txt").touch()
        program.wait_for_log(lines)
        script.send_signal(signal.SIGINT)
        self.assertEqual(script.stdout.read().count("added: a.txt"), lines)
        self.assertEqual((script.wait(), program.log_file().count(b"\n")), (130, lines))

    def test_log_in_the_terminal(self):
        self.check(None, "Log files: {}/log/\n", 1)
        self.check(options(save_log=False), "SaveLog=True in {}/config.ini\n", 0)


if __name__ == "__main__":
    main()
