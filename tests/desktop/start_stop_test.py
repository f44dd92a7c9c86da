"""Start and Stop at every moment: the buttons tell the truth, no report is lost or made up."""

import os
import random
import threading
import time

from harness import SAVE_LOG, DesktopTest, main, wait_until

SECONDS = float(os.environ.get("QUILLMERE_CLICK_SECONDS", "15"))
SEED = os.environ.get("QUILLMERE_SEED", "20040501")
FILES = 50_000


def churn(folder, ended):
    """Adds, rewrites and deletes files until the end."""
    chance = random.Random(SEED)
    while not ended.wait(chance.uniform(0, 0.2)):
        path = folder / f"churn{chance.randrange(20)}.txt"
        if path.exists() and chance.random() < 0.5:
            path.unlink()
        else:
            path.write_bytes(bytes(chance.randrange(5)))


class StartStopTest(DesktopTest):
    def watch_runs(self):
        """As the buttons tell it, one of which is enabled; between two looks both can change."""
        wait_until(lambda: self.start.enabled != self.stop.enabled, "one of Start and Stop", 1)
        return self.stop.enabled

    def test_random_clicks(self):
        program = self.program(config=SAVE_LOG)
        still = program.cookies.with_name("still")
        still.write_bytes(b"a\n")
        for number in range(FILES):  # one file under many names is quickly made
            os.link(still, program.cookies / f"still{number}.txt")
        program.start()
        self.start, self.stop = program.button("Start"), program.button("Stop")
        chance = random.Random(SEED)
        ended, told = threading.Event(), set()
        worker = threading.Thread(target=churn, args=(program.cookies, ended))
        self.addCleanup(ended.set)
        worker.start()
        end = time.monotonic() + SECONDS
        while time.monotonic() < end:
            chance.choice((self.start, self.stop)).click()
            time.sleep(chance.choice((0, 0, 0.05, 0.3)))
            told.add(self.watch_runs())
        ended.set()
        worker.join()
        self.assertLessEqual({True, False}, told)

        # The last clicks are served; from then on nothing happens by itself.
        program.wait_for_rest()
        self.assertEqual(self.watch_runs(), program.watching())
        # A change at the end of a first scan may wait for the next one: a new start takes it in.
        if self.stop.enabled:
            program.switch_watch("Stop")
        program.switch_watch("Start")
        program.wait_for_rest()
        before = program.told()
        (program.cookies / "last.txt").touch()
        program.told(len(before) + 1)
        # What comes and goes between a stop and a start is never told.
        program.switch_watch("Stop")
        (program.cookies / "unseen.txt").touch()
        (program.cookies / "last.txt").unlink()
        program.switch_watch("Start")
        program.wait_for_rest()
        (program.cookies / "next.txt").touch()
        program.told(len(before) + 2)
        program.wait_for_rest()
        self.assertEqual(program.told(), [*before, "added: last.txt", "added: next.txt"])
        self.assertIn("churn", "".join(before))
        self.assertNotIn("still", "".join(before))


if __name__ == "__main__":
    main()
