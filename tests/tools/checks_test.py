#!/usr/bin/env python3
"""The checks of tools/ are run over small trees that break one rule each: checks_test.py TOOLS_FOLDER"""
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

TOOLS = Path(sys.argv.pop(1))


class Tree(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)

    def put(self, name: str, content: str):
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(content, encoding="utf-8")

    def run_check(self, tool: str) -> subprocess.CompletedProcess:
        return subprocess.run([TOOLS / tool, self.root], capture_output=True, text=True, check=False)


class Layers(Tree):
    def refusals(self, name: str, line: str) -> str:
        self.put(name, f"// one\n{line}\n")
        result = self.run_check("check_layers")
        self.assertEqual(result.returncode, 1 if f"{name}:" in result.stdout else 0, result.stdout + result.stderr)
        return result.stdout

    def test_an_include_that_goes_down_is_fine(self):
        for name, line in [
            ("cli/A.cpp", '#include "editor/VideoEditor.h"'),
            ("editor/A.cpp", '#include "platform/av/Asset.h"'),
            ("platform/ffmpeg/A.cpp", "#include <libavcodec/avcodec.h>"),
            ("tests/editor/A.cpp", "#include <libavcodec/avcodec.h>"),
            ("platform/tasks/A.cpp", "#include <QObject>"),
            ("media/A.cpp", "#include <vector>"),
        ]:
            self.assertIn("Every include goes down.", self.refusals(name, line))

    def test_an_include_that_climbs_is_found_with_its_line(self):
        self.assertIn("platform/av/A.cpp:2: platform/av may not include editor",
                      self.refusals("platform/av/A.cpp", '#include "editor/VideoEditor.h"'))

    def test_each_forbidden_arrow_is_found(self):
        for name, target in [
            ("platform/time/A.h", "platform/tasks/MainQueue.h"), ("platform/ffmpeg/A.h", "platform/av/Asset.h"),
            ("platform/speech/A.h", "model/Language.h"), ("model/A.h", "media/VideoProcessor.h"),
            ("media/A.h", "editor/VideoEditor.h"), ("editor/A.h", "media/VideoProcessor.h"),
            ("editor/A.h", "cli/Console.h"), ("cli/A.h", "ui/controls/Theme.h"),
            ("ui/cards/A.h", "app/ContentView.h"), ("ui/words/A.h", "media/VideoProcessor.h"),
            ("ui/controls/A.h", "ui/style/StyleEditor.h"), ("tests/editor/ATest.cpp", "cli/Console.h"),
        ]:
            with self.subTest(name=name, target=target):
                self.assertIn(f"{name}:2: ", self.refusals(name, f'  #  include "{target}"'))
                (self.root / name).unlink()

    def test_confined_libraries_are_found_elsewhere(self):
        for name, line in [
            ("platform/av/A.cpp", "#include <libavformat/avformat.h>"), ("cli/A.cpp", "#include <libswscale/swscale.h>"),
            ("editor/A.cpp", "#include <zimg.h>"), ("media/A.cpp", "#include <pocketsphinx.h>"),
            ("platform/layers/A.cpp", "#include <fontconfig/fontconfig.h>"),
        ]:
            with self.subTest(name=name):
                self.assertIn("which stays in", self.refusals(name, line))
                (self.root / name).unlink()

    def test_folders_without_qt_stay_without(self):
        for name in ("platform/time/A.h", "platform/av/A.h", "media/A.h", "editor/A.h"):
            with self.subTest(name=name):
                self.assertIn("does without Qt", self.refusals(name, "#include <QString>"))
                (self.root / name).unlink()

    def test_a_folder_that_nobody_placed_is_found(self):
        self.assertIn("not in the table", self.refusals("platform/new/A.h", ""))


class Words(Tree):
    def test_a_clean_tree_is_fine(self):
        self.put("a.cpp", "// Reasons.\n")
        self.assertEqual(self.run_check("check_words").returncode, 0)

    def test_each_kind_of_word_is_found_with_its_line(self):
        for line in ["// TO" "DO: later", "// FIX" "ME", "throw not im" "plemented", "TEST(A, DIS" "ABLED_b)",
                     "// as Pa" "rt 3.1 says", "cat /ro" "ot/x", "see deb" "ian.org"]:
            with self.subTest(line=line):
                self.put("a.cpp", f"// one\n{line}\n")
                result = self.run_check("check_words")
                self.assertEqual(result.returncode, 1)
                self.assertIn("a.cpp:2: ", result.stdout)


    def test_what_python_makes_is_found_once_git_keeps_it(self):
        subprocess.run(["git", "init", "-q", self.root], check=True)
        for name in ("tests/__pycache__/a.cpython-311.pyc", "tests/b.pyc", "tests/__pycache__/notes"):
            with self.subTest(name=name):
                self.put(name, "made")
                self.assertEqual(self.run_check("check_words").returncode, 0)
                subprocess.run(["git", "-C", self.root, "add", "-f", name], check=True)
                result = self.run_check("check_words")
                self.assertEqual(result.returncode, 1)
                self.assertIn(f"{name}: made anew by Python", result.stdout)
                subprocess.run(["git", "-C", self.root, "rm", "-q", "--cached", name], check=True)


class Awaits(Tree):
    def result_of(self, statement: str) -> subprocess.CompletedProcess:
        self.put("app/A.cpp", f"MainTask f() {{\n{statement}\n}}\n")
        return self.run_check("check_awaits")

    def test_a_named_variable_in_a_statement_of_its_own_is_fine(self):
        for statement in [
            "co_await call;", "auto words = co_await call;", "const int n = co_await call;", "n = co_await call;",
            "std::vector<Word> words = co_await call;", "const auto& words = co_await call;",
            "try { co_await call; } catch (const Error&) { fail(); }", "if (ready) { co_await call; }",
            "// never co_await f();", "/* if (co_await f())\n */", 'log("co_await f()");', "co_return;",
            "n = 1'000; co_await call; m = 2'000;", 'log(R"(co_await f();)");',
        ]:
            with self.subTest(statement=statement):
                result = self.result_of(statement)
                self.assertEqual(result.returncode, 0, result.stdout + result.stderr)

    def test_everything_else_is_found_with_its_line(self):
        for statement in [
            "co_await f();", "auto n = co_await f(Options{1});", "co_await run([copy] { work(copy); });",
            "if (co_await call) return;", "while (co_await call) {}", "use(co_await call);", "co_return co_await call;",
            "return co_await call;", "auto n = co_await call + 1;", "auto n = (co_await call).size();",
            "co_await (call);", "co_await std::move(call);", "co_await object.call;", "for (auto n = co_await call;;) {}",
            "auto n{co_await call};", "auto n = ready ? co_await call : 0;", "co_await\n  f();", "co_yield f();",
            "int a = 1, b = co_await call;", "else co_await call;",
        ]:
            with self.subTest(statement=statement):
                result = self.result_of(statement)
                self.assertEqual(result.returncode, 1, result.stdout + result.stderr)
                self.assertIn("app/A.cpp:2: ", result.stdout)


class Format(Tree):
    def test_only_formatted_sources_pass(self):
        (self.root / ".clang-format").write_text((TOOLS.parent / ".clang-format").read_text())
        for content, code in [("int a;\n", 0), ("int   a;\n", 1)]:
            self.put("a.cpp", content)
            self.assertEqual(self.run_check("check_format").returncode, code, content)


if __name__ == "__main__":
    unittest.main()
