#!/usr/bin/env python3
"""korvane-cli in the nine languages: what a scripted model says arrives as words, lines and captions.

languages_test.py CLI CLIPS MODEL_WRITER [TEST...]   CLIPS as end_to_end_test.py makes them
"""
import json
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


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[3:]])
