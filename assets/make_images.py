#!/usr/bin/env python3
"""Draws the program's pictures: a quill over a cookie.

Writes quillmere.ico, quillmere.png for desktops, tray.ico, about.gif and the links' pointer hand.cur
beside this script, and for dense screens tray@2x.ico, about@2x.gif and hand@2x.cur. The same run
gives the same bytes; only the standard library is used.
"""

import math
import struct
import zlib
from pathlib import Path

HERE = Path(__file__).resolve().parent
SAMPLES = 8  # a side: each pixel is the mean of 64 points

DOUGH = (0xE0, 0xA2, 0x4E)
CRUST = (0x6B, 0x3A, 0x12)
CHIP = (0x4A, 0x24, 0x0C)
VANE = (0xF6, 0xFA, 0xFF)
SHADE = (0xA9, 0xCB, 0xF2)
INK = (0x16, 0x3F, 0x7D)

COOKIE = (0.41, 0.59, 0.40)
BITE = (0.09, 0.31, 0.14)
CHIPS = [(0.17, 0.57, 0.055), (0.27, 0.74, 0.06), (0.50, 0.82, 0.055), (0.62, 0.66, 0.06)]


def disc(x, y, centre_x, centre_y, radius):
    return math.hypot(x - centre_x, y - centre_y) - radius


class Quill:
    """A leaf between two arcs from nib to tip, and the shaft, which runs on below the leaf."""

    NIB, FOOT, TIP = (0.30, 0.80), (0.43, 0.615), (0.95, 0.04)

    def __init__(self, width):
        self.half = math.dist(self.FOOT, self.TIP) / 2
        self.sag = width / 2
        self.radius = (self.half**2 + self.sag**2) / (2 * self.sag)

    def along(self, x, y):
        """The point in the leaf's own axes: along the shaft from its middle, and to the side."""
        middle = [(a + b) / 2 for a, b in zip(self.FOOT, self.TIP)]
        axis = [(b - a) / (2 * self.half) for a, b in zip(self.FOOT, self.TIP)]
        x, y = x - middle[0], y - middle[1]
        return x * axis[0] + y * axis[1], x * axis[1] - y * axis[0]

    def leaf(self, x, y):
        """Distance to the leaf's edge, negative inside."""
        u, v = self.along(x, y)
        return math.hypot(u, abs(v) + self.radius - self.sag) - self.radius

    def shaft(self, x, y):
        (x0, y0), (x1, y1) = self.NIB, self.TIP
        dx, dy = x1 - x0, y1 - y0
        t = ((x - x0) * dx + (y - y0) * dy) / (dx * dx + dy * dy)
        t = min(max(t, 0), 0.86)
        return math.hypot(x - x0 - t * dx, y - y0 - t * dy)


def painter(size):
    """The colour at a point of the unit square, or None. What is too fine for the size is left out,
    and lines are kept wide enough for it."""
    line = max(0.035, 0.95 / size)
    quill = Quill(0.30 if size > 20 else 0.36)

    def colour(x, y):
        leaf, shaft = quill.leaf(x, y), quill.shaft(x, y)
        if shaft < line * 0.5 and (leaf > -0.01 or size > 20):
            return INK
        if leaf < -line * 0.45:
            return SHADE if quill.along(x, y)[1] < 0 else VANE
        if leaf < line * 0.55:
            return INK
        edge = disc(x, y, *COOKIE)
        if size > 20:
            edge = max(edge, -disc(x, y, *BITE))
        if edge > 0:
            return None
        if edge > -line:
            return CRUST
        if shaft < line * 1.1:
            return DOUGH
        grow = 1 if size > 20 else 1.25
        if any(disc(x, y, a, b, r * grow) < 0 for a, b, r in CHIPS):
            return CHIP
        return DOUGH

    return colour


def draw(width, height, colour):
    """Rows of (red, green, blue, alpha); `colour` is asked in pixels."""
    rows = []
    for row in range(height):
        line = []
        for column in range(width):
            hits = []
            for step in range(SAMPLES * SAMPLES):
                x = column + (step % SAMPLES + 0.5) / SAMPLES
                y = row + (step // SAMPLES + 0.5) / SAMPLES
                found = colour(x, y)
                if found:
                    hits.append(found)
            sums = [sum(hit[i] for hit in hits) for i in range(3)]
            mean = [round(each / len(hits)) if hits else 0 for each in sums]
            line.append((*mean, round(255 * len(hits) / SAMPLES**2)))
        rows.append(line)
    return rows


def icon_pixels(size):
    at = painter(size)
    return draw(size, size, lambda x, y: at(x / size, y / size))


# The pointing hand, a square of 32 units: rods as (x0, y0, x1, y1, radius).
FINGERTIP = (5, 0)
HAND = [(5.5, 2.5, 5.5, 17, 2.5), (10, 10.5, 10, 17, 2.3), (14, 11.5, 14, 17, 2.3),
        (18, 12.5, 18, 18, 2.3), (2.4, 13.8, 6, 20, 2.1), (8, 18, 16, 18, 5), (9.5, 24, 15.5, 24, 4)]
GAPS = [(8, 9, 8, 15, 0.5), (12, 11, 12, 15.5, 0.5), (16, 12, 16, 16, 0.5)]


def rod(x, y, x0, y0, x1, y1, radius):
    dx, dy = x1 - x0, y1 - y0
    t = ((x - x0) * dx + (y - y0) * dy) / (dx * dx + dy * dy)
    t = min(max(t, 0), 1)
    return disc(x, y, x0 + t * dx, y0 + t * dy, radius)


def hand(x, y):
    edge = min(rod(x, y, *part) for part in HAND)
    if edge > 0:
        return None
    if edge > -1 or any(rod(x, y, *gap) < 0 for gap in GAPS):
        return INK
    return VANE


def hand_pixels(size):
    return draw(size, size, lambda x, y: hand(x * 32 / size, y * 32 / size))


# --- Palettes ------------------------------------------------------------------------------------


def nearest(colour, palette):
    def distance(number):
        return sum((a - b)**2 for a, b in zip(colour, palette[number]))
    return min(range(len(palette)), key=distance)


def cut(box):
    """Halves a box of colours across its longest side."""
    spans = [max(c[i] for c in box) - min(c[i] for c in box) for i in range(3)]
    box = sorted(box, key=lambda c: c[spans.index(max(spans))])
    return box[:len(box) // 2], box[len(box) // 2:]


def make_palette(colours, count):
    """At most so many colours that stand for those given, by halving the widest box."""
    boxes = [sorted(set(colours))]
    while len(boxes) < count:
        widest = max(boxes, key=lambda box: len(box) > 1 and max(
            max(c[i] for c in box) - min(c[i] for c in box) for i in range(3)))
        if len(widest) < 2:
            break
        boxes.remove(widest)
        boxes.extend(half for half in cut(widest) if half)
    return [tuple(round(sum(c[i] for c in box) / len(box)) for i in range(3)) for box in boxes]


# --- ICO -----------------------------------------------------------------------------------------


def padded(data):
    return data + bytes(-len(data) % 4)


def mask(rows):
    """One bit a pixel, set where the picture is transparent; lines from the bottom up."""
    lines = []
    for row in reversed(rows):
        bits = 0
        for pixel in row:
            bits = bits << 1 | (pixel[3] < 128)
        bits <<= -len(row) % 8
        lines.append(padded(bits.to_bytes((len(row) + 7) // 8, "big")))
    return b"".join(lines)


def bitmap(rows, depth):
    """An icon's image: bitmap header, palette, pixels from the bottom up, mask."""
    palette, pixels = b"", []
    if depth == 32:
        for row in reversed(rows):
            pixels.append(b"".join(bytes((b, g, r, a)) for r, g, b, a in row))
    else:
        black = (0, 0, 0)  # what a mask hides must be black
        shown = [pixel[:3] for row in rows for pixel in row if pixel[3] >= 128]
        colours = [black] + make_palette(shown, 2**depth - 1)
        palette = b"".join(bytes((b, g, r, 0)) for r, g, b in colours).ljust(4 * 2**depth, b"\0")
        for row in reversed(rows):
            numbers = [nearest(p[:3], colours) if p[3] >= 128 else 0 for p in row]
            if depth == 4:
                numbers = [high << 4 | low for high, low in zip(numbers[::2], numbers[1::2])]
            pixels.append(padded(bytes(numbers)))
    data = b"".join(pixels) + mask(rows)
    size = len(rows)
    return struct.pack("<IiiHHIIiiII", 40, size, 2 * size, 1, depth, 0, len(data), 0, 0, 0, 0) \
        + palette + data


def write_icon(name, images):
    """`images` are pairs of pixel size and bits a pixel."""
    bodies = [bitmap(icon_pixels(size), depth) for size, depth in images]
    place = 6 + 16 * len(images)
    head = struct.pack("<HHH", 0, 1, len(images))
    for (size, depth), body in zip(images, bodies):
        colours = 2**depth if depth < 8 else 0
        head += struct.pack("<BBBBHHII", size, size, colours, 0, 1, depth, len(body), place)
        place += len(body)
    (HERE / name).write_bytes(head + b"".join(bodies))


def write_cursor(name, rows, hot_spot):
    body, size = bitmap(rows, 32), len(rows)
    (HERE / name).write_bytes(
        struct.pack("<HHHBBBBHHII", 0, 2, 1, size, size, 0, 0, *hot_spot, len(body), 22) + body)


# --- PNG -----------------------------------------------------------------------------------------


def write_png(name, rows):
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    no_filter = b"\0"  # at the head of each line
    lines = b"".join(no_filter + b"".join(map(bytes, row)) for row in rows)
    colour_and_alpha = 6
    head = struct.pack(">IIBBBBB", len(rows[0]), len(rows), 8, colour_and_alpha, 0, 0, 0)
    (HERE / name).write_bytes(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", head)
                              + chunk(b"IDAT", zlib.compress(lines, 9)) + chunk(b"IEND", b""))


# --- GIF -----------------------------------------------------------------------------------------


def lzw(numbers, bits):
    """GIF's compression: codes that grow from one bit more than a pixel's to twelve."""
    clear, end = 1 << bits, (1 << bits) + 1
    out, held, held_bits = bytearray(), 0, 0
    table, width = {}, bits + 1

    def emit(code):
        nonlocal held, held_bits
        held |= code << held_bits
        held_bits += width
        while held_bits >= 8:
            out.append(held & 255)
            held >>= 8
            held_bits -= 8

    def restart():
        nonlocal table, width
        emit(clear)
        table, width = {(number,): number for number in range(clear)}, bits + 1

    restart()
    run = ()
    for number in numbers:
        longer = run + (number,)
        if longer in table:
            run = longer
            continue
        emit(table[run])
        code = len(table) + 2
        if code == 4096:
            restart()
        else:
            table[longer] = code
            if code == 1 << width:
                width += 1
        run = (number,)
    emit(table[run])
    emit(end)
    if held_bits:
        out.append(held & 255)
    return bytes(out)


def write_gif(name, rows):
    width, height, bits = len(rows[0]), len(rows), 7
    flat = [pixel[:3] for row in rows for pixel in row]
    white = (255, 255, 255)  # has a place of its own, so that it meets the window without an edge
    colours = [white] + make_palette([c for c in flat if c != white], 2**bits - 1)
    numbers_of = {colour: nearest(colour, colours) for colour in set(flat)}
    data = lzw([numbers_of[colour] for colour in flat], bits)
    palette = b"".join(bytes(c) for c in colours).ljust(3 * 2**bits, b"\0")
    blocks = b"".join(bytes([len(data[i:i + 255])]) + data[i:i + 255]
                      for i in range(0, len(data), 255))
    (HERE / name).write_bytes(
        b"GIF89a" + struct.pack("<HHBBB", width, height, 0x80 | (bits - 1) << 4 | bits - 1, 0, 0)
        + palette + b"," + struct.pack("<HHHHB", 0, 0, width, height, 0) + bytes([bits])
        + blocks + b"\0;")


def about_picture(width, height, scale):
    """The quill and its cookie by the water, on white; `scale` pixels a unit of length."""
    size = 92
    left, top = (width - size) / 2 + 4, 1
    at = painter(size)
    water = [(0.5, 82, 50, 7), (0.5, 91, 38, 4)]

    def colour(x, y):
        found = at((x - left) / size, (y - top) / size)
        if found:
            return found
        for middle, ripple_y, half, thick in water:
            u = (x - width * middle) / half
            crest = ripple_y + 1.6 * math.sin(x / 5.5 + ripple_y)
            if abs(u) < 1 and abs(y - crest) < thick / 2 * (1 - u * u):
                return SHADE
        return (255, 255, 255)

    return draw(width * scale, height * scale, lambda x, y: colour(x / scale, y / scale))


if __name__ == "__main__":
    write_icon("quillmere.ico", [(32, 8), (16, 8), (48, 32), (32, 32), (24, 32), (16, 32)])
    write_png("quillmere.png", icon_pixels(128))
    write_icon("tray.ico", [(16, 4)])
    write_icon("tray@2x.ico", [(32, 32)])
    write_gif("about.gif", about_picture(111, 98, 1))
    write_gif("about@2x.gif", about_picture(111, 98, 2))
    write_cursor("hand.cur", hand_pixels(32), FINGERTIP)
    write_cursor("hand@2x.cur", hand_pixels(64), [2 * each for each in FINGERTIP])
