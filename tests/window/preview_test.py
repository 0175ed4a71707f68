#!/usr/bin/env python3
"""What a person sees and hears of a preview and gets as a file, in the real window, with mouse and keyboard only. The
source is a spoken clip whose pictures carry their numbers, so that every picture of the screen tells what is shown.

preview_test.py PROGRAM CLIPS READER CLI make       makes the clips once (fixture of the tests below)
preview_test.py PROGRAM CLIPS READER CLI CLASS...   runs the tests of these classes
"""
import bisect
import json
import os
import shutil
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path
from statistics import median

sys.path.insert(0, str(Path(__file__).parent))
import desk  # noqa: E402
import end_to_end_test  # noqa: E402
from desk import key, type_text, until  # noqa: E402
from eyes import Eyes, SoundServer, loudness, pause_for_next, save_picture  # noqa: E402

PROGRAM, CLIPS, READER, CLI = (Path(argument).resolve() for argument in sys.argv[1:5])
SENTENCES = "The quick brown fox is here. Every word will be found again by another machine."
SOURCE_RATE = 30


def run(*command, **options):
    options = {"stderr": subprocess.PIPE, **options}
    return subprocess.run(list(map(str, command)), check=True, stdout=subprocess.PIPE, **options).stdout


def make_clips():
    CLIPS.mkdir(parents=True, exist_ok=True)
    speech, pictures, clip = (CLIPS / name for name in ("speech.wav", "pictures.mp4", "spoken.mp4"))
    run("flite", "-voice", "rms", "-t", SENTENCES, "-o", speech)
    run(READER, "pictures", 7, pictures)
    run("ffmpeg", "-nostdin", "-v", "error", "-y", "-i", pictures, "-i", speech, "-c:v", "copy", "-c:a", "aac", "-b:a",
        "128k", "-ar", 48000, "-af", "apad", "-t", 7, clip)
    run(CLI, "transcribe", clip, "-q", "-l", "en-US", "-o", CLIPS / "words.json")


class Script:
    """What must be seen and said at each moment of a reel, from the words' times alone. Seconds of the written reel."""

    def __init__(self, words):
        self.words = words
        self.starts = [0.0]
        for word in words:
            # Times are kept in 1/600 s.
            self.starts.append(self.starts[-1] + (round(word["end"] * 600) - round(word["start"] * 600)) / 600)
        self.seconds = self.starts.pop()
        sizes = [3] * (len(words) // 3)
        if len(words) % 3 == 1:
            sizes[-1:] = [2, 2]
        elif len(words) % 3 == 2:
            sizes.append(2)
        self.lines, first = [], 0
        for size in sizes:
            self.lines.append((self.starts[first], " ".join(w["text"] for w in words[first:first + size])))
            first += size

    def line_at(self, seconds):
        return self.lines[max(0, bisect.bisect_right([start for start, _ in self.lines], seconds) - 1)][1]

    def moments_of(self, number):
        """When the source's picture of this number is seen: (from, to), empty when never."""
        found = []
        for word, start in zip(self.words, self.starts):
            begin = max(word["start"], number / SOURCE_RATE)
            end = min(word["end"], (number + 1) / SOURCE_RATE)
            if begin < end + 1e-3:
                found.append((start + begin - word["start"], start + end - word["start"]))
        return found

    def allowed_lines(self, number, slack=0.2):
        """The line of a picture, and its neighbour close to the change: lines are looked for every 50 ms."""
        allowed = set()
        for begin, end in self.moments_of(number):
            allowed |= {self.line_at(t % self.seconds) for t in (begin - slack, begin, end - 1e-3, end + slack)}
            if slack and end + slack > self.seconds:
                allowed.add("")  # the end is reached, and the way back is not taken yet
        return allowed


def readings(pictures, width, height):
    """What stands in grey pictures: (number, margin, (left, top, right, bottom), strokes) of each."""
    out = run(READER, "read", width, height, input=pictures).decode()
    return [(int(n), float(margin), (float(a), float(b), float(c), float(d)), int(strokes))
            for n, margin, a, b, c, d, strokes in map(str.split, out.splitlines())]


class Seen:
    """One look at the preview."""

    def __init__(self, moment, pixels, lines):
        self.moment, self.pixels, self.lines = moment, pixels, lines
        self.number = self.margin = self.ink = self.strokes = None


class PreviewCase(end_to_end_test.Case):
    CHOSEN = (1, 2, 3, 6, 7, 9, 10)

    def setUp(self):
        super().setUp()
        self.sound = SoundServer(self.root / "sound")
        self.addCleanup(self.sound.end)
        self.eyes = Eyes()
        words = json.loads((CLIPS / "words.json").read_text(encoding="utf-8"))["words"]
        self.script = Script([words[i] for i in self.CHOSEN])

    def choose_words(self):
        """From the start of the program to seven chosen words."""
        program = self.start(self.video)
        self.choose_english()
        self.transcribe()
        program.find("push button", "None").click()
        tokens = self.tokens()
        for index in self.CHOSEN:
            tokens[index].click()
        until("seven words", lambda: program.shows("7 words · 1080 × 1920"))
        return program

    def preview(self):
        self.program.find("push button", "Preview").click()
        until("a preview", lambda: self.program.find("push button", "Export").has("enabled"))
        self.status("Ready")

    def close_preview(self):
        self.program.find("push button", "Close preview").click()
        until("the preview to go", lambda: self.program.shows("Preview will appear here"))

    def area(self):
        return self.program.find(name="Reel preview")

    def line(self, area):
        """The line that assistive technology reads out; empty for none."""
        children = [t for t in area.children() if t.node]  # one may go while they are counted
        return next((t.name for t in children if t.role == "label" and t.has("showing")), "")

    def watch(self, seconds, rate=20):
        """Looks at the preview for a while. \\return what was seen, in order."""
        area = self.area()
        self.box = box = area.box
        seen, due = [], time.monotonic()
        end = due + seconds
        while due < end:
            due = pause_for_next(due, rate)
            before = self.line(area)
            moment = time.monotonic()
            pixels = self.eyes.look(box)
            seen.append(Seen(moment, pixels, {before, self.line(area)}))
        grey = b"".join(s.pixels[1::4] for s in seen)
        for s, found in zip(seen, readings(grey, box[2], box[3])):
            s.number, s.margin, s.ink, s.strokes = found
        return seen

    def save_as(self, path, replace=False):
        self.program.find("push button", "Export").click()
        self.program.find("dialog", "Export Video")
        key("ctrl+a")
        type_text(str(path))
        key("Return")
        if replace:
            self.program.find("push button", "Yes").click()
        until("the panel to go", lambda: not self.program.all(name="Export Video", having="showing"))

    def error(self):
        """The sentence of the error card; empty when none is shown."""
        return next((t.name for t in self.program.all(having="showing") if t.role == "alert"), "")

    def assert_nothing_half_written(self, *names):
        self.assertEqual(sorted(f.name for f in self.files.iterdir()), sorted(names))
        self.assertEqual(list(self.temporary.iterdir()), [])

    def assert_plays(self, reel):
        """From its beginning to its end, without a complaint."""
        self.assertEqual(run("ffmpeg", "-nostdin", "-v", "warning", "-xerror", "-i", reel, "-f", "null", "-",
                             stderr=subprocess.STDOUT).decode(), "")

    def keep_seen(self, seen, name):
        """A picture of what the test complains about."""
        folder = Path(os.environ.get("KORVANE_TEST_PICTURES", tempfile.gettempdir()))
        path = folder / f"{self.id()}.{name}.png"
        save_picture(seen.pixels, self.box[2], self.box[3], path)
        return f" (picture: {path})"

    def assert_shows_the_reel(self, seen):
        """Each picture is one of the reel's, with the line that is said there, in step with time."""
        self.assert_pictures_of_the_reel(seen)
        exact = 0
        for s in seen:
            if not s.lines & self.script.allowed_lines(s.number):
                self.fail(f"{s.lines} over picture {s.number}, to which {self.script.allowed_lines(s.number)} belongs"
                          + self.keep_seen(s, "line"))
            exact += bool(s.lines & self.script.allowed_lines(s.number, 0.0))
        self.assertGreater(exact, 0.7 * len(seen), "lines come late")
        # A line is named a moment before it is drawn.
        inkless = [s for s in seen if "" not in s.lines and s.strokes == 0]
        if len(inkless) > 0.15 * len(seen):
            self.fail(f"no ink in {len(inkless)} of {len(seen)} pictures" + self.keep_seen(inkless[0], "ink"))
        self.assertEqual({line for s in seen for line in s.lines if line}, {text for _, text in self.script.lines})

    def assert_pictures_of_the_reel(self, seen):
        self.assertNotEqual(seen, [])
        for s in seen:
            if not self.script.moments_of(s.number) or s.margin < 0.4:
                self.fail(f"shows picture {s.number}, margin {s.margin}, which is not in the reel"
                          + self.keep_seen(s, "picture"))

    def laps(self, seen):
        """How many times it began anew; each picture must be seen when it is due."""
        laps, last, late = 0, None, []
        for s in seen:
            reel = min((m[0] for m in self.script.moments_of(s.number)),
                       key=lambda t: abs(t - (last if last is not None else t)))
            if last is not None and reel < last - 0.2:
                laps += 1
            late.append(s.moment - laps * self.script.seconds - reel)
            last = reel
        middle = median(late)
        self.assertLess(median(abs(x - middle) for x in late), 0.06, "pictures come when they are due")
        self.assertLess(max(abs(x - middle) for x in late), 0.8, f"at the worst: {[round(x - middle, 2) for x in late]}")
        return laps


class Playing(PreviewCase):
    def test_the_right_pictures_lines_and_sounds_in_a_loop_until_it_is_closed(self):
        self.sound.start()
        tape = self.root / "tape.raw"
        program = self.choose_words()
        self.sound.record(tape)
        self.preview()
        seen = self.watch(3.2 * self.script.seconds)
        self.assert_shows_the_reel(seen)
        self.assertGreaterEqual(self.laps(seen), 3)
        self.assertEqual(self.sound.streams(), 1)
        self.assertGreater(loudness(tape, self.script.seconds), 0.01)

        self.close_preview()
        self.assertEqual(program.all(name="Reel preview", having="showing"), [])
        until("the sound to go", lambda: self.sound.streams() == 0)
        self.assertEqual(loudness(tape, 0.5), 0.0)

        self.preview()
        self.assertGreater(loudness(tape, self.script.seconds), 0.01)
        self.quit()  # at once: a preview is nothing to ask about
        until("the sound to go", lambda: self.sound.streams() == 0)

    def test_space_holds_the_picture_and_lets_it_go_on(self):
        self.choose_words()
        self.preview()
        self.watch(0.5)
        key("space")
        until("the picture to stand", lambda: len({s.number for s in self.watch(0.5)}) == 1)
        held = self.watch(0.5)[-1]
        self.assertTrue(self.script.moments_of(held.number))
        key("space")
        until("the picture to move on", lambda: len({s.number for s in self.watch(0.5)}) > 3)
        self.quit()


class Compared(PreviewCase):
    """What was previewed is what is in the file."""

    def reel_pictures(self, reel):
        """The file's pictures at the preview's size, grey."""
        _, _, width, height = self.box
        grey = run("ffmpeg", "-nostdin", "-v", "error", "-i", reel, "-vf", f"scale={width}:{height}:flags=area",
                   "-pix_fmt", "gray", "-f", "rawvideo", "-")
        size = width * height
        return [grey[i:i + size] for i in range(0, len(grey), size)]

    def assert_alike(self, seen, grey, what):
        """The upper half, where no line stands, but for the round corners."""
        _, _, width, height = self.box
        places = [y * width + x for y in range(height // 40, height // 2, 7) for x in range(3, width - 3, 11)]
        mine = seen.pixels[1::4]
        apart = sorted(abs(mine[i] - grey[i]) for i in places)
        # Edges of the code's cells are scaled twice on one side and once on the other.
        if sum(apart) / len(apart) > 4 or apart[len(apart) * 9 // 10] > 8:
            self.fail(f"{what}: {sum(apart) / len(apart):.1f} apart in the mean" + self.keep_seen(seen, "alike"))

    def test_every_picture_line_and_sound(self):
        self.sound.start()
        tape = self.root / "tape.raw"
        program = self.choose_words()
        # A line that is on its way in has another size on each side.
        program.find("check box", "Spring bounce on entry").click()
        self.sound.record(tape)
        self.preview()
        seen = self.watch(2.2 * self.script.seconds)
        self.sound.stop_recording()
        reel = self.files / "reel.mp4"
        self.save_as(reel)
        self.status("Export complete", seconds=60)

        pictures = self.reel_pictures(reel)
        box = self.box
        found = readings(b"".join(pictures), box[2], box[3])
        numbers = [number for number, *_ in found]
        self.assertAlmostEqual(len(numbers), self.script.seconds * 30, delta=1)
        for k, number in enumerate(numbers):
            self.assertTrue(any(a - 0.002 <= k / 30 < b + 0.002 for a, b in self.script.moments_of(number)),
                            f"picture {k} of the file is the source's {number}")

        for s in seen:
            if s.number not in numbers:
                self.fail(f"{s.number} is in the preview and not in the file" + self.keep_seen(s, "extra"))
            k = numbers.index(s.number)
            self.assert_alike(s, pictures[k], f"picture {s.number}")
            near = [found[j][2] for j in range(max(0, k - 6), min(len(found), k + 7))] + [found[k - 7][2]]
            if not any(max(abs(a - b) for a, b in zip(s.ink, ink)) < 2.5 for ink in near):
                self.fail(f"the line of picture {s.number} is at {s.ink}, in the file at {found[k][2]}"
                          + self.keep_seen(s, "line"))
        exact = sum(max(abs(a - b) for a, b in zip(s.ink, found[numbers.index(s.number)][2])) < 2.5 for s in seen)
        self.assertGreater(exact, 0.7 * len(seen), "lines change at other times than in the file")
        self.assertGreater(len({s.number for s in seen}), 0.5 * len(set(numbers)), "too little was seen to compare")
        self.assert_sounds_alike(tape, reel)
        self.quit()

    def assert_sounds_alike(self, tape, reel):
        """Each stretch of the file's sound is heard in each lap, at its own place in the lap."""
        heard = {}
        for line in run(READER, "hear", tape, reel).decode().splitlines():
            in_reel, on_tape, _ = map(float, line.split())
            heard.setdefault(in_reel, []).append(on_tape - in_reel)
        self.assertGreater(len(heard), 0.6 * self.script.seconds * 5, "stretches with sound")
        for in_reel, starts in heard.items():
            self.assertGreaterEqual(len(starts), 2, f"the sound at {in_reel} s")
        first = median(starts[0] for starts in heard.values())
        laps = {}
        for starts in heard.values():
            for start in starts:
                lap = round((start - first) / self.script.seconds)
                laps.setdefault(lap, []).append(start - first - lap * self.script.seconds)
        for lap, late in laps.items():
            # A machine that is too busy leaves a hole now and then; what stands between two holes stands together.
            together = [x for x in late if abs(x - median(late)) < 0.012]
            self.assertGreater(len(together), 0.6 * len(late), f"lap {lap} is out of step with the file: {late}")
            self.assertLess(abs(median(late)), 0.3, f"lap {lap} comes late")


class Exporting(PreviewCase):
    def test_a_stopped_export_leaves_nothing_and_the_next_one_is_whole(self):
        program = self.choose_words()
        program.find("push button", "All").click()
        self.preview()
        reel = self.files / "reel.mp4"
        self.save_as(reel)
        program.find("push button", "Stop").click()
        self.status("Export cancelled")
        self.assertTrue(program.shows("0%"))
        self.assert_nothing_half_written("talk.mp4")
        self.assertFalse(program.find("push button", "Export").has("enabled"))
        until("the error to go", lambda: self.error() == "")

        self.preview()
        self.save_as(reel)
        self.status("Export complete", seconds=60)
        self.assert_plays(reel)
        self.preview()
        self.assertTrue({s.number for s in self.watch(0.5)} - {-1})
        self.save_as(reel, replace=True)
        self.status("Export complete", seconds=60)
        self.assert_plays(reel)
        self.assert_nothing_half_written("reel.mp4", "talk.mp4")
        self.quit()


class Closing(PreviewCase):
    def exporting(self):
        program = self.choose_words()
        program.find("push button", "All").click()
        self.preview()
        self.save_as(self.files / "reel.mp4")
        program.find("push button", "Stop")
        return program

    def test_asks_once_and_who_stops_leaves_nothing(self):
        program = self.exporting()
        program.find("push button", "Close").click()
        program.find("push button", "Keep working").click()
        self.status("Export complete", seconds=60)
        self.assert_plays(self.files / "reel.mp4")

        self.preview()
        self.save_as(self.files / "second.mp4")
        key("ctrl+q")
        program.find("push button", "Keep working")
        key("ctrl+q")
        self.assertEqual(len(program.all("push button", "Keep working", "showing")), 1)
        program.find("push button", "Stop and close").click()
        self.assertEqual(program.end(), 0)
        self.assertEqual(program.output(), "")
        self.assert_nothing_half_written("reel.mp4", "talk.mp4")

    def test_a_polite_kill_in_the_middle_of_an_export_leaves_nothing(self):
        program = self.exporting()
        program.process.terminate()
        self.assertEqual(program.end(), 0)
        self.assert_nothing_half_written("talk.mp4")


def cut_short(video):
    """In place, as a failing disk or an interrupted copy does."""
    with open(video, "r+b") as file:
        file.truncate(video.stat().st_size // 3)


def scribble(video):
    """The pictures and sounds are noise, and so is the index."""
    size = video.stat().st_size
    with open(video, "r+b") as file:
        file.seek(64)
        file.write(os.urandom(size - 64))


def remove(video):
    video.unlink()


DAMAGES = (cut_short, scribble, remove)


class BrokenCase(PreviewCase):
    def mend(self):
        self.video.unlink(missing_ok=True)
        shutil.copy(CLIPS / "spoken.mp4", self.video)

    def assert_told(self):
        """What is wrong, in words, with the file's name and nothing of the machinery."""
        message = until("a sentence about what is wrong", self.error)
        rest = message.replace(str(self.video), "X")
        self.assertRegex(rest, r"^(There is no file X\.|X [a-z].*[a-z]\.|Export failed: Asset is not readable: X)$")
        for ugly in ("/", "0x", "rror", "errno", "std::", "libav", "-1"):
            self.assertNotIn(ugly, rest)

    def each_damage(self):
        """What follows is done for each, on a whole source that it may break."""
        for damage in DAMAGES:
            self.mend()
            print(damage.__name__, file=sys.stderr)
            yield damage
        self.mend()

    def assert_works(self):
        self.mend()
        self.preview()
        until("the error to go", lambda: self.error() == "")
        self.assert_pictures_of_the_reel(self.watch(0.4))


class BrokenBeforeWords(BrokenCase):
    """A source that is broken when a step begins: one sentence, and after it is mended the step works."""

    def test_before_the_transcription(self):
        for damage in self.each_damage():
            program = self.start(self.video)
            self.choose_english()
            damage(self.video)
            program.find("push button", "Transcribe").click()
            self.status("Failed")
            self.assert_told()
            self.assertEqual(list(self.temporary.iterdir()), [])
            self.mend()
            self.transcribe()
            until("the error to go", lambda: self.error() == "")
            self.quit()


class BrokenBeforeReel(BrokenCase):
    def test_before_the_preview_and_before_the_export(self):
        program = self.choose_words()
        for damage in self.each_damage():
            damage(self.video)
            program.find("push button", "Preview").click()
            self.status("Preview failed")
            self.assert_told()
            self.assertTrue(program.shows("Preview will appear here"))
            self.assertFalse(program.find("push button", "Export").has("enabled"))
            self.assert_works()

            damage(self.video)
            self.save_as(self.files / "reel.mp4")
            self.status("Export failed")
            self.assert_told()
            self.assertTrue(program.shows("0%"))
            self.mend()
            self.assert_nothing_half_written("talk.mp4")
        self.assert_works()
        self.save_as(self.files / "reel.mp4")
        self.status("Export complete")
        self.assert_plays(self.files / "reel.mp4")
        self.quit()


class BrokenBuilding(BrokenCase):
    """A source that breaks while it is used: what runs goes on or ends with one sentence, and the program works."""

    def test_while_a_preview_is_built(self):
        program = self.choose_words()
        for damage in self.each_damage():
            program.find("push button", "Preview").click()
            damage(self.video)
            if self.status("Ready", "Preview failed") == "Preview failed":
                self.assert_told()
                self.assertTrue(program.shows("Preview will appear here"))
            self.assert_works()
        self.quit()


class BrokenExporting(BrokenCase):
    def test_while_it_is_exported(self):
        program = self.choose_words()
        program.find("push button", "All").click()
        for damage in self.each_damage():
            self.preview()
            reel = self.files / "reel.mp4"
            self.save_as(reel)
            damage(self.video)
            if self.status("Export complete", "Export failed") == "Export failed":
                self.assertNotEqual(damage, remove, "what is open can be read to its end")
                self.assert_told()
                self.mend()
                self.assert_nothing_half_written("talk.mp4")
            else:
                self.mend()
                self.assert_plays(reel)
                self.assert_nothing_half_written("reel.mp4", "talk.mp4")
                reel.unlink()
        self.quit()


class BrokenPlaying(BrokenCase):
    def test_a_deleted_source_plays_on_and_a_damaged_one_ends_quietly(self):
        self.sound.start()
        program = self.choose_words()
        self.preview()
        remove(self.video)
        seen = self.watch(2.2 * self.script.seconds)
        self.assert_shows_the_reel(seen)
        self.assertGreaterEqual(self.laps(seen), 2)
        self.close_preview()
        for damage in (cut_short, scribble):
            self.mend()
            self.preview()
            damage(self.video)
            # What was read already is still played; then the last good picture stands.
            self.watch(1.2 * self.script.seconds)
            self.assertTrue(program.find("push button", "Close preview").has("enabled"))
            self.close_preview()
            until("the sound to go", lambda: self.sound.streams() == 0)
        self.assert_works()
        self.quit()


class Sounds(PreviewCase):
    def watch_the_pace(self, laps=1.5):
        seen = self.watch(laps * self.script.seconds)
        self.assert_shows_the_reel(seen)
        self.assertGreaterEqual(self.laps(seen), int(laps))

    def test_without_a_sound_device_everything_else_is_the_same(self):
        self.choose_words()
        self.preview()
        self.watch_the_pace(2.5)
        self.close_preview()
        self.preview()
        self.save_as(self.files / "reel.mp4")
        self.status("Export complete", seconds=60)
        self.assert_plays(self.files / "reel.mp4")
        self.quit()

    def test_a_server_that_dies_and_one_that_comes_back(self):
        self.sound.start()
        tape = self.root / "tape.raw"
        self.choose_words()
        self.preview()
        until("sound", lambda: self.sound.streams() == 1)
        self.sound.kill()
        self.sound.start()
        self.sound.record(tape)
        self.watch(1)  # it may stumble, but not stop
        self.watch_the_pace()
        until("the sound to be back", lambda: self.sound.streams() == 1)
        self.watch_the_pace()
        self.assertGreater(loudness(tape, self.script.seconds), 0.01)
        self.sound.stop_recording()
        self.sound.kill()
        self.watch(1)
        self.watch_the_pace(2.5)
        self.close_preview()


class Again(PreviewCase):
    """Preview after preview leaves nothing behind."""

    def held(self):
        process = Path(f"/proc/{self.program.process.pid}")
        status = dict(line.split(":", 1) for line in (process / "status").read_text().splitlines())
        return {"memory": int(status["VmRSS"].split()[0]) / 1024, "threads": int(status["Threads"]),
                "files": len(list((process / "fd").iterdir()))}

    def test_thirty_previews_leave_memory_threads_and_files_as_they_were(self):
        self.sound.start()
        self.choose_words()
        for _ in range(10):
            self.preview()
            self.close_preview()
        until("the sound to go", lambda: self.sound.streams() == 0)
        before = self.held()
        for i in range(24):
            self.preview()  # also over one that plays
            if i % 3 == 0:
                self.close_preview()
        self.assertLessEqual(self.sound.streams(), 1)
        self.close_preview()
        until("the sound to go", lambda: self.sound.streams() == 0)
        after = until("threads and files to go", lambda: next((h for h in [self.held()] if (
            h["threads"] <= before["threads"] and h["files"] <= before["files"])), None))
        print(f"before {before}, after {after}", file=sys.stderr)
        self.assertLess(after["memory"] - before["memory"], 25)
        self.quit()


if __name__ == "__main__":
    if sys.argv[5:] == ["make"]:
        make_clips()
    else:
        desk.sit_down()
        unittest.main(argv=[sys.argv[0], *sys.argv[5:]], verbosity=2)
