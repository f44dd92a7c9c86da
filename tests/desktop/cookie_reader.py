"""What the cookie list has to show for a folder, told without the program."""

import codecs
import datetime
import os
import re
import time

EPOCH_1601 = datetime.datetime(1601, 1, 1)
TICKS = 10_000_000
TICKS_1601_TO_1970 = 11_644_473_600 * TICKS
NUMBER = re.compile(r"[ \t]*([+-]?(?:[0-9]+\.?[0-9]*|\.[0-9]+)(?:[eE][+-]?[0-9]+)?)")


def local_time(ticks):
    """Ticks since 1601, UTC, as local time by the offset of this moment; None if impossible."""
    ticks += time.localtime().tm_gmtoff * TICKS
    if ticks < 0:
        return None
    try:
        return EPOCH_1601 + datetime.timedelta(seconds=ticks // TICKS)
    except OverflowError:
        return None


def expire_date(line):
    number = NUMBER.match(line)
    value = float(number.group(1)) if number else 0.0
    if value in (float("inf"), float("-inf")):
        return "-"
    high = round(value)  # ties to even
    if not -2**31 <= high < 2**31 or high < 0:
        return "-"
    when = local_time(high << 32)
    return f"{when.year:04}-{when.month:02}-{when.day:02}" if when else "-"


# Five bytes stand for nothing in Windows-1252 and come through as the control characters of that
# number.
codecs.register_error("same_number", lambda error: (chr(error.object[error.start]),
                                                    error.start + 1))


def decode(data):
    try:
        return data.decode("utf-8")
    except UnicodeDecodeError:
        return data.decode("cp1252", "same_number")


def records(data):
    lines = decode(data.split(b"\r", 1)[0]).split("\n")
    if lines[-1] == "":
        lines.pop()
    for start in range(0, len(lines) - 8, 9):
        name, value, server, _, _, high = lines[start:start + 6]
        yield server[:-1] if server.endswith("/") else server, expire_date(high), name, value


def lines(folder):
    """A line of bytes for each row of the list."""
    for entry in os.scandir(os.fsencode(folder)):
        if not entry.name.lower().endswith(b".txt") or entry.name.startswith(b"."):
            continue
        if not os.path.isfile(entry.path):
            continue
        status = entry.stat()
        with open(entry.path, "rb") as file:
            data = file.read()
        size = f"{status.st_size:,}" if status.st_size else ""
        modified = local_time(status.st_mtime_ns // 100 + TICKS_1601_TO_1970)
        for cells in records(data):
            row = [cell.encode() for cell in cells]
            row += [entry.name, size.encode(), str(modified).encode()]
            yield b"\t".join(re.sub(rb"[\x00-\x1f\x7f\\]", lambda found: b"\\x%02X" % found[0][0],
                                    cell) for cell in row)
