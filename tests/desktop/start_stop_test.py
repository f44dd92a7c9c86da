"""Start and Stop, at every moment: the buttons tell whether a watch runs, and no report is lost,
doubled or made up."""

import os
import random
import subprocess
import sys
import time

from harness import SAVE_LOG, DesktopTest, main, wait_until

SECONDS = 25
FILES = 50_000
# Adds, rewrites and deletes files for as long as the input is open.
CHURN = """
import os, random, select, sys, time
folder, seed = sys.argv[1], int(sys.argv[2])
random.seed(seed)
while not select.select([sys.stdin], [], [], random.uniform(0, 0.2))[0]:
    path = f"{folder}/churn{random.randrange(20)}.txt"
    if os.path.exists(path) and random.random() < 0.5:
        os.unlink(path)
    else:
        with open(path, "a") as file:
            file.write("x" * random.randrange(5))
"""


class StartStopTest(DesktopTest):
    def check_buttons(self, start, stop):
        """Exactly one is enabled; read so that a switch between the looks does not count."""
        for _ in range(20):
            before, running, after = start.enabled, stop.enabled, start.enabled
            if before == after:
                self.assertNotEqual(before, running)
                return running
        return None

    def switch(self, program, button, other):
        button.press()
        wait_until(lambda: not button.enabled and other.enabled, f"{button.name} to work")

    def test_changes_while_stopped(self):
        program = self.started(config=SAVE_LOG)
        start, stop = program.button("Start"), program.button("Stop")
        self.assertTrue(self.check_buttons(start, stop))
        (program.cookies / "first.txt").touch()
        self.assertIn("added: first.txt", program.wait_for_log(1)[0])
        stop.click()
        wait_until(lambda: start.enabled and not stop.enabled, "the stop")
        self.assertFalse(program.watching())
        (program.cookies / "unseen.txt").touch()
        (program.cookies / "first.txt").unlink()
        start.click()
        wait_until(lambda: stop.enabled and not start.enabled and program.watching(), "the start")
        (program.cookies / "second.txt").touch()
        lines = program.wait_for_log(2)
        self.assertIn("added: second.txt", lines[1])
        self.assertEqual(program.log_lines(), lines)
        self.assertEqual(len(lines), 2)

    def test_change_seen_before_stop(self):
        """The comparison for a change that the watch has met still runs after a stop."""
        program = self.started(config=SAVE_LOG)
        start, stop = program.button("Start"), program.button("Stop")
        after_stop = 0
        chance = random.Random(1)
        for number in range(60):
            path = program.cookies / f"round{number}.txt"
            known = len(program.log_file())
            path.touch()
            # The watch meets the change within a tenth of a second, its timer within half a one.
            time.sleep(chance.uniform(0.12, 0.4))
            self.switch(program, stop, start)
            if len(program.log_file()) == known:
                try:
                    wait_until(lambda: len(program.log_file()) > known, path.name, 1.5)
                    after_stop += 1
                except AssertionError:
                    pass  # this stop came before the watch had met the change
            self.switch(program, start, stop)
            wait_until(program.watching, "the watch")
            if after_stop == 3:
                break
        self.assertEqual(after_stop, 3)
        text = program.log_file().decode()
        for done in range(number + 1):
            self.assertLessEqual(text.count(f"added: round{done}.txt"), 1)

    def test_random_clicks(self):
        program = self.program(config=SAVE_LOG)
        still = program.cookies.parent / "still"
        still.write_bytes(b"a\n")
        for number in range(FILES):  # one file under many names is quickly made
            os.link(still, program.cookies / f"still{number}.txt")
        program.start()
        start, stop = program.button("Start"), program.button("Stop")
        seed = int(os.environ.get("QUILLMERE_SEED", "20040501"))
        chance = random.Random(seed)
        churn = subprocess.Popen([sys.executable, "-c", CHURN, program.cookies, str(seed)],
                                 stdin=subprocess.PIPE)
        self.addCleanup(churn.wait)
        self.addCleanup(churn.stdin.close)
        end = time.monotonic() + SECONDS
        states = set()
        while time.monotonic() < end:
            chance.choice((start, stop)).click()
            time.sleep(chance.choice((0, 0, 0.05, 0.3)))
            states.add(self.check_buttons(start, stop))
        self.assertLessEqual({True, False}, states)
        churn.stdin.close()
        churn.wait()

        # The last clicks are served; from then on nothing happens by itself.
        self.check_quiet(program)
        self.assertEqual(self.check_buttons(start, stop), program.watching())
        if start.enabled:
            self.switch(program, start, stop)
        wait_until(program.watching, "the watch")
        self.check_quiet(program)
        lines = program.log_file().count(b"\r\n")
        (program.cookies / "last.txt").touch()
        reports = program.wait_for_log(lines + 1)
        self.check_quiet(program)
        self.assertIn("added: last.txt", reports[lines])
        self.assertEqual(program.log_file().count(b"\r\n"), lines + 1)
        # Nothing had happened to the files that lay still.
        self.assertNotIn(b"still", program.log_file())
        self.switch(program, stop, start)
        wait_until(lambda: not program.watching(), "the watch to end")
        self.assertTrue(start.enabled)
        self.assertEqual(program.end(), 0)

    def check_quiet(self, program):
        """Waits until the program is at rest: it has used no more than a trace of the processor."""
        def used():
            fields = open(f"/proc/{program.process.pid}/stat").read().rsplit(")", 1)[1].split()
            return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")

        def at_rest():
            before = used()
            time.sleep(1.5)
            return used() - before < 0.2

        wait_until(at_rest, "the program to come to rest", 60)


if __name__ == "__main__":
    main()
