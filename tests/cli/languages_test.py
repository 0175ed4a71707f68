#!/usr/bin/env python3
"""korvane-cli in the nine languages: what a scripted model says arrives as words, lines and captions.

languages_test.py CLI CLIPS MODEL_WRITER [TEST...]   CLIPS as end_to_end_test.py makes them
"""
import json
import shutil
import subprocess
import sys
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
WRITER = Path(sys.argv.pop(3)).resolve()
from end_to_end_test import CLIPS, Case  # noqa: E402  (reads the arguments)

# Language: what the model says, and the words that a person reads; "~" stands for a no-break space.
SENTENCES = {
    "ru-RU": (" Москва — столица.", ["Москва~—", "столица."]),
    "en-US": (" It's well-known.", ["It's", "well-known."]),
    "uk-UA": (" П’ять м'ячів!", ["П’ять", "м'ячів!"]),
    "fr-FR": (" L'été, où ?", ["L'été,", "où~?"]),
    "de-DE": (" Größe z. B. süß.", ["Größe", "z.~B.", "süß."]),
    "es-ES": (" ¿Qué tal, niño?", ["¿Qué", "tal,", "niño?"]),
    "it-IT": (" Perché l'età è 5 €?", ["Perché", "l'età", "è", "5~€?"]),
    "zh-CN": ("今天天气很好。", ["今天", "天气", "很好。"]),
    "ja-JP": ("大阪へ行きました。", ["大阪", "へ", "行きました。"]),
}


def script(text):
    """The text as pieces of five bytes, as the writer's arguments: most cut a character in two."""
    data = text.encode()
    cuts = [data[at:at + 5] for at in range(0, len(data), 5)]
    return ["".join(f"\\x{byte:02x}" for byte in cut) + f"@{0.6 + 0.2 * number:.2f}" for number, cut in enumerate(cuts)]


class Languages(Case):
    def transcribe(self, language, text, form):
        model = self.root / "scripted.bin"
        subprocess.run([WRITER, model, *script(text)], check=True)
        out, _ = self.run_cli("transcribe", CLIPS / "spoken.mp4", "-l", language, "-f", form, "--engine", "whisper",
                              "--model", model)
        return out

    def test_words_are_those_that_a_person_reads(self):
        for language, (text, words) in SENTENCES.items():
            with self.subTest(language):
                found = json.loads(self.transcribe(language, text, "json"))["words"]
                self.assertEqual([word["text"].replace("\u00a0", "~") for word in found], words)
                self.assertEqual(found, sorted(found, key=lambda word: word["start"]))
                for word in found:
                    self.assertLess(word["start"], word["end"])

    def test_captions_put_spaces_only_where_the_language_does(self):
        self.assertIn("\nL'été, où\u00a0?\n", self.transcribe("fr-FR", SENTENCES["fr-FR"][0], "srt"))
        self.assertIn("今天天气很好。", self.transcribe("zh-CN", SENTENCES["zh-CN"][0], "srt"))
        self.assertIn("大阪へ行きました。", self.transcribe("ja-JP", SENTENCES["ja-JP"][0], "vtt"))


class Engines(Case):
    """Which engine serves: a Whisper model if one is installed, else PocketSphinx, else none; or the one asked for."""

    def setUp(self):
        super().setUp()
        self.model = self.root / "ggml-own.bin"
        subprocess.run([WRITER, self.model, " scripted@1", " words@2"], check=True)

    def install(self):
        folder = self.root / ".local/share/korvane/models/whisper"
        folder.mkdir(parents=True, exist_ok=True)
        shutil.copy(self.model, folder)

    def said(self, language, *choice):
        return self.run_cli("transcribe", CLIPS / "spoken.mp4", "-l", language, *choice)[0]

    def test_an_installed_model_goes_before_pocketsphinx(self):
        self.assertIn("machine", self.said("en-US"))
        self.install()
        self.assertEqual(self.said("en-US").split()[:2], ["scripted", "words"])
        for choice in (["--engine", "whisper"], ["--model", "own"], ["--engine", "whisper", "--model", self.model]):
            self.assertEqual(self.said("en-US", *choice).split()[:2], ["scripted", "words"])
        self.assertIn("machine", self.said("en-US", "--engine", "pocketsphinx"))
        self.run_cli("models", "remove", "own")
        self.assertIn("machine", self.said("en-US"))

    def test_pocketsphinx_is_not_asked_for_what_it_does_not_know(self):
        self.assertIn("is not available for 'ru-RU'", self.fails("transcribe", CLIPS / "spoken.mp4", "-l", "ru-RU"))
        self.install()
        self.assertEqual(self.said("ru-RU").split()[:2], ["scripted", "words"])
        self.assertIn("is not available for 'ru-RU'",
                      self.fails("transcribe", CLIPS / "spoken.mp4", "-l", "ru-RU", "--engine", "pocketsphinx"))

    def test_what_is_done_without_is_told_on_the_console_unless_it_is_to_be_quiet(self):
        self.install()
        voices = self.root / ".local/share/korvane/models/whisper/ggml-silero.bin"
        voices.write_bytes(b"lmgg\x0a\0\0\0silero-16k")  # the head of one, and nothing behind it
        out, err = self.run_cli("transcribe", CLIPS / "spoken.mp4", "-l", "en-US")
        told = [line for line in err.splitlines() if "voice model" in line]
        self.assertEqual(len(told), 1, err)
        self.assertRegex(told[0], r'\AThe voice model .*\.\Z')
        self.assertEqual(self.run_cli("transcribe", CLIPS / "spoken.mp4", "-l", "en-US", "--quiet"), (out, ""))

    def test_a_reel_is_made_with_the_engine_that_was_asked_for(self):
        self.install()
        for choice in (["--engine", "whisper"], ["--engine", "pocketsphinx"], ["--model", "own"]):
            words, reel, expected = (self.root / name for name in ("words.json", "reel.mp4", "expected.mp4"))
            self.run_cli("transcribe", CLIPS / "spoken.mp4", "-l", "en-US", "-o", words, *choice)
            self.run_cli("export", CLIPS / "spoken.mp4", "--words", words, "-o", expected)
            self.run_cli("reel", CLIPS / "spoken.mp4", "-l", "en-US", "-o", reel, *choice)
            self.assertEqual(reel.read_bytes(), expected.read_bytes(), choice)
            with self.subTest(choice):
                first = json.loads(words.read_text())["words"][0]["text"]
                self.assertEqual(first == "scripted", "pocketsphinx" not in choice)


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[3:]])
