"""Cookie files, broken ones among them and always the same; entries that only look like cookie
files (a folder, a pipe, a dangling link, a hidden file); and one file with a line of 20 MB."""

import os
import random

LONG_LINE = 20_000_000
HIGH_WORDS = [
    b"29721845", b"30000000", b"0", b"-0", b"-1", b"+30000000", b"   30000000", b"\t30000000",
    b"30000000 days", b"3e7", b"3E+7", b"2.5", b"3.5", b"0.5", b"-0.5", b".5e8", b"1.", b"30000000.",
    b"4294967295", b"2147483647", b"2147483647.4", b"2147483647.5", b"2147483648", b"-2147483648",
    b"617250000", b"620000000", b"1e999", b"-1e999", b"1e-999", b"1e", b"1e+", b"--1", b"+-1", b".",
    b"-", b"", b" ", b"never", b"inf", b"nan", b"0x1C58A00", b"&H10", b"1_000", b"1,000",
    "٣٠".encode(), b"\xff30000000", b"30\x0000000", b"0." + b"0" * 500 + b"1", b"9" * 5000, b"194",
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
    high = (b"%d" % rng.randrange(27_000_000, 40_000_000)) if rng.random() < 0.5 \
        else rng.choice(HIGH_WORDS)
    return [rng.choice(word), rng.choice(word), rng.choice(SERVERS[:8] if plain else SERVERS),
            b"1536", b"%d" % rng.getrandbits(32), high, b"1823712256", b"29680011", b"*"]


def content(rng):
    lines = [line for _ in range(rng.choice([1, 1, 2, 2, 3, 4, 6])) for line in record(rng)]
    kind = rng.randrange(12)
    if kind == 0:  # stray lines that shift what follows
        at = rng.randrange(len(lines) + 1)
        lines[at:at] = [rng.choice(WORDS) for _ in range(rng.randrange(41))]
    elif kind == 1:  # cut anywhere
        lines = lines[:rng.randrange(len(lines) + 1)]
    elif kind == 2:  # nothing but lines
        lines = [rng.choice(WORDS) for _ in range(rng.randrange(41))]
    elif kind == 3:
        lines[rng.randrange(len(lines))] = b"before\rbehind"
    elif kind == 4:
        at = rng.randrange(len(lines))
        lines[at:] = [line + b"\r" for line in lines[at:]]
    elif kind == 5:
        lines[rng.randrange(len(lines))] = rng.randbytes(rng.randrange(60))
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


def add_look_alikes(folder, rng):
    good = b"".join(line + b"\n" for line in record(rng))
    for other in (b".hidden.txt", b"cookie.txt.bak", b"txt", b"target"):
        with open(os.path.join(folder, other), "wb") as file:
            file.write(good)
    os.mkdir(os.path.join(folder, b"folder.txt"))
    os.mkfifo(os.path.join(folder, b"pipe.txt"))
    os.symlink(b"target", os.path.join(folder, b"link.txt"))
    os.symlink(b"nowhere", os.path.join(folder, b"dangling.txt"))


def make(folder, count):
    rng = random.Random(1)
    folder = os.fsencode(folder)
    for number in range(count):
        path = os.path.join(folder, name(rng, number))
        with open(path, "wb") as file:
            file.write(content(rng))
        when = rng.randrange(-10**9, 2 * 10**9) * 10**9 + rng.randrange(10**9)
        os.utime(path, ns=(when, when))
    with open(os.path.join(folder, b"long.txt"), "wb") as file:
        lines = record(rng)
        lines[1] = b"v" * LONG_LINE
        file.write(b"".join(line + b"\n" for line in lines + record(rng)))
    add_look_alikes(folder, rng)
