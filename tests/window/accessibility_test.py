#!/usr/bin/env python3
"""The window for people who hear it or use the keyboard alone: names, roles and states on the accessibility bus, and
where the Tab key goes.

accessibility_test.py PROGRAM CLIPS CLASS...
"""
import sys
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent))
import desk  # noqa: E402
import end_to_end_test  # noqa: E402
from desk import key, until  # noqa: E402

ACTING = {"push button", "check box", "slider", "combo box", "list", "list item", "text", "menu item", "toggle button"}
FRESH = [
    ("push button", "Minimize"), ("push button", "Maximize"), ("push button", "Close"),
    ("combo box", "Spoken language"), ("push button", "Load Video"), ("push button", "Transcribe"),
    ("progress bar", "Progress"), ("combo box", "Font"), ("combo box", "Weight"), ("slider", "Size"),
    ("push button", "Color"), ("check box", "Shadow"), ("push button", "Shadow color"), ("slider", "Blur"),
    ("slider", "Vertical position"), ("check box", "Spring bounce on entry"), ("push button", "Preview"),
    ("push button", "Export"), ("heading", "Words"), ("heading", "Subtitles"), ("heading", "Reel Preview"),
    ("label", "No file selected"), ("label", "Ready"), ("label", "0%"),
]


class Names(end_to_end_test.Case):
    def assert_all_named(self):
        nameless = [f"{t.role} at {t.box}" for t in self.program.all(having="showing") if t.role in ACTING and not t.name]
        self.assertEqual(nameless, [])

    def test_every_control_has_a_name_a_role_and_a_state(self):
        program = self.start()
        for role, name in FRESH:
            program.find(role, name)
        self.assert_all_named()
        for name in ("Preview", "Export", "Transcribe"):
            self.assertFalse(program.find("push button", name).has("enabled"), name)
        self.assertTrue(program.find("push button", "Load Video").has("enabled"))
        self.assertTrue(program.find("check box", "Shadow").has("checked"))
        size = program.find("slider", "Size")
        self.assertEqual(size.value, 72)
        self.assertEqual(size.range, (36, 120))
        self.assertEqual(program.find("combo box", "Spoken language").description, "🇷🇺  Russian")

    def test_press_and_change_by_assistive_technology(self):
        program = self.start(self.video)
        program.find(name="talk.mp4")
        program.find("check box", "Shadow").press()
        until("the shadow to go", lambda: not self.style()["hasShadow"])
        program.find("slider", "Size").set_value(100)
        until("the size", lambda: self.style()["fontSize"] == 100)
        self.choose_english()
        bar = program.find("progress bar", "Progress")
        self.assertEqual((bar.value, bar.range), (0, (0, 1)))
        program.find("push button", "Transcribe").press()
        until("words", lambda: program.all("list", "Words", "showing"), 90)
        self.assertEqual(bar.value, 1)
        self.assert_all_named()
        count = len(self.tokens())
        self.assertEqual(self.chosen(), [True] * count)
        self.tokens()[1].press()
        until("the second word to go", lambda: self.chosen() == [i != 1 for i in range(count)])


class Keyboard(end_to_end_test.Case):
    def focused(self):
        return next(((t.role, t.name) for t in self.program.all(having="focused") if t.role in ACTING), None)

    def test_the_tab_key_reaches_everything_once_and_comes_round(self):
        self.start(self.video)
        self.program.find(name="talk.mp4")
        self.choose_english()
        self.transcribe()
        seen = []
        for _ in range(40):
            key("Tab")
            now = until("a focus", self.focused)
            if now in seen:
                break
            seen.append(now)
        first = seen.index(("combo box", "Spoken language"))
        seen = seen[first:] + seen[:first]
        self.assertEqual(seen[-3:], FRESH[:3], "the title buttons come last")
        words = [s for s in seen if s[0] in ("check box", "list", "list item") and s[1] not in
                 ("Shadow", "Spring bounce on entry")]
        self.assertEqual(len(words), 1, f"the words are one stop: {seen}")
        for wanted in [("combo box", "Spoken language"), ("push button", "Load Video"), ("push button", "Transcribe"),
                       ("push button", "All"), ("push button", "None"), ("combo box", "Font"), ("slider", "Size"),
                       ("push button", "Color"), ("check box", "Shadow"), ("push button", "Shadow color"),
                       ("slider", "Blur"), ("check box", "Spring bounce on entry"), ("slider", "Vertical position"),
                       ("push button", "Close")]:
            self.assertIn(wanted, seen)
        self.assertLess(seen.index(("push button", "Load Video")), seen.index(("push button", "Transcribe")))
        self.assertLess(seen.index(("push button", "Transcribe")), seen.index(words[0]))
        self.assertLess(seen.index(words[0]), seen.index(("combo box", "Font")))

    def test_transcribe_and_stop_take_turns_with_the_keyboard(self):
        self.start(self.video)
        self.program.find(name="talk.mp4")
        self.choose_english()
        for _ in range(20):
            key("Tab")
            if until("a focus", self.focused) == ("push button", "Transcribe"):
                break
        key("space")
        until("Stop to have the keyboard", lambda: self.focused() == ("push button", "Stop"))
        key("space")
        self.status("Cancelled")
        until("Transcribe to have it again", lambda: self.focused() == ("push button", "Transcribe"))

    def test_after_a_transcription_the_keyboard_is_with_the_words(self):
        """Else a Space meant for a word begins all over again."""
        self.start(self.video)
        self.program.find(name="talk.mp4")
        self.choose_english()
        self.transcribe()
        until("the words to have the keyboard", lambda: self.focused() and self.focused()[0] in ("list", "list item"))
        key("space")
        until("the first word to go", lambda: not self.chosen()[0])


if __name__ == "__main__":
    desk.sit_down()
    unittest.main(argv=[sys.argv[0], *sys.argv[3:]], verbosity=2)
