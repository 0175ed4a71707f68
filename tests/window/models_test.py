#!/usr/bin/env python3
"""The sheet of speech models in the real window, by mouse and keyboard: models from a server of our own.

models_test.py PROGRAM CLIPS MODEL_WRITER CLASS...   CLIPS and CLASS as for end_to_end_test.py
"""
import hashlib
import json
import os
import re
import subprocess
import sys
import unittest
from pathlib import Path

sys.path[:0] = [str(Path(__file__).parent), str(Path(__file__).parents[1] / "support")]
import desk  # noqa: E402
import end_to_end_test  # noqa: E402
from desk import key, type_text, until  # noqa: E402
from model_server import ModelServer  # noqa: E402

WRITER = Path(sys.argv[3]).resolve()
MISSING = "Speech recognizer is not available for 'ru-RU'."


class Models(end_to_end_test.Case):
    def setUp(self):
        super().setUp()
        data = self.root / "data"
        os.environ["XDG_DATA_HOME"] = str(data)
        self.folder = data / "korvane/models/whisper"
        self.model = self.files / "my own.bin"
        subprocess.run([WRITER, self.model, " Добрый@1", " день@2"], check=True)
        self.content = self.model.read_bytes()
        self.server = ModelServer(self.content)
        self.addCleanup(self.server.close)
        self.part = self.folder / "ggml-small.bin.part"
        self.write_list(json.dumps({"mirror": self.server.address, "models": [
            self.entry("small", 1, 10**7), self.entry("large", 64, 10**15)]}))

    def entry(self, name, appended, operations):
        """The large one is another file, which the server doesn't have."""
        digest = hashlib.sha256(self.content if name == "small" else b"").hexdigest()
        return {"id": name, "name": f"A {name} model", "file": f"ggml-{name}.bin", "sha256": digest,
                "bytes": len(self.content) * appended, "memory": 10**8, "operations": operations}

    def write_list(self, text):
        file = self.config / "korvane/speech-models.json"
        file.parent.mkdir(exist_ok=True)
        file.write_text(text, encoding="utf-8")

    def fail_for_want_of_a_recogniser(self):
        self.start(self.video)
        self.program.find(name="talk.mp4")
        self.program.find("push button", "Transcribe").click()
        self.status("Failed")
        self.program.find(name=MISSING)

    def open_sheet(self, button="Speech models…"):
        self.program.find("push button", button).click()
        self.program.find("dialog", "Speech models")

    def close_sheet(self):
        self.program.find("push button", "Close speech models").click()
        self.wait_for_the_sheet_to_go()

    def wait_for_the_sheet_to_go(self):
        until("the sheet to go", lambda: not self.program.all("dialog", "Speech models", "showing"))

    def shown(self, pattern):
        return until(pattern, lambda: next(
            t.name for t in self.program.all(having="showing") if re.fullmatch(pattern, t.name)))

    def tab_to(self, role, name):
        """By the keyboard alone."""
        for _ in range(30):
            key("Tab")
            if until("a focus", lambda: [t for t in self.program.all(having="focused")])[-1].name == name:
                return
        self.fail(f"the Tab key does not reach {role} “{name}”")

    def stall_at_half(self):
        self.server.until = len(self.content) // 2

    def download_half(self):
        self.stall_at_half()
        self.open_sheet()
        self.program.find("push button", "Install A small model").click()
        until("half of it", lambda: self.part.stat().st_size == self.server.until)


class Downloading(Models):
    def test_is_asked_for_watched_stopped_resumed_and_removed_by_mouse(self):
        self.fail_for_want_of_a_recogniser()
        self.stall_at_half()
        self.open_sheet("Install a model…")
        program = self.program
        for text in ("A small model", "A large model", "Recommended", str(self.folder)):
            self.assertTrue(any(text in t.name for t in program.all(having="showing")), text)
        self.shown(r"\d+ MB · 100 MB of memory · about \d+ times faster than the speech")
        self.assertEqual(self.server.ranges, [], "nothing is downloaded unasked")

        program.find("push button", "Install A small model").click()
        self.shown("(49|50)%.*")
        bar = program.find("progress bar", "Download of A small model")
        self.assertAlmostEqual(until("its value", lambda: bar.value), 0.5, delta=0.01)
        self.assertEqual(bar.range, (0, 1))
        self.close_sheet()
        self.open_sheet()
        self.shown("(49|50)%.*")

        program.find("push button", "Stop A small model").click()
        program.find("push button", "Resume A small model")
        self.shown(r"Stopped at (49|50)% · .* of .*")
        self.assertEqual(self.part.stat().st_size, self.server.until)
        self.server.go_on.set()
        program.find("push button", "Resume A small model").click()
        program.find("push button", "Remove A small model")
        self.assertEqual(self.server.ranges, [None, f"bytes={self.server.until}-"])
        self.assertEqual((self.folder / "ggml-small.bin").read_bytes(), self.content)
        self.assertTrue(program.find("radio button", "Use A small model").has("checked"))
        until("the way out has been gone and the error with it", lambda: not program.shows(MISSING))

        program.find("push button", "Remove A small model").click()
        program.find("push button", "Remove A small model now").click()
        program.find("push button", "Install A small model")
        self.assertEqual([f.name for f in self.folder.iterdir() if f.suffix == ".bin"], [])
        self.close_sheet()
        self.quit()

    def test_everything_is_reached_by_the_keyboard(self):
        self.fail_for_want_of_a_recogniser()
        self.server.go_on.set()
        self.tab_to("push button", "Install a model…")
        key("space")
        self.program.find("dialog", "Speech models")
        self.tab_to("push button", "Install A small model")
        key("Return")
        self.program.find("push button", "Remove A small model")
        self.tab_to("radio button", "Use A small model")
        key("Escape")
        self.wait_for_the_sheet_to_go()
        until("Transcribe to have the keyboard",
              lambda: self.program.find("push button", "Transcribe").has("focused"))
        self.quit()

    def test_closing_the_program_asks_and_the_next_start_resumes(self):
        self.start()
        self.download_half()
        key("ctrl+q")
        self.program.find("dialog", "Stop and close?")
        self.shown("A speech model is still being downloaded.*")
        self.program.find("push button", "Stop and close").click()
        self.assertEqual(self.program.end(), 0)
        self.assertEqual(self.part.stat().st_size, self.server.until)

        self.server.go_on.set()
        self.start()
        self.open_sheet()
        self.program.find("push button", "Resume A small model").click()
        self.program.find("push button", "Remove A small model")
        self.assertEqual(self.server.ranges[-1], f"bytes={self.server.until}-")
        self.close_sheet()
        self.quit()

    def test_an_error_is_a_sentence_and_the_rest_goes_on(self):
        self.start()
        self.open_sheet()
        self.program.find("push button", "Install A large model").click()
        self.assertTrue(until("a sentence", lambda: self.sentences())[0].endswith("."))
        self.program.find("push button", "Install A large model")
        self.program.find("push button", "Install A small model").click()
        self.program.find("push button", "Remove A small model")
        self.assertEqual(self.sentences(), [], "what went wrong before is forgotten")
        self.close_sheet()
        self.quit()

    def sentences(self):
        return [t.name for t in self.program.all("notification", having="showing") +
                self.program.all("alert", having="showing") if t.name]


class OwnFiles(Models):
    def choose(self, file):
        self.program.find("push button", "Choose a model file").click()
        self.program.find("dialog", "Choose a Speech Model")
        type_text(str(file))
        key("Return")
        until("the panel to go", lambda: not self.program.all(name="Choose a Speech Model", having="showing"))

    def test_a_model_file_that_a_person_has_is_added_and_other_files_are_refused(self):
        self.start()
        self.open_sheet()
        self.choose(self.video)
        until("a sentence about the video", lambda: any("talk.mp4" in t.name for t in self.program.all(having="showing")))
        self.choose(self.model)
        self.program.find("push button", "Remove A small model")
        self.assertEqual((self.folder / "ggml-small.bin").read_bytes(), self.content)
        self.assertEqual(self.server.ranges, [])
        self.close_sheet()
        self.quit()

    def test_a_damaged_file_is_named_got_again_and_removed(self):
        self.folder.mkdir(parents=True)
        file = self.folder / "ggml-small.bin"
        file.write_bytes(self.content[:5000])
        (self.folder / "ggml-junk.bin").write_text("no model")
        self.start()
        self.open_sheet()
        program = self.program
        self.shown('"ggml-small.bin" is cut off.*')
        self.shown('"ggml-junk.bin" is not a Whisper model.*')
        program.find("push button", "Install again A small model").click()
        program.find("push button", "Remove A small model")
        self.assertEqual(file.read_bytes(), self.content)
        program.find("push button", "Remove ggml-junk.bin").click()
        program.find("push button", "Remove ggml-junk.bin now").click()
        until("the junk to go", lambda: [f.name for f in self.folder.iterdir()] == [file.name])
        self.close_sheet()
        self.quit()

    def test_a_damaged_list_is_named_and_the_built_in_one_is_shown(self):
        self.write_list("{ not a list")
        self.start()
        self.open_sheet()
        self.program.find("push button", "Install Whisper base")
        self.shown(".*speech-models.json.*")
        self.close_sheet()
        self.quit()


class Transcribing(Models):
    def test_a_new_model_is_used_at_once(self):
        self.fail_for_want_of_a_recogniser()
        self.open_sheet("Install a model…")
        self.program.find("push button", "Install A small model").click()
        self.program.find("push button", "Remove A small model")
        self.close_sheet()
        self.transcribe()
        self.assertEqual({t.name for t in self.tokens()} & {"Добрый", "день"}, {"Добрый", "день"})
        self.quit()


if __name__ == "__main__":
    desk.sit_down()
    unittest.main(argv=[sys.argv[0], *sys.argv[4:]], verbosity=2)
