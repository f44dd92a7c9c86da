"""Start and Stop, at every moment: the buttons tell whether a watch runs, and no report is lost,
doubled or made up."""

import os
import random
import subprocess
import sys
import time

from harness import SAVE_LOG, DesktopTest, main, wait_until

SECONDS = float(os.environ.get("QUILLMERE_CLICK_SECONDS", "15"))
SEED = os.environ.get("QUILLMERE_SEED", "20040501")
FILES = 50_000
# Adds, rewrites and deletes files for as long as the input is open.
CHURN = """
import os, random, select, sys, time
folder, seed = sys.argv[1:]
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
    def begin(self, program):
        self.watched = program.start()
        self.start, self.stop = program.button("Start"), program.button("Stop")

    def watch_runs(self):
        """As the buttons tell it: exactly one is enabled. Nothing if they were just switched."""
        for _ in range(20):
            before, running, after = self.start.enabled, self.stop.enabled, self.start.enabled
            if before == after:
                self.assertNotEqual(before, running)
                return running
        return None

    def press(self, button):
        button.press()
        wait_until(lambda: not button.enabled and self.watch_runs() == (button is self.start),
                   f"{button.name} to work")

    def wait_for_rest(self):
        """Until the program has used no more than a trace of the processor for a second."""
        def used():
            fields = open(f"/proc/{self.watched.process.pid}/stat").read().rsplit(")", 1)[1].split()
            return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")

        def at_rest():
            before = used()
            time.sleep(1)
            return used() - before < 0.05

        wait_until(at_rest, "the program to come to rest", 60)

    def test_changes_around_a_stop(self):
        program = self.program(config=SAVE_LOG)
        self.begin(program)
        chance = random.Random(SEED)
        for number in range(25):
            known = program.log_file()
            (program.cookies / f"seen{number}.txt").touch()
            # The watch meets the change within a tenth of a second, its timer within half a one.
            time.sleep(chance.uniform(0.12, 0.4))
            self.press(self.stop)
            self.assertFalse(program.watching())
            at_stop = program.log_file()
            # What the watch had met before the stop is still compared.
            time.sleep(1.2)
            compared = at_stop == known != program.log_file()
            self.press(self.start)
            wait_until(program.watching, "the watch")
            if compared:
                break
        self.assertTrue(compared, "no change that was met before a stop was reported after it")
        self.press(self.stop)
        self.wait_for_rest()
        reported = program.log_file().decode().splitlines()
        (program.cookies / "unseen.txt").touch()
        (program.cookies / f"seen{number}.txt").unlink()
        self.press(self.start)
        wait_until(program.watching, "the watch")
        (program.cookies / "next.txt").touch()
        *lines, last = program.wait_for_log(len(reported) + 1)
        self.assertIn("added: next.txt", last)
        self.assertEqual(lines, reported)
        self.assertEqual(len(lines), len(set(line.split(" - ")[1] for line in lines)))

    def test_random_clicks(self):
        program = self.program(config=SAVE_LOG)
        still = program.cookies.with_name("still")
        still.write_bytes(b"a\n")
        for number in range(FILES):  # one file under many names is quickly made
            os.link(still, program.cookies / f"still{number}.txt")
        self.begin(program)
        chance = random.Random(SEED)
        churn = subprocess.Popen([sys.executable, "-c", CHURN, program.cookies, SEED],
                                 stdin=subprocess.PIPE)
        self.addCleanup(churn.wait)
        self.addCleanup(churn.stdin.close)
        end = time.monotonic() + SECONDS
        told = set()
        while time.monotonic() < end:
            chance.choice((self.start, self.stop)).click()
            time.sleep(chance.choice((0, 0, 0.05, 0.3)))
            told.add(self.watch_runs())
        self.assertLessEqual({True, False}, told)
        churn.stdin.close()
        churn.wait()

        # The last clicks are served; from then on nothing happens by itself.
        self.wait_for_rest()
        self.assertEqual(self.watch_runs(), program.watching())
        # A change at the end of a first scan may wait for the next one: a new start takes it in.
        if self.stop.enabled:
            self.press(self.stop)
        self.press(self.start)
        wait_until(program.watching, "the watch")
        self.wait_for_rest()
        lines = program.log_file().count(b"\r\n")
        (program.cookies / "last.txt").touch()
        program.wait_for_log(lines + 1)
        self.wait_for_rest()
        reports = program.log_file().decode().splitlines()
        self.assertIn("added: last.txt", reports[-1])
        self.assertEqual(len(reports), lines + 1)
        # Nothing had happened to the files that lay still.
        self.assertNotIn("still", "".join(reports))
        self.press(self.stop)
        wait_until(lambda: not program.watching(), "the watch to end")
        self.assertEqual(program.end(), 0)


if __name__ == "__main__":
    main()
