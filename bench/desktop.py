"""What the running program costs on a desktop: a virtual display, a window manager, a session bus.

The program is the one that users run. Beside it runs a bare window of the same toolkit (bare.cpp).
"""

import ctypes
import os
import random
import shutil
import statistics
import sys
import threading
import time
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "tests/desktop"))
from harness import TWIPS_PER_PIXEL, Program, end_process  # noqa: E402

ALL_PLANES = ctypes.c_ulong(-1)
Z_PIXMAP = 2
SCREEN_CENTRE = 640, 512
BARE_POINT = 600, 600  # of the bare window, away from pointer and text
POLL = 0.0003


class Screen:
    """The display as another X client sees it."""

    def __init__(self, display):
        self.x = ctypes.CDLL("libX11.so.6")
        self.test = ctypes.CDLL("libXtst.so.6")
        pointer, window = ctypes.c_void_p, ctypes.c_ulong
        self.x.XOpenDisplay.restype = pointer
        self.x.XOpenDisplay.argtypes = [ctypes.c_char_p]
        self.x.XDefaultRootWindow.restype = window
        self.x.XGetImage.restype = pointer
        self.x.XGetPixel.restype = ctypes.c_ulong
        self.display = pointer(self.x.XOpenDisplay(display.encode()))
        self.root = window(self.x.XDefaultRootWindow(self.display))

    def pixel(self, x, y):
        image = ctypes.c_void_p(
            self.x.XGetImage(self.display, self.root, x, y, 1, 1, ALL_PLANES, Z_PIXMAP))
        value = self.x.XGetPixel(image, 0, 0)
        self.x.XDestroyImage(image)
        return value

    def click(self, x, y):
        self.test.XTestFakeMotionEvent(self.display, -1, x, y, 0)
        self.test.XTestFakeButtonEvent(self.display, 1, 1, 0)
        self.test.XTestFakeButtonEvent(self.display, 1, 0, 0)
        self.x.XFlush(self.display)

    def seconds_to_change(self, point, act, most=30, poll=POLL):
        """From just before `act()` to the moment when that pixel of the screen looks different."""
        before = self.pixel(*point)
        begin = time.monotonic()
        act()
        while self.pixel(*point) == before:
            if time.monotonic() - begin > most:
                raise AssertionError("nothing has changed on the screen")
            time.sleep(poll)  # or else the X server would be busy with the answers
        return time.monotonic() - begin


def launch(program):
    return program.desktop.start(str(program.folder / "quillmere"), env=program.env)


def seconds_to_window(screen, start):
    """From the start of a process to the moment when its window is painted on the screen."""
    processes = []
    seconds = screen.seconds_to_change(SCREEN_CENTRE, lambda: processes.append(start()))
    time.sleep(0.5)  # what follows the window is not to meet the next start
    end_process(processes[0])
    time.sleep(0.2)
    return seconds


def measure_start(desktop, screen, bare, rounds):
    own, other = [], []
    for _ in range(rounds):
        program = Program(desktop, accessible=False)
        other.append(seconds_to_window(screen, lambda: desktop.start(bare, env=program.env)))
        own.append(seconds_to_window(screen, lambda: launch(program)))
    return statistics.median(own), statistics.median(other)


def processor_seconds(process):
    """Of all threads, as the scheduler counts them."""
    return sum(int(task.joinpath("schedstat").read_text().split()[0])
               for task in Path(f"/proc/{process.pid}/task").iterdir()) / 1e9


def resident_bytes(process):
    status = Path(f"/proc/{process.pid}/status").read_text()
    return int(status.split("VmRSS:")[1].split()[0]) * 1024


def measure_rest(desktop, bare, seconds, rounds):
    """Both at rest side by side, so that the machine is the same to both."""
    program = Program(desktop, accessible=False).start()
    other = desktop.start(bare, env=program.env)
    time.sleep(3)  # until both have settled
    own_used, other_used = [], []
    for _ in range(rounds):
        own_before, other_before = processor_seconds(program.process), processor_seconds(other)
        time.sleep(seconds)
        own_used.append(processor_seconds(program.process) - own_before)
        other_used.append(processor_seconds(other) - other_before)
    memory = resident_bytes(program.process), resident_bytes(other)
    program.kill()
    end_process(other)
    return (statistics.median(own_used), statistics.median(other_used)), memory


class TwoTabs:
    """The first and a later tab of the main window, and a point of the page that differs."""

    def __init__(self, screen, program):
        left, top, width, height = program.geometry()
        self.screen = screen
        self.page = left + width - 60, top + height - 60
        # The strip's place as the window lays it out.
        self.row = top + 180 // TWIPS_PER_PIXEL + 12
        self.first = left + 1950 // TWIPS_PER_PIXEL + 20
        first_page = self.shown()
        for self.other in range(left + width - 40, self.first, -15):
            screen.click(self.other, self.row)
            time.sleep(0.3)
            if self.shown() != first_page:
                return
        raise AssertionError("no other tab")

    def shown(self):
        return self.screen.pixel(*self.page)

    def switch(self, number, poll=POLL):
        """One of the two in turn."""
        tab = self.first if number % 2 == 0 else self.other
        return self.screen.seconds_to_change(
            self.page, lambda: self.screen.click(tab, self.row), poll=poll)


def timed_clicks(click, count):
    """Median and 99th percentile. The pauses meet a wait of 100 milliseconds at every point."""
    samples = []
    for number in range(count):
        time.sleep(random.uniform(0.03, 0.16))
        samples.append(click(number))
    samples.sort()
    return samples[count // 2], samples[count * 99 // 100]


def clicks_on_program(desktop, screen, count):
    program = Program(desktop, accessible=False).start()
    program.activate()
    time.sleep(1)
    times = timed_clicks(TwoTabs(screen, program).switch, count)
    program.kill()
    return times


def measure_clicks_in_rebuilds(desktop, screen, cookies, count):
    """The same while one file of a large folder changes again and again, so that the list of its
    cookies is rebuilt nearly all the time: median and worst."""
    program = Program(desktop, accessible=False)
    shutil.copytree(cookies, program.cookies, dirs_exist_ok=True)
    program.start().activate()
    time.sleep(3)
    changed = min(program.cookies.iterdir())
    ended = threading.Event()

    def change():
        while not ended.wait(0.6):
            os.utime(changed)

    changes = threading.Thread(target=change)
    tabs = TwoTabs(screen, program)
    changes.start()
    samples = []
    for number in range(count):
        time.sleep(random.uniform(0, 0.5))
        samples.append(tabs.switch(number, poll=0.005))  # leaves the processors to the program
    ended.set()
    changes.join()
    program.kill()
    shutil.rmtree(program.folder.parent)
    return statistics.median(samples), max(samples)


def clicks_on_bare(desktop, screen, bare, count):
    process = desktop.start(bare)
    time.sleep(2)

    def click(_):
        return screen.seconds_to_change(BARE_POINT, lambda: screen.click(*SCREEN_CENTRE))

    times = timed_clicks(click, count)
    end_process(process)
    return times


def measure_input(desktop, screen, bare, count, rounds):
    """A click on a tab of the watching program, and one on the bare window: from the button event
    to the pixel that its procedure changes. Median and 99th percentile, own and reference, each
    the median of several rounds."""
    own, other = [], []
    for _ in range(rounds):
        other.append(clicks_on_bare(desktop, screen, bare, count))
        own.append(clicks_on_program(desktop, screen, count))
    return [(statistics.median(o), statistics.median(b))
            for o, b in zip(zip(*own), zip(*other))]
