"""compare_cookie_readers.py COUNT PRINT_COOKIES: two readers on the same cookie files.

PRINT_COOKIES, with whatever it is run by in front, is the program's own reader, which prints every
cell; as a program for Windows it is run by Wine. The other one stands here, written apart from the program, so that each can find the other's faults. The files are made
of the lines that the fuzzer begins with.
"""

import datetime
import os
import random
import re
import subprocess
import sys
import tempfile
import time
from pathlib import Path

TICKS = 10_000_000
TICKS_1601_TO_1970 = 11_644_473_600 * TICKS
NUMBER = re.compile(r"[ \t]*([+-]?(?:[0-9]+\.?[0-9]*|\.[0-9]+)(?:[eE][+-]?[0-9]+)?)")
PROGRAM = sys.argv[2:]
WINDOWS = PROGRAM[-1].endswith(".exe")
INPUTS = {path.name: path.read_bytes()
          for path in Path(__file__).parents[1].glob("fuzz/corpus/CookieFile/*")}
# What stands in each of a record's nine lines.
LINES = [[line for name in sorted(INPUTS) for line in INPUTS[name].split(b"\n")[place::9]]
         for place in range(9)]


def content(rng):
    lines = [rng.choice(place) for _ in range(rng.choice([1, 1, 2, 2, 3, 4, 6])) for place in LINES]
    at, kind = rng.randrange(len(lines)), rng.randrange(8)
    if kind == 0:  # stray lines that shift what follows
        lines[at:at] = rng.choices(LINES[0], k=rng.randrange(41))
    elif kind == 1:
        lines[at] = rng.randbytes(rng.randrange(60))
    data = b"".join(line + b"\n" for line in lines)
    if kind == 2:
        data = data[:-1]
    elif kind == 3:  # caught half-written
        data = data[:rng.randrange(len(data) + 1)]
    return data


def name(rng, number):
    stem = rng.choice([b"user@shop[%d]", b"User@Shop[%d]", "jürgen@%d".encode(), b"%d with blanks",
                       *([] if WINDOWS else [b"caf\xe9-%d", b"%d*?", b"a\\b%d", b"tab\t%d", b"line\n%d"])])
    return stem.replace(b"%d", b"%d" % number) + rng.choice([b".txt", b".txt", b".TXT", b".Txt"])


def make(folder, count):
    rng = random.Random(1)
    for number in range(count):
        path = folder / os.fsdecode(name(rng, number))
        path.write_bytes(content(rng))
        when = rng.randrange(-10**9, 2 * 10**9) * 10**9 + rng.randrange(10**9)
        os.utime(path, ns=(when, when))
    (folder / "long.txt").write_bytes(
        b"name\n" + b"v" * 20_000_000 + b"\n" + b"7/\n" * 7 + INPUTS["two_records"])


def local_time(ticks):
    """Ticks since 1601, UTC, as local time by the offset of this moment; None if impossible."""
    seconds = ticks // TICKS + time.localtime().tm_gmtoff
    try:
        moment = datetime.datetime(1601, 1, 1) + datetime.timedelta(seconds=seconds)
    except OverflowError:
        return None
    return moment if seconds >= 0 else None


def expire_date(line):
    number = NUMBER.match(line)
    value = float(number.group(1)) if number else 0.0
    if not abs(value) <= 2**31 or not 0 <= round(value) < 2**31:  # ties to even
        return "-"
    when = local_time(round(value) << 32)
    return f"{when.year:04}-{when.month:02}-{when.day:02}" if when else "-"


def decode(data):
    try:
        return data.decode()
    except UnicodeDecodeError:
        # Five bytes stand for nothing in Windows-1252 and come through as they are.
        return "".join(bytes([byte]).decode("cp1252", "ignore") or chr(byte) for byte in data)


def rows(folder):
    """Each row of the list: the name of its file, and its bytes."""
    for entry in os.scandir(os.fsencode(folder)):
        status = entry.stat()
        with open(entry.path, "rb") as file:
            lines = decode(file.read().split(b"\r", 1)[0]).removesuffix("\n").split("\n")
        size = f"{status.st_size:,}" if status.st_size else ""
        modified = local_time(status.st_mtime_ns // 100 + TICKS_1601_TO_1970)
        for at in range(0, len(lines) - 8, 9):
            cookie, value, server, _, _, high = lines[at:at + 6]
            cells = [server.removesuffix("/"), expire_date(high), cookie, value,
                     os.fsdecode(entry.name), size, str(modified)]
            cells = [cell.encode("utf-8", "surrogateescape") for cell in cells]
            yield cells[4], b"".join(b"%d:%s" % (len(cell), cell) for cell in cells)


def printed_rows(printed):
    at = 0
    while at < len(printed):
        begin, cells = at, []
        for _ in range(7):
            end = printed.index(b":", at)
            at = end + 1 + int(printed[at:end])
            cells.append(printed[end + 1:at])
        yield cells[4], printed[begin:at]


def agree(zone, folder):
    os.environ.update(TZ=zone, LC_ALL="en_US.UTF-8")
    time.tzset()
    named = "Z:" + folder.replace("/", "\\") if WINDOWS else folder
    printed = list(printed_rows(subprocess.check_output([*PROGRAM, named])))
    expected = list(rows(folder))
    if WINDOWS:  # lists a folder in an order of its own
        printed.sort(key=lambda row: row[0])
        expected.sort(key=lambda row: row[0])
    for number, (one, other) in enumerate(zip(printed, expected)):
        if one != other:
            print(f"{zone}, row {number}:", one[1][:500], "is not", other[1][:500], sep="\n")
            return False
    print(f"{zone}: {len(printed)} rows against {len(expected)}")
    return len(printed) == len(expected)


if __name__ == "__main__":
    with tempfile.TemporaryDirectory() as made:
        make(Path(made), int(sys.argv[1]))
        zones = "America/New_York", "Asia/Shanghai"
        sys.exit(not all([agree(zone, made) for zone in zones]))
