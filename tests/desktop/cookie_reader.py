"""What the cookie list has to show for a folder, told without the program."""

import datetime
import os
import re
import time

TICKS = 10_000_000
TICKS_1601_TO_1970 = 11_644_473_600 * TICKS
NUMBER = re.compile(r"[ \t]*([+-]?(?:[0-9]+\.?[0-9]*|\.[0-9]+)(?:[eE][+-]?[0-9]+)?)")


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


def records(data):
    lines = decode(data.split(b"\r", 1)[0]).removesuffix("\n").split("\n")
    for start in range(0, len(lines) - 8, 9):
        name, value, server, _, _, high = lines[start:start + 6]
        yield server.removesuffix("/"), expire_date(high), name, value


def lines(folder):
    """A line of bytes for each row of the list."""
    for entry in os.scandir(os.fsencode(folder)):
        if (not entry.name.lower().endswith(b".txt") or entry.name.startswith(b".")
                or not entry.is_file()):
            continue
        status = entry.stat()
        with open(entry.path, "rb") as file:
            data = file.read()
        size = f"{status.st_size:,}" if status.st_size else ""
        modified = local_time(status.st_mtime_ns // 100 + TICKS_1601_TO_1970)
        for cells in records(data):
            row = [*map(str.encode, cells), entry.name, size.encode(), str(modified).encode()]
            yield b"\t".join(re.sub(rb"[\x00-\x1f\x7f\\]", lambda found: b"\\x%02X" % found[0][0],
                                    cell) for cell in row)
