#!/usr/bin/env python3
"""korvane-cli as a person meets it: exit codes, sentences, and what is left behind.

end_to_end_test.py CLI CLIPS make       makes the clips once (fixture of the tests below)
end_to_end_test.py CLI CLIPS CLASS...   runs the tests of these classes
"""
import contextlib
import fcntl
import json
import os
import pty
import re
import resource
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import termios
import threading
import time
import unittest
from pathlib import Path

CLI, CLIPS = Path(sys.argv[1]).resolve(), Path(sys.argv[2])
SENTENCES = "The quick brown fox is here. Every word will be found again by another machine. Thank you for listening."


def make_clips():
    """A spoken clip, one that says nothing, one without sound, one without picture."""
    def ffmpeg(*arguments):
        subprocess.run(["ffmpeg", "-nostdin", "-v", "error", "-y", *map(str, arguments)], check=True)

    CLIPS.mkdir(parents=True, exist_ok=True)
    speech = CLIPS / "speech.wav"
    subprocess.run(["flite", "-voice", "rms", "-t", SENTENCES, "-o", speech], check=True)
    picture = ["-f", "lavfi", "-i", "testsrc2=s=640x360:r=30"]
    video = ["-c:v", "libx264", "-preset", "veryfast", "-pix_fmt", "yuv420p"]
    ffmpeg(*picture, "-i", speech, *video, "-c:a", "aac", "-ar", 48000, "-shortest", CLIPS / "spoken.mp4")
    ffmpeg(*picture, "-f", "lavfi", "-i", "anullsrc=r=48000:cl=mono", *video, "-c:a", "aac", "-t", 2, CLIPS / "silent.mp4")
    ffmpeg(*picture, *video, "-an", "-t", 2, CLIPS / "mute.mp4")
    ffmpeg("-i", speech, "-c:a", "aac", CLIPS / "sound.m4a")


class Case(unittest.TestCase):
    """Each test has a folder of its own, and a temporary folder that must be empty when the program has ended."""

    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.root = Path(holder.name)
        self.folder, self.temporary = self.root / "files", self.root / "tmp"
        for folder in (self.folder, self.temporary, self.root / "config"):
            folder.mkdir()
        self.environment = {
            "PATH": os.environ["PATH"], "HOME": str(self.root), "TMPDIR": str(self.temporary),
            "XDG_CONFIG_HOME": str(self.root / "config"), "LC_ALL": "C.UTF-8",
            **{k: v for k, v in os.environ.items() if k.endswith("SAN_OPTIONS")},
        }
        self.video = self.folder / "talk.mp4"
        shutil.copy(CLIPS / "spoken.mp4", self.video)

    def start(self, *arguments, prefix=(), **options):
        options = {"stdin": subprocess.DEVNULL, "stdout": subprocess.PIPE, "stderr": subprocess.PIPE, **options}
        return subprocess.Popen([*prefix, CLI, *map(str, arguments)], cwd=self.folder, text=True,
                                env=self.environment, **options)

    def run_cli(self, *arguments, code=0, **options):
        given = options.pop("input", None)
        if given is not None:
            options["stdin"] = subprocess.PIPE
        process = self.start(*arguments, **options)
        out, err = process.communicate(given, timeout=100)
        self.assertEqual(process.returncode, code, f"{arguments}\n{out}\n{err}")
        self.assertEqual(list(self.temporary.iterdir()), [], "left in the temporary folder")
        return out, err

    def fails(self, *arguments, code=1, **options):
        """The one sentence of a failure, checked to be one. What else stands there is progress."""
        before = self.names()
        out, err = self.run_cli(*arguments, code=code, **options)
        lines = [line for line in err.splitlines() if not re.fullmatch(r"[A-Z][a-z ]+: \d+%", line)]
        self.assertTrue(lines and lines[0].startswith("korvane-cli: ") and lines[0].endswith("."), err)
        self.assertLessEqual(len(lines), 2, err)
        self.assertEqual(self.names(), before, "files came or went")
        return lines[0].removeprefix("korvane-cli: ")

    def names(self):
        return sorted(p.name for p in self.folder.iterdir())

    def words(self, count=8, name="words.json"):
        path = self.folder / name
        words = [{"text": f"word{i}", "start": 0.3 + i * 0.4, "end": 0.6 + i * 0.4} for i in range(count)]
        path.write_text(json.dumps({"words": words}), encoding="utf-8")
        return path

    def probe(self, file):
        fields = "stream=codec_name,width,height:format=duration"
        result = subprocess.run(["ffprobe", "-v", "error", "-show_entries", fields, "-of", "json", file],
                                capture_output=True, text=True, check=True)
        return json.loads(result.stdout)

    def assert_reel(self, file, seconds=None):
        found = self.probe(file)
        picture, sound = found["streams"]
        self.assertEqual((picture["codec_name"], picture["width"], picture["height"]), ("h264", 1080, 1920))
        self.assertEqual(sound["codec_name"], "aac")
        if seconds is not None:
            self.assertAlmostEqual(float(found["format"]["duration"]), seconds, delta=0.1)


class Work(Case):
    def test_a_reel_is_made_of_a_video(self):
        out, err = self.run_cli("reel", self.video, "--language", "en-US", "--output", "reel.mp4")
        self.assert_reel(self.folder / "reel.mp4")
        self.assertEqual(self.names(), ["reel.mp4", "talk.mp4"])
        self.assertIn("🎬 [Export] ===== SUCCESS =====", out)
        self.assertNotIn("🎬", err)
        for phase in ("Extracting audio: 0%", "Transcribing: 30%", "Transcribing: 100%", "Exporting video: 0%", "Exporting video: 100%"):
            self.assertIn(phase + "\n", err)
        self.assertRegex(err, r"Wrote reel.mp4, (\d+) of \1 words\.\n")

    def test_quiet_prints_nothing(self):
        self.assertEqual(self.run_cli("reel", self.video, "-q", "-l", "en"), ("", ""))
        self.assert_reel(self.folder / "korvane_output.mp4")
        self.assertEqual(self.run_cli("--quiet", "transcribe", self.video, "-len", "-ow.srt"), ("", ""))

    def test_a_transcript_as_json_is_what_export_reads(self):
        out, _ = self.run_cli("transcribe", self.video, "-l", "en-US", "--format", "json")
        transcript = json.loads(out)
        self.assertEqual(list(transcript), ["language", "duration", "words"])
        texts = [word["text"] for word in transcript["words"]]
        self.assertIn("machine", texts)
        _, err = self.run_cli("export", self.video, "--words", "-", "--drop", "1-2", "-o", "o.mp4", input=out)
        self.assertIn(f"{len(texts) - 2} of {len(texts)} words.", err)
        self.assert_reel(self.folder / "o.mp4")

    def test_the_ending_of_the_output_decides_the_format(self):
        for name, pattern in [("a.txt", r"\A.*machine.*\n"), ("a.json", r'\A\{\n  "language": "en-US"'),
                              ("a.srt", r"\A1\n00:00:\d\d,\d{3} --> 00:00:\d\d,\d{3}\n"),
                              ("a.vtt", r"\AWEBVTT\n\n00:00:\d\d\.\d{3} --> ")]:
            out, _ = self.run_cli("transcribe", self.video, "-l", "en-US", "-o", name)
            self.assertEqual(out, "")
            self.assertRegex((self.folder / name).read_text(), pattern)

    def test_the_selection_decides_the_length_and_an_old_file_is_replaced(self):
        (self.folder / "o.mp4").write_text("old")
        self.run_cli("export", self.video, "-w", self.words(), "--select", "0-1,3,..1", "-o", "o.mp4")
        self.assert_reel(self.folder / "o.mp4", seconds=0.9)

    def test_odd_words_are_clamped_or_left_out_instead_of_refused(self):
        odd = [{"text": "back", "start": 2, "end": 1}, {"text": "none", "start": 1, "end": 1}, {"text": "before", "start": -1, "end": 0.5},
               {"text": "beyond", "start": 900, "end": 901}, {"text": "over", "start": 0.4, "end": 1.4}]
        (self.folder / "odd.json").write_text(json.dumps(odd))
        self.run_cli("export", self.video, "-w", "odd.json", "-o", "o.mp4")
        self.assert_reel(self.folder / "o.mp4")

    def test_twenty_thousand_words_are_read(self):
        self.words(20000)
        self.run_cli("export", self.video, "-w", "words.json", "-s", "..3", "-o", "o.mp4")
        self.assert_reel(self.folder / "o.mp4", seconds=0.9)

    def test_two_exports_at_once_dont_disturb_each_other(self):
        self.words()
        both = [self.start("export", self.video, "-w", "words.json", "-o", name) for name in ("a.mp4", "b.mp4")]
        for process in both:
            self.assertEqual((process.communicate(timeout=100), process.returncode)[1], 0)
        self.assert_reel(self.folder / "a.mp4", seconds=2.4)
        self.assert_reel(self.folder / "b.mp4", seconds=2.4)
        self.assertEqual(self.names(), ["a.mp4", "b.mp4", "talk.mp4", "words.json"])

    def test_two_exports_to_one_name_leave_one_whole_file(self):
        self.words()
        both = [self.start("export", self.video, "-w", "words.json", "-o", "o.mp4") for _ in range(2)]
        for process in both:
            process.communicate(timeout=100)
            self.assertIn(process.returncode, (0, 1))
        self.assert_reel(self.folder / "o.mp4", seconds=2.4)
        self.assertEqual(self.names(), ["o.mp4", "talk.mp4", "words.json"])

    def test_the_languages_are_listed_with_what_is_installed(self):
        out, err = self.run_cli("languages")
        self.assertEqual([line.split()[0] for line in out.splitlines()],
                         ["ru-RU", "en-US", "uk-UA", "fr-FR", "de-DE", "es-ES", "it-IT", "zh-CN", "ja-JP"])
        self.assertRegex(out, r"(?m)^en-US  English \(US\)  installed: .+$")
        self.assertRegex(out, r"(?m)^ja-JP  Japanese      not installed: .+$")
        self.assertEqual(err, "")


class BadInput(Case):
    def reel_fails(self, video, *more, **options):
        return self.fails("reel", video, "-l", "en-US", "-o", "out.mp4", *more, **options)

    def export_fails(self, *more, **options):
        return self.fails("export", self.video, *more, **options)

    def test_what_is_no_video_is_said_in_one_sentence(self):
        (self.folder / "empty.mp4").touch()
        (self.folder / "text.mp4").write_text("This is no video. " * 100)
        (self.folder / "cut.mp4").write_bytes(self.video.read_bytes()[:5000])
        self.assertEqual(self.reel_fails("no.mp4"), 'There is no file "no.mp4".')
        self.assertEqual(self.reel_fails("."), '"." is a folder, not a file.')
        self.assertEqual(self.reel_fails("empty.mp4"), '"empty.mp4" is empty.')
        for name in ("text.mp4", "cut.mp4"):
            self.assertIn(name, self.reel_fails(name))

    def test_a_missing_track_is_named(self):
        self.assertEqual(self.reel_fails(CLIPS / "mute.mp4"), "The selected video has no audio track.")
        self.words()
        self.assertEqual(self.fails("export", CLIPS / "sound.m4a", "-w", "words.json", "-o", "out.mp4"),
                         "The source video has no video track.")

    def test_an_old_reel_stays_when_the_source_is_none(self):
        self.words()
        (self.folder / "cut.mp4").write_bytes(self.video.read_bytes()[:5000])
        (self.folder / "old.mp4").write_text("last week's reel")
        for source in ("cut.mp4", CLIPS / "sound.m4a"):
            self.fails("export", source, "-w", "words.json", "-o", "old.mp4")
            self.assertEqual((self.folder / "old.mp4").read_text(), "last week's reel")
        (self.folder / "far.json").write_text('[{"text": "far", "start": 900, "end": 901}]')
        self.assertEqual(self.fails("export", self.video, "-w", "far.json", "-o", "old.mp4"),
                         "None of the selected segments produced valid content.")
        self.assertEqual((self.folder / "old.mp4").read_text(), "last week's reel")

    def test_a_video_that_says_nothing_is_told_from_a_failure(self):
        self.assertEqual(self.reel_fails(CLIPS / "silent.mp4"), "No speech was detected in the video.")

    def test_no_permission_is_said_and_nothing_is_written(self):
        # Root may read everything unless it gives that power away.
        without = [] if os.getuid() else ["setpriv", "--bounding-set=-dac_override,-dac_read_search"]
        self.video.chmod(0)
        self.assertEqual(self.reel_fails("talk.mp4", prefix=without), '"talk.mp4" can\'t be read: Permission denied.')
        self.video.chmod(0o600)
        locked = self.folder / "locked"
        locked.mkdir(mode=0o500)
        self.assertEqual(self.fails("reel", "talk.mp4", "-l", "en", "-o", "locked/o.mp4", prefix=without),
                         'Nothing can be written in the folder "locked": Permission denied.')

    def test_a_destination_that_can_not_be_written_is_found_before_the_work_begins(self):
        (self.folder / "sub").mkdir()
        for output, sentence in [
            ("sub", '"sub" is a folder; give the name of a file to write.'),
            ("no/o.mp4", 'The folder "no" for "o.mp4" does not exist.'),
            ("talk.mp4/o.mp4", '"talk.mp4" is not a folder, so nothing can be written in it.'),
            ("/dev/null", '"/dev/null" is not a regular file, so it can\'t be replaced.'),
        ]:
            out, err = self.run_cli("reel", self.video, "-l", "en-US", "-o", output, code=1)
            self.assertEqual((out, err), ("", f"korvane-cli: {sentence}\n"))
        self.assertTrue(Path("/dev/null").is_char_device())

    def test_nobody_loses_their_recording(self):
        self.words()
        content = self.video.read_bytes()
        os.link(self.video, self.folder / "hard.mp4")
        os.symlink("talk.mp4", self.folder / "soft.mp4")
        for output in ("talk.mp4", "./talk.mp4", "hard.mp4", "soft.mp4", "words.json"):
            self.assertIn("which would be lost", self.export_fails("-w", "words.json", "-o", output))
        self.assertIn("which would be lost", self.fails("transcribe", "soft.mp4", "-l", "en", "-f", "text", "-o", "talk.mp4"))
        self.assertEqual(self.video.read_bytes(), content)

    def test_a_language_without_recogniser_says_what_to_install(self):
        _, err = self.run_cli("transcribe", self.video, "-l", "ja-JP", code=1)
        first, second = err.splitlines()
        self.assertEqual(first, "korvane-cli: Speech recognizer is not available for 'ja-JP'.")
        self.assertIn("ja-JP", second)

    def test_a_refused_permission_is_shown_in_its_own_words(self):
        self.environment["KORVANE_SPEECH_RECOGNITION"] = "denied"
        self.assertEqual(self.reel_fails(self.video),
                         "Speech recognition permission was denied. Enable it in System Settings › Privacy.")
        self.environment["KORVANE_SPEECH_RECOGNITION"] = "restricted"
        self.assertEqual(self.reel_fails(self.video), "Speech recognition is restricted on this device.")

    def test_words_that_are_not_what_they_claim_are_refused(self):
        for content, part in [("", "is empty"), ("nonsense", "is not valid JSON"), ("{}", 'has no "words"'),
                              ('[{"text": "a", "start": NaN, "end": 1}]', "is not valid JSON"),
                              ('[{"text": "a", "start": 0}]', 'word 0 without "end"')]:
            (self.folder / "w.json").write_text(content)
            self.assertIn(part, self.export_fails("-w", "w.json", "-o", "o.mp4"))
        self.assertEqual(self.export_fails("-w", "no.json", "-o", "o.mp4"), 'There is no file "no.json".')
        self.assertIn("Standard input is empty", self.export_fails("-w", "-", "-o", "o.mp4"))

    def test_a_style_that_is_partly_wrong_names_the_key(self):
        style = {"fontFamilyName": "Inter", "fontPostscriptName": "Inter-Bold", "fontSize": 72, "textColorR": 1,
                 "textColorG": 1, "textColorB": 1, "hasShadow": True, "shadowColorR": 0, "shadowColorG": 0,
                 "shadowColorB": 0, "shadowRadius": 8, "verticalPosition": 0.85, "hasPopAnimation": True}
        self.words()
        path = self.folder / "style.json"
        for key, value in [("fontSize", "large"), ("hasShadow", 1), ("verticalPosition", None)]:
            path.write_text(json.dumps({**style, key: value}))
            self.assertIn(key, self.export_fails("-w", "words.json", "--style", "style.json", "-o", "o.mp4"))
        path.write_text(json.dumps({k: v for k, v in style.items() if k != "hasPopAnimation"}))
        self.assertIn("hasPopAnimation", self.export_fails("-w", "words.json", "--style", "style.json", "-o", "o.mp4"))
        path.write_text(json.dumps(style))
        self.run_cli("export", self.video, "-w", "words.json", "-s", "0", "--style", "style.json", "-o", "o.mp4")
        self.assert_reel(self.folder / "o.mp4")

    def test_wrong_usage_has_its_own_code(self):
        self.words(3)
        for arguments in [(), ("nothing",), ("reel",), ("reel", "talk.mp4"), ("reel", "talk.mp4", "-l", "klingon"),
                          ("transcribe", "talk.mp4", "-l", "en", "-o", "a.docx"), ("export", "talk.mp4"),
                          ("export", "talk.mp4", "-w", "words.json", "-s", "3"),
                          ("export", "talk.mp4", "-w", "words.json", "-s", "2-1"), ("languages", "x"), ("--wrong",)]:
            self.fails(*arguments, code=2)

    def test_an_empty_selection_leaves_the_old_reel_alone(self):
        self.words(3)
        (self.folder / "o.mp4").write_text("old")
        self.assertEqual(self.export_fails("-w", "words.json", "-d", "0-", "-o", "o.mp4"), "No segments are selected.")
        self.assertEqual((self.folder / "o.mp4").read_text(), "old")

    def test_a_source_that_vanishes_while_it_is_read_ends_cleanly(self):
        self.words()
        process = self.start("export", self.video, "-w", "words.json", "-o", "o.mp4")
        for line in process.stderr:
            if line.startswith("Exporting"):
                os.truncate(self.video, 3000)
                self.video.unlink()
                break
        _, err = process.communicate(timeout=100)
        self.assertIn(process.returncode, (0, 1), err)
        self.assertIn(self.names(), (["o.mp4", "words.json"], ["words.json"]))


class FullDisk(Case):
    @contextlib.contextmanager
    def small_disk(self):
        """A file system of 600 KB. Without the right to mount one, the folder as it is, and a limit on each file."""
        place = self.folder / "disk"
        place.mkdir()
        mounted = subprocess.run(["mount", "-t", "tmpfs", "-o", "size=600k", "none", place], check=False, capture_output=True).returncode == 0
        limit = None if mounted else lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (600 << 10, 600 << 10))
        try:
            yield place, limit
        finally:
            if mounted:
                subprocess.run(["umount", place], check=True)

    def test_a_disk_that_fills_up_ends_with_one_sentence_and_leaves_nothing(self):
        self.words(9)
        with self.small_disk() as (disk, limit):
            self.fails("export", self.video, "-w", "words.json", "-o", "disk/o.mp4", preexec_fn=limit)
            self.assertEqual(list(disk.iterdir()), [])

    def test_a_file_that_grows_too_large_ends_with_one_sentence_and_leaves_nothing(self):
        self.words(9)
        limit = lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (200 << 10, 200 << 10))
        self.fails("export", self.video, "-w", "words.json", "-o", "o.mp4", preexec_fn=limit)

    def test_a_disk_that_is_full_is_found_before_the_work_begins(self):
        with self.small_disk() as (disk, limit):
            if limit is None:
                with contextlib.suppress(OSError):
                    (disk / "fill").write_bytes(bytes(600 << 10))
            else:
                limit = lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (0, 0))
            out, err = self.run_cli("reel", self.video, "-l", "en-US", "-o", "disk/o.mp4", code=1, preexec_fn=limit)
            self.assertTrue(err.startswith('korvane-cli: Nothing can be written in the folder "disk": '), err)
            self.assertEqual(out, "")

    def test_a_temporary_folder_without_room_ends_cleanly(self):
        limit = lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (8 << 10, 8 << 10))
        self.fails("transcribe", self.video, "-l", "en-US", preexec_fn=limit)

    def test_standard_output_that_takes_nothing_is_a_failure(self):
        with open("/dev/full", "w", encoding="utf-8") as full:
            process = self.start("transcribe", self.video, "-l", "en-US", stdout=full)
            _, err = process.communicate(timeout=100)
        self.assertEqual(process.returncode, 1)
        self.assertIn("can't be written to standard output: No space left on device.", err)


class Stopping(Case):
    def stop_at(self, moment, *arguments, signals=(signal.SIGINT,), **options):
        """Signals once `moment` shows on standard error (at once when empty), and checks the end."""
        before = self.names()
        process = self.start(*arguments, **options)
        seen = ""
        while moment and moment not in seen:
            line = process.stderr.readline()
            self.assertNotEqual(line, "", f"never reached {moment}: {seen}")
            seen += line
        began = time.monotonic()
        for number in signals:
            process.send_signal(number)
        out, err = process.communicate(timeout=100)
        # Far above what it takes, for machines that have other work too.
        self.assertLess(time.monotonic() - began, 1.0)
        # At once may be before main: then there is nobody yet who could turn the signal into a code.
        self.assertIn(process.returncode, (130,) if moment else (130, -signals[0]), out + seen + err)
        self.assertEqual(self.names(), before, "files came or went")
        self.assertEqual(list(self.temporary.iterdir()), [])
        return err

    def long_words(self):
        """The same six seconds again and again, so that an export lasts."""
        path = self.folder / "long.json"
        path.write_text(json.dumps([{"text": f"w{i}", "start": 0.1, "end": 5.9} for i in range(40)]))
        return path

    def test_a_stop_before_anything_has_begun_counts_too(self):
        words = self.long_words()
        for _ in range(5):
            self.stop_at("", "export", self.video, "-w", words, "-o", "o.mp4")

    def test_extraction_and_transcription_stop(self):
        for moment in ("Extracting audio: 0%", "Transcribing: 30%"):
            self.assertIn("korvane-cli: Stopped.\n", self.stop_at(moment, "reel", self.video, "-l", "en-US"))

    def test_an_export_stops_at_any_moment(self):
        words = self.long_words()
        for moment in ("Exporting video: 0%", "Exporting video: 10%"):
            self.assertIn("Stopped.", self.stop_at(moment, "export", self.video, "-w", words, "-o", "o.mp4"))

    def test_a_polite_kill_and_a_closed_terminal_stop_too(self):
        words = self.long_words()
        for number in (signal.SIGTERM, signal.SIGHUP):
            self.stop_at("Exporting video: 0%", "export", self.video, "-w", words, signals=(number,))

    def test_a_background_job_of_a_script_can_be_stopped(self):
        ignore = lambda: signal.signal(signal.SIGINT, signal.SIG_IGN)
        self.stop_at("Exporting video: 0%", "export", self.video, "-w", self.long_words(), preexec_fn=ignore)

    def test_asking_twice_leaves_nothing_either(self):
        words = self.long_words()
        self.stop_at("Exporting video: 0%", "export", self.video, "-w", words, signals=(signal.SIGINT, signal.SIGTERM))

    def test_waiting_for_standard_input_stops(self):
        reader, writer = os.pipe()
        self.addCleanup(os.close, reader)
        self.addCleanup(os.close, writer)
        process = self.start("export", self.video, "-w", "-", "-o", "o.mp4", stdin=reader)
        os.write(writer, b"[")
        while fcntl.ioctl(reader, termios.FIONREAD, struct.pack("i", 0)) != struct.pack("i", 0):
            os.sched_yield()  # until the program has taken what there is, and waits for more
        process.send_signal(signal.SIGINT)
        process.communicate(timeout=100)
        self.assertEqual(process.returncode, 130)
        self.assertEqual(self.names(), ["talk.mp4"])


class Terminal(Case):
    def on_terminal(self, columns, *arguments, **environment):
        """What a terminal of so many columns receives on standard error."""
        master, slave = pty.openpty()
        fcntl.ioctl(slave, termios.TIOCSWINSZ, struct.pack("HHHH", 24, columns, 0, 0))
        self.environment.update({"TERM": "xterm", **environment})
        process = self.start(*arguments, stderr=slave)
        os.close(slave)
        received = bytearray()

        def collect():
            with contextlib.suppress(OSError):
                while block := os.read(master, 65536):
                    received.extend(block)

        reader = threading.Thread(target=collect)
        reader.start()
        process.communicate(timeout=100)
        reader.join()
        os.close(master)
        self.assertEqual(process.returncode, 0, received)
        return received.decode()

    def test_one_line_is_drawn_over_and_fits_the_width(self):
        for columns in (100, 24):
            text = self.on_terminal(columns, "transcribe", self.video, "-l", "en-US", "-o", "w.json")
            drawn = [part.removesuffix("\x1b[K") for part in text.split("\r") if part]
            progress = [part for part in drawn if "%" in part]
            self.assertTrue(any(part.startswith("Extracting audio") for part in progress), text)
            self.assertTrue(any(part.startswith("Transcribing") for part in progress), text)
            self.assertTrue(all(len(part) < columns and "\n" not in part for part in progress), progress)
            self.assertEqual(columns == 100, any("[" in part for part in progress))

    def test_a_terminal_that_can_not_redraw_gets_lines(self):
        text = self.on_terminal(80, "transcribe", self.video, "-l", "en-US", "-o", "w.json", TERM="dumb")
        self.assertIn("Extracting audio: 0%\r\n", text)
        self.assertNotIn("\x1b", text)

    def test_nothing_but_utf8_of_our_own_comes_out_without_a_locale(self):
        self.environment = {"PATH": os.environ["PATH"], "TMPDIR": str(self.temporary)}
        out, err = self.run_cli("export", self.video, "-w", self.words(2))
        self.assertIn("🎬 [Export]", out)
        self.assertRegex(err, r"\A(Exporting video: \d+%\n)+Wrote korvane_output.mp4, 2 of 2 words.\n\Z")

    def test_missing_standard_streams_do_no_harm(self):
        close = lambda: [os.close(number) for number in (0, 1, 2)]
        process = self.start("export", self.video, "-w", self.words(2), "-o", "o.mp4", stdin=None, stdout=None, stderr=None, preexec_fn=close)
        self.assertEqual(process.wait(timeout=100), 0)
        self.assert_reel(self.folder / "o.mp4")


class Papers(Case):
    source = Path(__file__).resolve().parent.parent.parent / "cli"

    def options_in_help(self):
        text = "".join(self.run_cli("help", topic)[0] for topic in ("", "reel", "transcribe", "export", "languages", "models"))
        return set(re.findall(r"(?m)^ +(?:-\w, )? *(--[a-z]+)", text))

    def test_help_is_on_every_level_and_goes_to_standard_output(self):
        for arguments in (["--help"], ["help"], *([name, "--help"] for name in ("reel", "transcribe", "export", "languages", "models"))):
            out, err = self.run_cli(*arguments)
            self.assertIn("korvane-cli", out)
            self.assertEqual(err, "")
        self.assertRegex(self.run_cli("--version")[0], r"\Akorvane-cli \d+\.\d+\.\d+\n\Z")

    def test_the_manual_is_well_formed_and_names_every_option_and_exit_code(self):
        page = self.source / "korvane-cli.1"
        result = subprocess.run(["groff", "-man", "-Tutf8", "-ww", "-z", page], capture_output=True, text=True, check=True)
        self.assertEqual(result.stderr, "")
        text = page.read_text().replace("\\-", "-")
        for option in self.options_in_help():
            self.assertIn(option, text)
        for code in ("0", "1", "2", "130"):
            self.assertRegex(text, rf"(?m)^\.B {code}$")

    def test_the_start_script_takes_every_command_for_one_whatever_files_lie_around(self):
        script = (self.source.parent / "run").read_text()
        commands = set(re.search(r"(?m)^([a-z |]+)\) ;;$", script)[1].split(" | "))
        listed = re.search(r"(?ms)^Commands:\n(.*?)\n\n", self.run_cli("--help")[0])[1]
        self.assertEqual(commands, set(re.findall(r"(?m)^  (\w+)", listed)))

    def completed(self, *words):
        script = f'. "{self.source}/korvane-cli.bash"; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _korvane_cli; printf "%s\\n" "${{COMPREPLY[@]}}"'
        result = subprocess.run(["bash", "-c", script, "bash", CLI, *words], cwd=self.folder, env=self.environment, capture_output=True, text=True, check=True)
        self.assertEqual(result.stderr, "")
        return result.stdout.split()

    def test_the_completion_knows_commands_options_languages_and_files(self):
        self.words()
        self.assertEqual(self.completed("tr"), ["transcribe"])
        self.assertEqual(self.completed("reel", "--la"), ["--language"])
        self.assertEqual(self.completed("reel", "--language", "en"), ["en-US"])
        self.assertEqual(self.completed("reel", "--language", "=", "en"), ["en-US"])
        self.assertEqual(self.completed("reel", "ta"), ["talk.mp4"])
        self.assertEqual(self.completed("export", "talk.mp4", "--words", ""), ["words.json"])
        self.assertEqual(self.completed("transcribe", "-f", "s"), ["srt"])
        self.assertEqual(self.completed("transcribe", "--engine", "w"), ["whisper"])
        self.assertEqual(self.completed("models", "i"), ["install"])
        self.assertEqual(self.completed("models", "install", "base"), ["base-q8_0"])
        self.assertEqual(self.completed("models", "remove", ""), [])
        self.assertEqual(self.completed("models", "add", "ta"), ["talk.mp4"])
        known = set(self.completed("-")) | set().union(*(self.completed(name, "-") for name in ("reel", "transcribe", "export")))
        known |= set(self.completed("models", "list", "-"))
        self.assertEqual(known, self.options_in_help())


if __name__ == "__main__":
    if sys.argv[3] == "make":
        make_clips()
    else:
        unittest.main(argv=[sys.argv[0], *sys.argv[3:]], verbosity=2)
