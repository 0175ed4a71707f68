#!/usr/bin/env python3
"""The real window with mouse and keyboard only: a window manager, the real recogniser, the real file panel.

end_to_end_test.py PROGRAM CLIPS CLASS...   CLIPS is the folder of clips that the command line's tests make
"""
import json
import os
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import unittest
import unittest.mock
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent))
import desk  # noqa: E402
from desk import Program, key, type_text, until, xdotool  # noqa: E402

PROGRAM, CLIPS = Path(sys.argv[1]).resolve(), Path(sys.argv[2]).resolve()
DEFAULTS = {
    "fontFamilyName": "Helvetica Neue", "fontPostscriptName": "HelveticaNeue-Bold", "fontSize": 72,
    "textColorR": 1, "textColorG": 1, "textColorB": 1, "hasShadow": True, "shadowColorR": 0, "shadowColorG": 0,
    "shadowColorB": 0, "shadowRadius": 8, "verticalPosition": 0.85, "hasPopAnimation": True,
}


def children_of(pid):
    threads = Path(f"/proc/{pid}/task").iterdir()
    return [int(child) for thread in threads for child in (thread / "children").read_text().split()]


class Case(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.root = Path(holder.name)
        self.config, self.files, self.temporary = (self.root / name for name in ("config", "files", "tmp"))
        for folder in (self.config, self.files, self.temporary):
            folder.mkdir()
        os.environ["TMPDIR"] = str(self.temporary)
        self.video = self.files / "talk.mp4"
        shutil.copy(CLIPS / "spoken.mp4", self.video)

    def start(self, *arguments):
        program = Program(PROGRAM, *arguments, config=self.config)
        self.addCleanup(program.kill)
        self.addCleanup(self.keep_picture, program)
        program.find("push button", "Load Video")
        self.program = program
        return program

    def keep_picture(self, program):
        """A failed test leaves a picture of what stood on the screen."""
        outcome = self._outcome.result  # pylint: disable=protected-access
        if any(test is self for test, _ in outcome.failures + outcome.errors):
            folder = Path(os.environ.get("KORVANE_TEST_PICTURES", tempfile.gettempdir()))
            with_name = folder / f"{self.id()}.png"
            desk.screenshot(with_name)
            print(f"picture: {with_name}\n{program.output()}", file=sys.stderr)

    def open_by_panel(self, path):
        key("ctrl+o")
        self.program.find("dialog", "Select a Video")
        type_text(str(path))
        key("Return")
        until("the panel to go", lambda: not self.program.all(name="Select a Video", having="showing"))

    def status(self, *texts, seconds=60):
        return until(f"one of {texts}", lambda: next((t for t in texts if self.program.shows(t)), None), seconds)

    def choose_english(self):
        self.program.find("combo box", "Spoken language").click()
        self.program.find("list item", "🇺🇸  English (US)").click()
        until("the list to go", lambda: not self.program.all("list item", "🇺🇸  English (US)", "showing"))

    def transcribe(self):
        self.program.find("push button", "Transcribe").click()
        until("the words", lambda: any(re.fullmatch("Words — [0-9]+ tokens?", t.name)
                                       for t in self.program.all(having="showing")), 90)

    def tokens(self):
        return [t for t in self.program.find("list", "Words").children() if t.role in ("check box", "list item")]

    def chosen(self):
        return [t.has("checked") for t in self.tokens()]

    def style(self):
        file = self.config / "korvane" / "subtitleSettings_v1.json"
        return json.loads(file.read_text(encoding="utf-8")) if file.exists() else dict(DEFAULTS)

    def quit(self):
        key("ctrl+q")
        self.assertEqual(self.program.end(), 0, self.program.output())
        self.assertEqual(self.program.output(), "", "the program is quiet")
        self.assertEqual([f.name for f in self.config.iterdir() if f.name != "korvane"], [], "nothing but the style is kept")


class Workflow(Case):
    def test_from_a_video_to_chosen_words_and_a_style_that_stays(self):
        program = self.start()
        for text in ("No file selected", "Ready", "0%", "Load a video to get started.", "Preview will appear here",
                     "Select words to export"):
            self.assertTrue(program.shows(text), text)
        self.assertFalse(program.find("push button", "Transcribe").has("enabled"))

        self.open_by_panel(self.video)
        program.find(name="talk.mp4")
        self.assertTrue(program.shows("Press Transcribe to start."))
        self.choose_english()

        program.find("push button", "Transcribe").click()
        seen = []

        def finished():
            texts = {t.name for t in program.all(having="showing")}
            seen.extend(texts & {"Requesting permission…", "Extracting audio…", "Transcribing speech…"})
            return next((t for t in texts if t.startswith("Transcribed — ")), None)
        done = until("the words", finished, 90)
        self.assertIn("Transcribing speech…", seen)
        count = int(re.fullmatch("Transcribed — ([0-9]+) words", done)[1])
        self.assertGreater(count, 12)
        self.assertTrue(program.shows(f"Words — {count} tokens"))
        self.assertTrue(program.shows("100%"))
        self.assertTrue(program.shows(f"{count} words · 1080 × 1920"))
        self.assertEqual(list(self.temporary.iterdir()), [], "the sound is deleted")
        self.assertEqual(self.chosen(), [True] * count)
        texts = [t.name for t in self.tokens()]
        self.assertIn("quick", texts)

        # By mouse, then by keyboard from there.
        self.tokens()[2].click()
        until("the third word to go", lambda: self.chosen() == [i != 2 for i in range(count)])
        key("Right", "space")
        until("the fourth word to go", lambda: self.chosen() == [i not in (2, 3) for i in range(count)])
        program.find("push button", "None").click()
        until("no word", lambda: not any(self.chosen()))
        self.assertTrue(program.shows("Select words to export"))
        program.find("push button", "All").click()
        until("every word", lambda: all(self.chosen()))

        self.change_every_control()
        style = self.style()
        self.quit()
        self.assertEqual(self.style(), style)

        self.start()
        self.assertEqual(self.program.find("slider", "Size").value, style["fontSize"])
        self.assertEqual(self.program.find("slider", "Blur").value, style["shadowRadius"])
        self.assertFalse(self.program.find("check box", "Shadow").has("checked"))
        self.assertFalse(self.program.find("check box", "Spring bounce on entry").has("checked"))
        self.assertTrue(self.program.shows("No file selected"), "nothing else is remembered")
        self.quit()
        self.assertEqual(self.style(), style)

    def change_every_control(self):
        """Each changes its own fields, at once, in the store."""
        program = self.program

        def changes(act, *fields):
            before = self.style()
            act()
            until(f"{fields} to be saved", lambda: any(self.style()[f] != before[f] for f in fields))
            after = self.style()
            self.assertEqual({k for k in after if after[k] != before[k]} - set(fields), set())
            return after

        def choose_family():
            program.find("combo box", "Font").click()
            program.find("text", "Search fonts")
            type_text("dejavu sans mono")
            key("Return")
        style = changes(choose_family, "fontFamilyName", "fontPostscriptName")
        self.assertEqual(style["fontFamilyName"], "DejaVu Sans Mono")

        def choose_weight():
            program.find("combo box", "Weight").click()
            key("Home", "Return")
        changes(choose_weight, "fontPostscriptName")

        style = changes(lambda: program.find("slider", "Size").click(0.9), "fontSize")
        self.assertEqual(style["fontSize"] % 2, 0)
        size = style["fontSize"]
        style = changes(lambda: key("Left"), "fontSize")
        self.assertEqual(style["fontSize"], size - 2)
        style = changes(lambda: program.find("slider", "Blur").click(0.5), "shadowRadius")
        self.assertEqual(style["shadowRadius"], round(style["shadowRadius"]))
        blur = style["shadowRadius"]

        def wheel_up():
            xdotool("mousemove", *program.find("slider", "Blur").point())
            xdotool("click", 4)
        style = changes(wheel_up, "shadowRadius")
        self.assertEqual(style["shadowRadius"], blur + 1)
        style = changes(lambda: program.find("slider", "Vertical position").click(0.5, 0.75), "verticalPosition")
        self.assertAlmostEqual(style["verticalPosition"], 0.25, delta=0.06)  # the lowest value is at the bottom

        def colour(well, code):
            def act():
                program.find("push button", well).click()
                entry = program.find("text", "Hex color")
                entry.click(times=3)
                type_text(code)
                key("Return")
                key("Escape")
                until("the chooser to go", lambda: not program.all("text", "Hex color", "showing"))
            return act
        style = changes(colour("Color", "ff8000"), "textColorR", "textColorG", "textColorB")
        self.assertAlmostEqual(style["textColorG"], 128 / 255, places=4)
        self.assertEqual((style["textColorR"], style["textColorB"]), (1, 0))
        style = changes(colour("Shadow color", "102030"), "shadowColorR", "shadowColorG", "shadowColorB")
        self.assertAlmostEqual(style["shadowColorB"], 48 / 255, places=4)
        shadow = {k: style[k] for k in style if k.startswith("shadow")}
        style = changes(lambda: program.find("check box", "Shadow").click(), "hasShadow")
        self.assertEqual({k: style[k] for k in shadow}, shadow, "the shadow's colour is kept for later")
        until("its well to go", lambda: not program.all("push button", "Shadow color", "showing"))
        changes(lambda: program.find("check box", "Spring bounce on entry").click(), "hasPopAnimation")


class Reel(Case):
    """All the way: from a spoken video to the finished file, without leaving the window."""

    def save_as(self, path):
        self.program.find("push button", "Export").click()
        self.program.find("dialog", "Export Video")
        key("ctrl+a")
        type_text(str(path))
        key("Return")
        until("the panel to go", lambda: not self.program.all(name="Export Video", having="showing"))

    def test_preview_and_export(self):
        program = self.start(self.video)
        self.choose_english()
        self.transcribe()
        self.assertFalse(program.find("push button", "Export").has("enabled"), "nothing is previewed yet")
        program.find("push button", "None").click()
        for token in self.tokens()[1:7]:
            token.click()
        until("six words", lambda: program.shows("6 words · 1080 × 1920"))

        program.find("push button", "Preview").click()
        program.find("push button", "Close preview")
        self.status("Ready")
        until("Export to be offered", lambda: program.find("push button", "Export").has("enabled"))
        program.find("push button", "Close preview").click()
        until("the preview to go", lambda: program.shows("Preview will appear here"))
        self.assertFalse(program.find("push button", "Export").has("enabled"))

        program.find("push button", "Preview").click()
        until("Export to be offered", lambda: program.find("push button", "Export").has("enabled"))
        reel = self.files / "my reel.mp4"
        self.save_as(reel)
        self.status("Export complete", seconds=120)
        self.assertTrue(program.shows("100%"))
        program.find("push button", "Show the exported reel in its folder")
        facts = json.loads(subprocess.run(
            ["ffprobe", "-v", "error", "-show_streams", "-of", "json", str(reel)], check=True, capture_output=True).stdout)
        picture = next(s for s in facts["streams"] if s["codec_type"] == "video")
        self.assertEqual((picture["width"], picture["height"], picture["avg_frame_rate"]), (1080, 1920, "30/1"))
        said = float(next(t.name for t in program.all("label") if re.fullmatch(r"[0-9.]+s", t.name))[:-1])
        self.assertAlmostEqual(float(picture["duration"]), said, delta=0.15)
        self.assertEqual(list(self.temporary.iterdir()), [])
        self.quit()


class Stopping(Case):
    def test_stop_ends_a_transcription_and_the_next_one_works(self):
        program = self.start(self.video)
        program.find(name="talk.mp4")
        self.choose_english()
        program.find("push button", "Transcribe").click()
        stop = program.find("push button", "Stop")
        self.assertFalse(program.find("push button", "Load Video").has("enabled"))
        stop.click()
        self.status("Cancelled")
        until("Stop to go", lambda: not program.all("push button", "Stop", "showing"))
        self.assertEqual(list(self.temporary.iterdir()), [])
        self.transcribe()
        self.quit()

    def test_closing_in_the_middle_leaves_nothing(self):
        program = self.start(self.video)
        self.choose_english()
        program.find("push button", "Transcribe").click()
        program.find("push button", "Stop")
        program.find("push button", "Close").click()
        program.find("push button", "Keep working").click()
        until("the question to go", lambda: not program.all("push button", "Keep working", "showing"))
        self.assertTrue(program.find("push button", "Stop").has("enabled"))
        program.find("push button", "Close").click()
        program.find("push button", "Stop and close").click()
        self.assertEqual(program.end(), 0)
        self.assertEqual(list(self.temporary.iterdir()), [])


    def test_a_polite_kill_in_the_middle_leaves_nothing(self):
        program = self.start(self.video)
        self.choose_english()
        program.find("push button", "Transcribe").click()
        program.find("push button", "Stop")
        until("the sound", lambda: list(self.temporary.iterdir()))
        helpers = children_of(program.process.pid)
        program.process.send_signal(signal.SIGTERM)
        self.assertEqual(program.end(), 0)
        self.assertEqual(program.output(), "")
        self.assertEqual(list(self.temporary.iterdir()), [])
        self.assertEqual([pid for pid in helpers if Path(f"/proc/{pid}").exists()], [])


class Rendering(Case):
    def test_without_a_graphics_processor_the_processor_draws_and_nothing_is_left(self):
        with unittest.mock.patch.dict(os.environ, {"QT_XCB_GL_INTEGRATION": "none"}):
            del os.environ["XDG_RUNTIME_DIR"]
            self.start()
        libraries = Path(f"/proc/{self.program.process.pid}/maps").read_text()
        self.assertNotIn("swrast_dri", libraries, "no driver plays a graphics processor")
        self.quit()
        self.assertEqual(list(self.temporary.iterdir()), [])


class Papers(unittest.TestCase):
    def test_the_manual_is_well_formed_and_names_every_option_key_and_exit_code(self):
        page = Path(__file__).resolve().parent.parent.parent / "app" / "korvane.1"
        result = subprocess.run(["groff", "-man", "-Tutf8", "-ww", "-z", page], capture_output=True, text=True, check=True)
        self.assertEqual(result.stderr, "")
        text = page.read_text(encoding="utf-8").replace("\\-", "-")
        help_text = subprocess.run([PROGRAM, "--help"], capture_output=True, text=True, check=True).stdout
        options = re.findall(r"(?m)^ +(?:-\w, )?(--[a-z]+)", help_text)
        self.assertIn("--version", options)
        for word in (*options, "Ctrl+O", "Ctrl+Q", "Ctrl+W", "F11"):
            self.assertIn(word, text)
        for code in ("0", "1", "2", "130"):
            self.assertRegex(text, rf"(?m)^\.B {code}$")


class Refusals(Case):
    def test_a_cancelled_panel_changes_nothing(self):
        program = self.start(self.video)
        program.find(name="talk.mp4")
        key("ctrl+o")
        program.find("dialog", "Select a Video")
        key("Escape")
        until("the panel to go", lambda: not program.all(name="Select a Video", having="showing"))
        self.assertTrue(program.shows("talk.mp4"))
        self.quit()

    def test_a_file_that_is_no_video_is_refused_aloud(self):
        note = self.files / "notes.txt"
        note.write_text("no video", encoding="utf-8")
        program = self.start(note)
        message = until("the error", lambda: next((t.name for t in program.all(having="showing")
                                                   if "notes.txt" in t.name), None))
        self.assertTrue(message.endswith("."))
        self.assertTrue(program.shows("No file selected"))
        self.quit()

    def test_a_video_without_sound_and_one_without_speech_say_so(self):
        for clip, status in (("mute.mp4", "Failed"), ("silent.mp4", "No speech detected")):
            shutil.copy(CLIPS / clip, self.files)
            program = self.start(self.files / clip)
            self.choose_english()
            program.find("push button", "Transcribe").click()
            self.status(status)
            self.assertTrue(program.find("push button", "Transcribe").has("enabled"))
            self.quit()

    def test_a_language_that_nothing_is_installed_for_says_so(self):
        program = self.start(self.video)
        program.find("push button", "Transcribe").click()
        self.status("Failed")
        self.assertTrue(any("ru-RU" in t.name for t in program.all(having="showing")))
        self.quit()


if __name__ == "__main__":
    desk.sit_down()
    unittest.main(argv=[sys.argv[0], *sys.argv[3:]], verbosity=2)
