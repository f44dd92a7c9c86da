"""Start and Stop, at every moment: the buttons tell whether a watch runs, and no report is lost,
doubled or made up."""

import os
import random
import subprocess
import sys
import time

from harness import SAVE_LOG, DesktopTest, main

SECONDS = float(os.environ.get("QUILLMERE_CLICK_SECONDS", "15"))
SEED = os.environ.get("QUILLMERE_SEED", "20040501")
FILES = 50_000
# Adds, rewrites and deletes files for as long as the input is open.
CHURN = """
import os, random, select, sys
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
    def watch_runs(self):
        """As the buttons tell it: exactly one is enabled. Nothing if they were just switched."""
        for _ in range(20):
            before, running, after = self.start.enabled, self.stop.enabled, self.start.enabled
            if before == after:
                self.assertNotEqual(before, running)
                return running
        return None

    def test_random_clicks(self):
        program = self.program(config=SAVE_LOG)
        still = program.cookies.with_name("still")
        still.write_bytes(b"a\n")
        for number in range(FILES):  # one file under many names is quickly made
            os.link(still, program.cookies / f"still{number}.txt")
        program.start()
        self.start, self.stop = program.button("Start"), program.button("Stop")
        chance = random.Random(SEED)
        with subprocess.Popen([sys.executable, "-c", CHURN, program.cookies, SEED],
                              stdin=subprocess.PIPE):
            end = time.monotonic() + SECONDS
            told = set()
            while time.monotonic() < end:
                chance.choice((self.start, self.stop)).click()
                time.sleep(chance.choice((0, 0, 0.05, 0.3)))
                told.add(self.watch_runs())
        self.assertLessEqual({True, False}, told)

        # The last clicks are served; from then on nothing happens by itself.
        program.wait_for_rest()
        self.assertEqual(self.watch_runs(), program.watching())
        # A change at the end of a first scan may wait for the next one: a new start takes it in.
        if self.stop.enabled:
            program.switch_watch("Stop")
        program.switch_watch("Start")
        program.wait_for_rest()
        before = program.log_file().decode().splitlines()
        (program.cookies / "last.txt").touch()
        program.wait_for_log(len(before) + 1)
        # What comes and goes between a stop and a start is never told.
        program.switch_watch("Stop")
        (program.cookies / "unseen.txt").touch()
        (program.cookies / "last.txt").unlink()
        program.switch_watch("Start")
        program.wait_for_rest()
        (program.cookies / "next.txt").touch()
        program.wait_for_log(len(before) + 2)
        program.wait_for_rest()
        reports = program.log_file().decode().splitlines()
        self.assertEqual([line.split(" - ")[1].split(",")[0] for line in reports[len(before):]],
                         ["Cookie file added: last.txt", "Cookie file added: next.txt"])
        # Nothing had happened to the files that lay still.
        self.assertNotIn("still", "".join(reports))


if __name__ == "__main__":
    main()
