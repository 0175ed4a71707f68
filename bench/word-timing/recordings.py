"""Recordings out of synthetic speech, and what is true about them.

A recording is a WAV file of one voice and beside it the truth as JSON: every word with
  begin, end          samples where the synthesiser put its sounds; at a pause, where it is heard
  phrase              number of the phrase it belongs to: words between two pauses
and every phrase with the pause that follows it.
"""
import array
import json
import math
import random
import wave
from pathlib import Path

import synthesis

RATE = synthesis.RATE
STEP = RATE // 500          # 2 ms
HEARD_DB = 36               # what is more below a word's loudest moment than this is not heard as part of it:
                            # there the sound falls steeply; the breath that follows is 45 to 50 dB below
PAUSE = RATE * 8 // 100     # gaps shorter than this are part of connected speech
SPEECH_RMS = 2000           # of the loud part, about -24 dB
PAUSES_MS = (130, 250, 400, 700, 1100)
FOLDER = Path(__file__).parent


def sentences(part):
    lines, inside = [], False
    for line in (FOLDER / "sentences.txt").read_text().splitlines():
        if line.startswith("["):
            inside = line == f"[{part}]"
        elif inside and line and not line.startswith("#"):
            lines.append(line)
    return lines


def power(samples, begin, end):
    part = samples[begin:end]
    return sum(x * x for x in part) / max(1, len(part))


def levels(samples, begin, end, step=STEP):
    """Mean power of each step of [begin, end)."""
    return [power(samples, at, min(at + step, end)) for at in range(begin, end, step)]


def heard_part(samples, begin, end):
    """The part of [begin, end) between the first and the last moment that is heard."""
    single = levels(samples, begin, end)
    steps = [sum(single[max(0, i - 1):i + 2]) / len(single[max(0, i - 1):i + 2]) for i in range(len(single))]
    loud = [i for i, p in enumerate(steps) if p > max(steps) * 10 ** (-HEARD_DB / 10)]
    return begin + loud[0] * STEP, min(end, begin + (loud[-1] + 1) * STEP)


def speech(speak, texts):
    """One recording without background: (samples, words). Everything in it is determined by its arguments."""
    samples, words, phrase = array.array("h", bytes(2 * RATE // 2)), [], 0
    for number, text in enumerate(texts):
        spoken, told = speak(text)
        margin = RATE * 6 // 100
        begin, end = max(0, told[0][1] - margin), min(len(spoken), told[-1][2] + margin)
        offset = len(samples) - begin
        samples.extend(spoken[begin:end])
        for i, (name, a, b) in enumerate(told):
            before = a - told[i - 1][2] if i else PAUSE
            after = told[i + 1][1] - b if i + 1 < len(told) else PAUSE
            phrase += before >= PAUSE
            # The synthesiser's sounds end in a fade and begin with a closure that nobody hears.
            heard = heard_part(spoken, max(0, a - (margin * 2 // 3 if before >= PAUSE else 0)),
                               min(len(spoken), b + (margin * 2 // 3 if after >= PAUSE else 0)))
            words.append({"text": name, "begin": offset + (heard[0] if before >= PAUSE else a),
                          "end": offset + (heard[1] if after >= PAUSE else b), "phrase": phrase,
                          "told": [offset + a, offset + b]})
        pause = PAUSES_MS[number % len(PAUSES_MS)] * RATE // 1000 - 2 * margin
        samples.extend([0] * max(0, pause))
    samples.extend([0] * (RATE // 2))
    loud = sorted(levels(samples, 0, len(samples), RATE // 50))[-len(samples) // (2 * RATE // 50):]
    gain = SPEECH_RMS / math.sqrt(sum(loud) / len(loud))
    scaled = array.array("h", (max(-32767, min(32767, round(gain * x))) for x in samples))
    return scaled, words


def mixed(samples, background, decibels):
    """With a background that many decibels below the speech."""
    rms = math.sqrt(power(background, 0, len(background)))
    gain = SPEECH_RMS / rms * 10 ** (-decibels / 20)
    count = len(background)
    return array.array("h", (max(-32767, min(32767, round(x + gain * background[i % count])))
                             for i, x in enumerate(samples)))


def noise(seconds=20, seed=7):
    """Like a room: falls by about 3 dB for each octave."""
    draw = random.Random(seed)
    slow = middle = fast = 0.0
    out = array.array("f")
    for _ in range(seconds * RATE):
        white = draw.uniform(-1, 1)
        slow = 0.997 * slow + 0.03 * white
        middle = 0.963 * middle + 0.15 * white
        fast = 0.57 * fast + 0.5 * white
        out.append(slow * 3 + middle + fast)
    return out


def music(seed=3):
    """Four chords of plucked strings over a bass and a beat, 16 s, without a rest."""
    draw = random.Random(seed)
    out = array.array("f", bytes(4 * 16 * RATE))
    chords = [(220.0, 261.6, 329.6), (174.6, 220.0, 261.6), (196.0, 246.9, 293.7), (164.8, 207.7, 246.9)]

    def pluck(at, pitch, loud, decay):
        for harmonic in range(1, 7):
            turn = 2 * math.pi * pitch * harmonic / RATE
            strength = loud / harmonic
            for i in range(int(decay * RATE * 2)):
                place = (at + i) % len(out)
                out[place] += strength * math.sin(turn * i) * math.exp(-i * harmonic / (decay * RATE))

    for bar in range(8):
        chord = chords[bar % 4]
        pluck(bar * 2 * RATE, chord[0] / 2, 1.0, 0.9)
        for beat in range(8):
            at = bar * 2 * RATE + beat * RATE // 4
            pluck(at, chord[draw.randrange(3)] * draw.choice((1, 1, 2)), 0.6, 0.35)
            for i in range(RATE // 25):
                out[at + i] += 0.25 * draw.uniform(-1, 1) * math.exp(-i / 160)
    return out


CONDITIONS = {
    "clean": lambda samples: mixed(samples, noise(5), 60),
    "noise 20 dB": lambda samples: mixed(samples, noise(), 20),
    "music 15 dB": lambda samples: mixed(samples, music(), 15),
}


def write(folder, name, samples, truth):
    path = Path(folder) / f"{name}.wav"
    with wave.open(str(path), "wb") as file:
        file.setnchannels(1)
        file.setsampwidth(2)
        file.setframerate(RATE)
        file.writeframes(samples.tobytes())
    (Path(folder) / f"{name}.json").write_text(json.dumps(truth))
    return path


def make(folder, part, voices, conditions=CONDITIONS):
    """Writes what isn't there yet: one recording for each voice and condition. Returns their names."""
    Path(folder).mkdir(parents=True, exist_ok=True)
    names = []
    for voice in voices:
        clean = None
        for condition in conditions:
            name = f"{part}-{voice}-{condition.replace(' ', '')}"
            names.append(name)
            if (Path(folder) / f"{name}.json").exists():
                continue
            clean = clean or speech(lambda text: synthesis.flite(voice, text), sentences(part))
            samples, words = clean
            truth = {"voice": voice, "condition": condition, "words": words, "clean": f"{part}-{voice}-speech"}
            write(folder, name, CONDITIONS[condition](samples), truth)
            write(folder, truth["clean"], samples, {"voice": voice, "words": words})
    return names
