"""What the running program costs on a desktop: a virtual display, a window manager, a session bus.

The program is the one that users run. Beside it runs a bare window of the same toolkit (bare.cpp).
"""

import contextlib
import ctypes
import random
import select
import statistics
import sys
import time
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "tests/desktop"))
from harness import TWIPS_PER_PIXEL, Program, end_process  # noqa: E402

MAP_NOTIFY = 19
SUBSTRUCTURE_NOTIFY = 1 << 19
ALL_PLANES = ctypes.c_ulong(-1)
Z_PIXMAP = 2


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

    @contextlib.contextmanager
    def watched(self):
        """Windows that are mapped meanwhile can be waited for."""
        self.x.XSelectInput(self.display, self.root, ctypes.c_long(SUBSTRUCTURE_NOTIFY))
        self.x.XSync(self.display, 1)
        yield
        self.x.XSelectInput(self.display, self.root, ctypes.c_long(0))
        self.x.XSync(self.display, 1)

    def wait_for_window(self):
        event = (ctypes.c_long * 24)()
        connection = self.x.XConnectionNumber(self.display)
        end = time.monotonic() + 30
        while time.monotonic() < end:
            if not self.x.XPending(self.display):
                select.select([connection], [], [], 1)
                continue
            self.x.XNextEvent(self.display, event)
            if ctypes.c_int.from_buffer(event).value == MAP_NOTIFY:
                return
        raise AssertionError("no window")


def launch(program):
    return program.desktop.start(str(program.folder / "quillmere"), env=program.env)


def seconds_to_window(screen, start):
    """From the start of a process to the moment when the display shows its window."""
    with screen.watched():
        begin = time.monotonic()
        process = start()
        screen.wait_for_window()
        seconds = time.monotonic() - begin
    time.sleep(0.5)  # what follows the window is not to meet the next start
    end_process(process)
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

    def seconds_to_switch(self, tab):
        """From the button event to the changed pixel."""
        before = self.shown()
        begin = time.monotonic()
        self.screen.click(tab, self.row)
        while self.shown() == before:
            if time.monotonic() - begin > 5:
                raise AssertionError("a click without effect")
        return time.monotonic() - begin


def measure_input(desktop, screen, clicks):
    """Median and 99th percentile of a click on a tab, up to the pixel that its procedure changes.
    The pauses between the clicks meet the watch at every point of its wait."""
    program = Program(desktop, accessible=False).start()
    program.activate()
    time.sleep(1)
    tabs = TwoTabs(screen, program)
    samples = []
    for number in range(clicks):
        time.sleep(random.uniform(0.03, 0.16))
        samples.append(tabs.seconds_to_switch(tabs.first if number % 2 == 0 else tabs.other))
    program.kill()
    samples.sort()
    return samples[len(samples) // 2], samples[int(len(samples) * 0.99)]
