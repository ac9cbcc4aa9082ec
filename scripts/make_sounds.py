#!/usr/bin/env python3
"""Makes assets/sounds/Pinball.wav and slingshot.wav. Every sample is computed here; nothing is recorded.

Usage: make_sounds.py [FOLDER]      (default: assets/sounds beside this script's folder)
The noise has a fixed seed: two runs give the same bytes.
"""
import math
import pathlib
import random
import struct
import sys
import wave

RATE = 22050  # samples per second, one channel, 16 bits


def silence(seconds):
    return [0.0] * int(RATE * seconds)


def add(target, start_seconds, sound):
    """Mixes `sound` into `target`, which grows when it has to."""
    start = int(RATE * start_seconds)
    target.extend([0.0] * max(0, start + len(sound) - len(target)))
    for i, sample in enumerate(sound):
        target[start + i] += sample


def bell(frequency, seconds, level):
    """A struck chime: partials of a free metal bar, the higher ones dying sooner."""
    partials = ((1.0, 1.0, 1.0), (2.76, 0.45, 2.2), (5.40, 0.22, 4.0))
    sound = []
    for i in range(int(RATE * seconds)):
        t = i / RATE
        sample = sum(
            weight * math.exp(-5.0 * decay * t / seconds) * math.sin(2 * math.pi * frequency * ratio * t)
            for ratio, weight, decay in partials)
        sound.append(level * min(1.0, t / 0.002) * sample)
    return sound


def thump(start_frequency, end_frequency, seconds, level):
    """A coil hitting its stop: a tone that falls fast."""
    sound, phase = [], 0.0
    for i in range(int(RATE * seconds)):
        t = i / (RATE * seconds)
        phase += 2 * math.pi * (end_frequency + (start_frequency - end_frequency) * math.exp(-6 * t)) / RATE
        sound.append(level * math.exp(-5 * t) * math.sin(phase))
    return sound


def click(noise, seconds, level):
    """A short burst of noise, brighter than it is long."""
    count = int(RATE * seconds)
    values = [noise.uniform(-1, 1) for _ in range(count + 1)]
    return [level * math.exp(-6 * i / count) * (values[i + 1] - 0.6 * values[i]) for i in range(count)]


def roll(noise, seconds, level):
    """A steel ball rolling up the lane: low noise that swells and fades."""
    count, sound, low = int(RATE * seconds), [], 0.0
    for i in range(count):
        low += 0.08 * (noise.uniform(-1, 1) - low)
        sound.append(level * math.sin(math.pi * i / count) ** 2 * low)
    return sound


def pinball():
    noise = random.Random(1931)
    sound = silence(0.01)
    add(sound, 0.00, thump(150, 55, 0.16, 0.75))
    add(sound, 0.00, click(noise, 0.03, 0.35))
    add(sound, 0.05, roll(noise, 0.60, 1.4))
    for start, frequency in ((0.42, 659.26), (0.54, 830.61), (0.66, 987.77), (0.80, 1318.51)):
        add(sound, start, bell(frequency, 0.55, 0.34))
    add(sound, 0.98, bell(1975.53, 0.60, 0.18))
    return sound


def slingshot():
    noise = random.Random(7)
    sound = silence(0.01)
    add(sound, 0.00, click(noise, 0.02, 0.55))
    add(sound, 0.00, thump(240, 80, 0.12, 0.80))
    add(sound, 0.02, bell(1174.66, 0.16, 0.16))
    return sound


def write(path, samples):
    loudest = max(abs(sample) for sample in samples)
    scale = 0.89 * 32767 / loudest
    frames = b"".join(struct.pack("<h", round(sample * scale)) for sample in samples)
    with wave.open(str(path), "wb") as file:
        file.setnchannels(1)
        file.setsampwidth(2)
        file.setframerate(RATE)
        file.writeframes(frames)


def main():
    default = pathlib.Path(__file__).resolve().parent.parent / "assets" / "sounds"
    folder = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else default
    folder.mkdir(parents=True, exist_ok=True)
    write(folder / "Pinball.wav", pinball())
    write(folder / "slingshot.wav", slingshot())


if __name__ == "__main__":
    main()
