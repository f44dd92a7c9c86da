#!/usr/bin/env python3
"""Makes the program's two sounds: 1.wav rises, for a file that has come; 2.wav falls, for one that
has gone. The same run gives the same bytes; only the standard library is used.
"""

import math
import struct
import wave
from pathlib import Path

HERE = Path(__file__).resolve().parent
RATE = 44100
LENGTH = 0.5
LOUDNESS = 0.35

# Frequency in hertz and the moment, in seconds, at which each note is struck. The two sounds share
# no note, and no note of one is an overtone of the other's.
SOUNDS = {"1.wav": [(880.0, 0.0), (1318.5, 0.09)], "2.wav": [(587.3, 0.0), (392.0, 0.11)]}


def note(frequency, time):
    """A struck bar: a quick onset, a tone that dies away, a faint overtone that goes first."""
    if time < 0:
        return 0.0
    onset = min(1.0, time / 0.004)
    tone = math.sin(2 * math.pi * frequency * time) * math.exp(-time / 0.11)
    bright = math.sin(2 * math.pi * 3.93 * frequency * time) * math.exp(-time / 0.02)
    return onset * (tone + 0.18 * bright)


def samples(notes):
    for number in range(int(RATE * LENGTH)):
        time = number / RATE
        fade = min(1.0, (LENGTH - time) / 0.05)
        value = LOUDNESS * fade * sum(note(frequency, time - struck) for frequency, struck in notes)
        yield round(32767 * max(-1.0, min(1.0, value)))


if __name__ == "__main__":
    for name, notes in SOUNDS.items():
        with wave.open(str(HERE / "sound" / name), "wb") as file:
            file.setnchannels(1)
            file.setsampwidth(2)
            file.setframerate(RATE)
            file.writeframes(b"".join(struct.pack("<h", value) for value in samples(notes)))
