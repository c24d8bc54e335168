#!/usr/bin/env python3
"""Makes the sounds that end a copy: Ok.wav and Erreur.wav, 16 bits, mono, the same bytes each time.

Usage: make-sounds.py DIRECTORY
"""

import math
import os
import struct
import sys
import wave

RATE = 22050
# Each sound is a list of notes: when it begins (s), its pitch (Hz), how long it rings (s).
SOUNDS = {
    "Ok": [(0.00, 523.25, 0.5), (0.14, 659.25, 0.5), (0.28, 783.99, 0.8)],
    "Erreur": [(0.00, 392.00, 0.4), (0.22, 311.13, 0.7)],
}
PARTIALS = ((1, 1.0), (2, 0.35), (3, 0.12))  # of a soft bell


def note(time, pitch, length):
    """Loudness of a note that long after its beginning; 0 outside it."""
    if not 0 <= time < length:
        return 0.0
    attack = min(1.0, time / 0.01)
    fade = math.exp(-5 * time / length) * min(1.0, (length - time) / 0.05)
    return attack * fade * sum(
        weight * math.sin(2 * math.pi * pitch * factor * time) for factor, weight in PARTIALS)


def samples(notes):
    length = max(begin + ring for begin, _, ring in notes)
    for index in range(int(length * RATE)):
        time = index / RATE
        loudness = sum(note(time - begin, pitch, ring) for begin, pitch, ring in notes)
        yield max(-32767, min(32767, round(loudness * 11000)))


def main():
    for name, notes in SOUNDS.items():
        with wave.open(os.path.join(sys.argv[1], name + ".wav"), "wb") as file:
            file.setnchannels(1)
            file.setsampwidth(2)
            file.setframerate(RATE)
            file.writeframes(b"".join(struct.pack("<h", sample) for sample in samples(notes)))


if __name__ == "__main__":
    main()
