"""The help viewer that a program has started: a process of its own, used as a program is."""

import contextlib
from pathlib import Path
from types import SimpleNamespace

from harness import Program


class HelpViewer(Program):
    def __init__(self, pid):
        self.process = SimpleNamespace(pid=pid)


def viewers(program):
    """Those that run from the program's folder."""
    found = []
    for entry in Path("/proc").glob("[0-9]*/exe"):
        with contextlib.suppress(OSError):
            if entry.readlink() == program.folder / "quillmere-help":
                found.append(HelpViewer(int(entry.parent.name)))
    return found
