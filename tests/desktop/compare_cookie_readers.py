#!/usr/bin/env python3
"""compare_cookie_readers.py PRINT_COOKIES [COUNT]: both readers on the same generated folder.

PRINT_COOKIES is the program's own reader, built to print like cookie_reader.py.
"""

import os
import subprocess
import sys
import tempfile

import make_cookies

HERE = os.path.dirname(os.path.abspath(__file__))


def output(zone, *command):
    environment = dict(os.environ, TZ=zone, LC_ALL="en_US.UTF-8")
    return subprocess.run(command, env=environment, stdout=subprocess.PIPE, check=True).stdout


def compare(zone, program, folder):
    found = output(zone, program, folder).split(b"\n")
    expected = output(zone, sys.executable, os.path.join(HERE, "cookie_reader.py"), folder)
    expected = expected.split(b"\n")
    differences = [pair for pair in zip(found, expected) if pair[0] != pair[1]]
    for ours, theirs in differences[:5]:
        print(f"{zone}: program {ours[:300]!r}\n{' ' * len(zone)}   reader {theirs[:300]!r}")
    print(f"{zone}: {len(found) - 1} rows, expected {len(expected) - 1}, "
          f"{len(differences)} different")
    return not differences and len(found) == len(expected)


def main():
    program, count = sys.argv[1], int(sys.argv[2]) if len(sys.argv) > 2 else 10_000
    with tempfile.TemporaryDirectory() as folder:
        make_cookies.make(folder, count)
        same = [compare(zone, program, folder) for zone in ("UTC", "Asia/Shanghai")]
    sys.exit(0 if all(same) else 1)


if __name__ == "__main__":
    main()
