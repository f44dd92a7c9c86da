"""Cookie files, many broken, entries that look like ones, and a file with a line of 20 MB."""

import os
import random
from pathlib import Path

LONG_LINE = 20_000_000
HIGH_WORDS = [
    b"29721845", b"30000000", b"0", b"-0", b"-1", b"+30000000", b"   30000000", b"\t30000000",
    b"30000000 days", b"3e7", b"3E+7", b"2.5", b"3.5", b"0.5", b"-0.5", b".5e8", b"1.", b"194",
    b"30000000.", b"4294967295", b"2147483647", b"2147483647.4", b"2147483647.5", b"2147483648",
    b"-2147483648", b"617250000", b"620000000", b"1e999", b"-1e999", b"1e-999", b"1e", b"1e+", b".",
    b"--1", b"+-1", b"-", b"", b" ", b"never", b"inf", b"nan", b"0x1C58A00", b"&H10", b"1_000",
    b"1,000", "٣٠".encode(), b"\xff30000000", b"30\x0000000", b"0." + b"0" * 500 + b"1",
    b"9" * 5000,
]
WORDS = [b"uid", b"lang", b"UserPassword", b"PASSWORD_HINT", b"session", b"", b" ", b"a%3Db%20c",
         b"x" * 300, b"tab\there", b"\x00", b"nul\x00inside", "größe".encode(), "名前".encode(),
         b"caf\xe9", b"\x81\x8d\x8f\x90\x9d\x80", b"\xed\xa0\x80", b"\xc0\xaf", b"\xf4\x90\x80\x80",
         b"\xef\xbb\xbfbom", b"\xef\xbf\xbe", b"\x1a", b"*", b"\xc3"]
SERVERS = [b"shop.example/", b"shop.example/cart/", b"shop.example//", b"shop.example", b"/", b"//",
           b"", b"Shop.Example/", "bücher.example/".encode(), b"caf\xe9.example/"]


def record(rng):
    plain = rng.random() < 0.8
    word = WORDS[:14] if plain else WORDS
    high = rng.choice([rng.choice(HIGH_WORDS), b"%d" % rng.randrange(27_000_000, 40_000_000)])
    return [rng.choice(word), rng.choice(word), rng.choice(SERVERS[:8] if plain else SERVERS),
            b"1536", b"%d" % rng.getrandbits(32), high, b"1823712256", b"29680011", b"*"]


def content(rng):
    lines = [line for _ in range(rng.choice([1, 1, 2, 2, 3, 4, 6])) for line in record(rng)]
    words = [rng.choice(WORDS) for _ in range(rng.randrange(41))]
    at, kind = rng.randrange(len(lines)), rng.randrange(12)
    if kind == 0:  # stray lines that shift what follows
        lines[at:at] = words
    elif kind == 1:  # cut anywhere
        lines = lines[:at]
    elif kind == 2:  # nothing but lines
        lines = words
    elif kind == 3:
        lines[at] = b"before\rbehind"
    elif kind == 4:
        lines[at:] = [line + b"\r" for line in lines[at:]]
    elif kind == 5:
        lines[at] = rng.randbytes(rng.randrange(60))
    data = b"".join(line + b"\n" for line in lines)
    if kind == 6:
        data = data[:-1]
    elif kind == 7:  # caught half-written
        data = data[:rng.randrange(len(data) + 1)]
    return data


def name(rng, number):
    stem = rng.choice([b"user@shop[%d]", b"User@Shop[%d]", "jürgen@%d".encode(), b"caf\xe9-%d",
                       b"%d with blanks", b"%d*?", b"a\\b%d", b"tab\t%d", b"line\n%d"])
    return stem.replace(b"%d", b"%d" % number) + rng.choice([b".txt", b".txt", b".TXT", b".Txt"])


def make(folder, count):
    rng, folder = random.Random(1), Path(folder)
    for number in range(count):
        path = folder / os.fsdecode(name(rng, number))
        path.write_bytes(content(rng))
        when = rng.randrange(-10**9, 2 * 10**9) * 10**9 + rng.randrange(10**9)
        os.utime(path, ns=(when, when))
    good = b"\n".join(record(rng)) + b"\n"
    (folder / "long.txt").write_bytes(b"name\n" + b"v" * LONG_LINE + b"\n" + b"7/\n" * 7 + good)
    for other in (".hidden.txt", "cookie.txt.bak", "txt", "target"):
        (folder / other).write_bytes(good)
    (folder / "folder.txt").mkdir()
    os.mkfifo(folder / "pipe.txt")
    (folder / "link.txt").symlink_to("target")
    (folder / "dangling.txt").symlink_to("nowhere")
