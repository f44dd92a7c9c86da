#!/usr/bin/env python3
"""compare_cookie_readers.py PRINT_COOKIES COUNT: two readers on the same cookie files.

PRINT_COOKIES is the program's own reader, which prints a line for each row. The other one stands in
cookie_reader.py, written apart from the program, so that each can find the other's faults.
"""

import itertools
import os
import subprocess
import sys
import tempfile
import time

import cookie_reader
import make_cookies


def compare(zone, program, folder):
    os.environ.update(TZ=zone, LC_ALL="en_US.UTF-8")
    time.tzset()
    pairs = [*itertools.zip_longest(subprocess.check_output([program, folder]).splitlines(),
                                    cookie_reader.lines(folder))]
    different = [pair for pair in pairs if pair[0] != pair[1]]
    print(f"{zone}: {len(pairs)} rows, {len(different)} different {different[:5]!r:.3000}")
    return not different


if __name__ == "__main__":
    with tempfile.TemporaryDirectory() as made:
        make_cookies.make(made, int(sys.argv[2]))
        sys.exit(not all([compare(zone, sys.argv[1], made) for zone in ("UTC", "Asia/Shanghai")]))
