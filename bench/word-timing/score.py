"""Compares heard words with said ones. All times in samples, what is reported in milliseconds."""
import array
import json
import re
import wave
from pathlib import Path

import recordings

RATE = recordings.RATE
HEARD_MS = 20  # the fade at each cut of a reel; what is shorter lies under it


def normal(text):
    return re.sub(r"[^\w']", "", text.lower())


def pairs(said, heard):
    """Edit-distance alignment of two lists of texts: [(index said or None, index heard or None)]."""
    rows = [[(j, 0, -1) for j in range(len(heard) + 1)]]
    for i, word in enumerate(said):
        row = [(i + 1, -1, 0)]
        for j, other in enumerate(heard):
            row.append(min((rows[i][j][0] + (word != other), -1, -1), (rows[i][j + 1][0] + 1, -1, 0),
                           (row[j][0] + 1, 0, -1)))
        rows.append(row)
    i, j, found = len(said), len(heard), []
    while i or j:
        _, up, left = rows[i][j]
        found.append((i - 1 if up else None, j - 1 if left else None))
        i, j = i + up, j + left
    return rows[-1][-1][0], found[::-1]


class HeardSound:
    """Where the clean recording of a text is heard, by word."""

    def __init__(self, samples, words):
        step = recordings.STEP
        power = recordings.levels(samples, 0, len(samples))
        smooth = [sum(power[max(0, i - 1):i + 2]) / 3 for i in range(len(power))]
        self.steps = []
        for word in words:
            span = range(word["begin"] // step, -(-word["end"] // step))
            least = max(smooth[i] for i in span) * 10 ** (-recordings.HEARD_DB / 10)
            self.steps.append([i for i in span if smooth[i] > least])

    def inside(self, word, begin, end):
        """Milliseconds of the word's heard part that lie in [begin, end)."""
        step = recordings.STEP
        return sum(begin <= i * step + step / 2 < end for i in self.steps[word]) * 1000 * step // RATE

    def outside(self, word, begin, end):
        return len(self.steps[word]) * 1000 * recordings.STEP // RATE - self.inside(word, begin, end)


def cut(sound, words, paired, heard, removed, first, last):
    """What a reel without the heard words first...last sounds like: (ms that stay, ms bitten off others)."""
    begin = heard[first - 1][2] if first else 0
    end = heard[last + 1][1] if last + 1 < len(heard) else float("inf")
    stays = sum(sound.outside(i, begin, end) for i in removed)
    near = [i for i, word in enumerate(words) if i not in removed and i in paired
            and word["end"] > begin and word["begin"] < end]
    return stays, sum(sound.inside(i, begin, end) for i in near)


def measure(truth, heard, sound):
    """One recording. heard: [(text, begin, end)] in samples."""
    words = truth["words"]
    errors, aligned = pairs([normal(w["text"]) for w in words], [normal(h[0]) for h in heard])
    paired = {i: j for i, j in aligned if i is not None and j is not None}
    out = {"words": len(words), "word errors": errors, "inside": [], "phrase": [], "word cuts": [], "phrase cuts": [],
           "signed": []}
    for i, j in paired.items():
        word = words[i]
        if normal(word["text"]) != normal(heard[j][0]):
            continue
        starts = i == 0 or words[i - 1]["phrase"] != word["phrase"]
        ends = i + 1 == len(words) or words[i + 1]["phrase"] != word["phrase"]
        for at_phrase, side, index in ((starts, "begin", 1), (ends, "end", 2)):
            error = (heard[j][index] - word[side]) * 1000 / RATE
            out["phrase" if at_phrase else "inside"].append(abs(error))
            out["signed"].append((side, at_phrase, error))
        out["word cuts"].append(cut(sound, words, paired, heard, {i}, j, j))
    for number in {w["phrase"] for w in words}:
        members = [i for i, w in enumerate(words) if w["phrase"] == number]
        span = [j for j, h in enumerate(heard)
                if words[members[0]]["begin"] <= (h[1] + h[2]) / 2 < words[members[-1]]["end"]]
        if span:
            out["phrase cuts"].append(cut(sound, words, paired, heard, set(members), span[0], span[-1]))
    return out


def merged(measured):
    total = {}
    for one in measured:
        for key, value in one.items():
            total[key] = total[key] + value if key in total else value
    return total


def percentile(values, share):
    ordered = sorted(values)
    return ordered[min(len(ordered) - 1, int(share * len(ordered)))] if ordered else None


def summary(m):
    def errors(values):
        within = lambda ms: sum(v <= ms for v in values) / max(1, len(values))
        return {"count": len(values), "median": percentile(values, 0.5), "p90": percentile(values, 0.9),
                "p95": percentile(values, 0.95), "within 20 ms": within(20), "within 50 ms": within(50)}

    def cuts(values):
        stays, bitten = [v[0] for v in values], [v[1] for v in values]
        return {"count": len(values), "clean": sum(max(v) <= HEARD_MS for v in values) / max(1, len(values)),
                "stays p90": percentile(stays, 0.9), "bitten p90": percentile(bitten, 0.9)}

    return {"words": m["words"], "word error rate": m["word errors"] / max(1, m["words"]), "inside": errors(m["inside"]),
            "phrase edges": errors(m["phrase"]), "one word removed": cuts(m["word cuts"]),
            "a phrase removed": cuts(m["phrase cuts"])}


def load_sound(folder, name):
    with wave.open(str(Path(folder) / f"{name}.wav")) as file:
        return array.array("h", file.readframes(file.getnframes()))


def load_truth(folder, name):
    return json.loads((Path(folder) / f"{name}.json").read_text())


def table(rows):
    """rows: [(name, summary)]"""
    lines = [f"{'':22} {'WER':>6} | {'inside: med':>11} {'p90':>5} {'p95':>5} {'<20':>5} {'<50':>5} | "
             f"{'edges: med':>10} {'p90':>5} {'p95':>5} {'<20':>5} {'<50':>5} | {'clean word':>10} {'phrase':>7}"]
    for name, s in rows:
        a, b = s["inside"], s["phrase edges"]
        number = lambda v: "-" if v is None else f"{v:.1f}"
        lines.append(
            f"{name:22} {s['word error rate']:6.1%} | {number(a['median']):>11} {number(a['p90']):>5} "
            f"{number(a['p95']):>5} {a['within 20 ms']:5.0%} {a['within 50 ms']:5.0%} | {number(b['median']):>10} "
            f"{number(b['p90']):>5} {number(b['p95']):>5} {b['within 20 ms']:5.0%} {b['within 50 ms']:5.0%} | "
            f"{s['one word removed']['clean']:10.0%} {s['a phrase removed']['clean']:7.0%}")
    return "\n".join(lines)
