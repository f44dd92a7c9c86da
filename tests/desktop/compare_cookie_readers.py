#!/usr/bin/env python3
"""compare_cookie_readers.py PRINT_COOKIES COUNT: two readers on the same cookie files.

PRINT_COOKIES is the program's own reader, built to print one line a row, in the folder's order:
server, expiry date, cookie name, value, file, size, modified, divided by tabs; control characters
and backslashes inside a cell as \\xNN. The other reader stands in cookie_reader.py, written apart
from the program, so that each can find the other's faults.
"""

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
    found = subprocess.check_output([program, folder]).splitlines()
    expected = list(cookie_reader.lines(folder))
    differences = [pair for pair in zip(found, expected) if pair[0] != pair[1]]
    for ours, theirs in differences[:5]:
        print(f"program {ours[:300]!r}\nreader  {theirs[:300]!r}")
    print(f"{zone}: {len(found)} rows, expected {len(expected)}, {len(differences)} different")
    return not differences and len(found) == len(expected)


if __name__ == "__main__":
    with tempfile.TemporaryDirectory() as cookies:
        make_cookies.make(cookies, int(sys.argv[2]))
        same = [compare(zone, sys.argv[1], cookies) for zone in ("UTC", "Asia/Shanghai")]
    sys.exit(0 if all(same) else 1)
