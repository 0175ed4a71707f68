#!/usr/bin/env python3
"""korvane-cli and the models for speech recognition: installed, interrupted, used, from a server of our own.

models_test.py CLI CLIPS MODEL_WRITER [TEST...]   CLIPS as end_to_end_test.py makes them
"""
import hashlib
import http.server
import json
import re
import signal
import subprocess
import sys
import threading
import time
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
WRITER = Path(sys.argv.pop(3)).resolve()
from end_to_end_test import Case  # noqa: E402  (reads the arguments)


class Server:
    """Has one file. Answers by range; stops after `until` bytes of a request until it is let go."""

    def __init__(self, content):
        self.content, self.until, self.ranges, self.go_on = content, len(content), [], threading.Event()
        server = self

        class Handler(http.server.BaseHTTPRequestHandler):
            def do_GET(self):
                asked = self.headers.get("Range")
                server.ranges.append(asked)
                begin = int(re.fullmatch(r"bytes=(\d+)-", asked)[1]) if asked else 0
                self.send_response(206 if asked else 200)
                self.send_header("ETag", '"1"')
                self.send_header("Content-Length", str(len(server.content) - begin))
                if asked:
                    self.send_header("Content-Range", f"bytes {begin}-{len(server.content) - 1}/{len(server.content)}")
                self.end_headers()
                try:
                    self.wfile.write(server.content[begin:server.until])
                    if server.until < len(server.content):
                        server.go_on.wait()
                        self.wfile.write(server.content[max(begin, server.until):])
                except ConnectionError:
                    pass

            def log_message(self, *_):
                pass

        self.server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        self.address = f"http://127.0.0.1:{self.server.server_port}/"
        threading.Thread(target=self.server.serve_forever, args=(0.02,), daemon=True).start()

    def close(self):
        self.go_on.set()
        self.server.shutdown()
        self.server.server_close()


class Models(Case):
    def setUp(self):
        super().setUp()
        self.model = self.root / "scripted.bin"
        subprocess.run([WRITER, self.model, " Добрый@1", " день@2"], check=True)
        self.content = self.model.read_bytes()
        self.server = Server(self.content)
        self.addCleanup(self.server.close)
        self.data = self.root / ".local/share/korvane/models/whisper"
        self.installed, self.part = self.data / "ggml-test.bin", self.data / "ggml-test.bin.part"
        self.write_list()

    def write_list(self, **changes):
        entry = {"id": "test", "name": "Test", "file": "ggml-test.bin", "bytes": len(self.content), "memory": 10**8,
                 "operations": 10**8, "sha256": hashlib.sha256(self.content).hexdigest(), **changes}
        file = self.root / "config/korvane/speech-models.json"
        file.parent.mkdir(exist_ok=True)
        file.write_text(json.dumps({"mirror": self.server.address, "models": [entry]}))

    def listed(self):
        return {line.split()[0]: line for line in self.run_cli("models", "list")[0].splitlines()}

    def test_a_model_is_installed_used_and_removed(self):
        self.assertNotIn("installed", self.listed()["test"])
        self.assertIn("recommended here", self.listed()["test"])
        out, err = self.run_cli("models", "install", "test")
        self.assertEqual(out, "")
        self.assertRegex(err, rf"\A(Downloading: \d+%\n)+Installed Test, \d+ MB, as {self.installed}\.\n\Z")
        self.assertEqual(self.installed.read_bytes(), self.content)
        self.assertIn("; installed, in use", self.listed()["test"])
        self.assertIn("installed already", self.run_cli("models", "install", "test")[1])
        self.assertEqual(self.server.ranges, [None])
        self.run_cli("models", "remove", "test")
        self.assertEqual(list(self.data.iterdir()), [])

    def test_nothing_is_downloaded_unasked(self):
        for arguments in (["models", "list"], ["languages"], ["models", "path"], ["--help"]):
            self.run_cli(*arguments)
        self.run_cli("transcribe", self.video, "-l", "ru-RU", code=1)
        self.assertEqual(self.server.ranges, [])
        self.assertFalse(self.data.exists())

    def test_quiet_prints_nothing(self):
        self.assertEqual(self.run_cli("models", "install", "test", "--quiet"), ("", ""))
        self.assertEqual(self.run_cli("models", "path", "-q"), (f"{self.data}\n", ""))

    def test_stopped_and_resumed(self):
        half = self.server.until = len(self.content) // 2
        process = self.start("models", "install", "test")
        line = ""
        while line != "Downloading: 50%\n" and (line := process.stderr.readline()):
            pass
        began = time.monotonic()
        process.send_signal(signal.SIGINT)
        _, err = process.communicate(timeout=100)
        self.assertLess(time.monotonic() - began, 1.0)
        self.assertEqual((process.returncode, err), (130, "korvane-cli: Stopped.\n"))
        self.assertEqual(self.part.stat().st_size, half)
        self.assertIn("downloaded", self.listed()["test"])
        self.server.until = len(self.content)
        self.run_cli("models", "install", "test")
        self.assertEqual(self.server.ranges, [None, f"bytes={half}-"])
        self.assertEqual(self.installed.read_bytes(), self.content)

    def test_killed_and_resumed_while_another_waits_outside(self):
        half = self.server.until = len(self.content) // 2
        process = self.start("models", "install", "test")
        while not (self.part.exists() and self.part.stat().st_size == half):
            time.sleep(0.01)
        self.assertIn("being downloaded already", self.fails("models", "install", "test"))
        process.kill()
        process.communicate()
        self.server.until = len(self.content)
        self.run_cli("models", "install", "test")
        self.assertEqual(self.server.ranges, [None, f"bytes={half}-"])

    def test_what_fails_says_why_in_a_sentence(self):
        self.assertIn('no model "other"', self.fails("models", "install", "other"))
        self.assertIn("no installed model", self.fails("models", "remove", "test"))
        self.assertIn("no installed model", self.fails("models", "use", "test"))
        self.assertIn("There is no file", self.fails("models", "add", "none.bin"))
        self.assertIn("not a Whisper model", self.fails("models", "add", self.video))
        self.assertIn("proxy", self.fails("models", "install", "test", "--proxy", "http://127.0.0.1:9"))
        self.write_list(sha256="0" * 64)
        self.assertIn("SHA-256", self.fails("models", "install", "test"))
        self.write_list(bytes=5)
        self.assertIn("instead of 5", self.fails("models", "install", "test"))
        self.assertFalse(self.installed.exists())

    def test_a_part_that_is_kept_is_spoken_of(self):
        self.data.mkdir(parents=True)
        self.part.write_bytes(self.content[:1000])
        _, err = self.run_cli("models", "install", "test", "--proxy", "http://127.0.0.1:9", code=1)
        self.assertTrue(err.endswith("What has arrived is kept; the same command goes on from there.\n"), err)

    def test_a_part_can_be_removed_unless_it_still_grows(self):
        self.server.until = len(self.content) // 2
        process = self.start("models", "install", "test")
        while not (self.part.exists() and self.part.stat().st_size == self.server.until):
            time.sleep(0.01)
        self.assertIn("being downloaded", self.fails("models", "remove", "test"))
        process.kill()
        process.communicate()
        _, err = self.run_cli("models", "remove", "test")
        self.assertRegex(err, r"\ARemoved the \d+(\.\d)? MB that had been downloaded of Test\.\n\Z")
        self.assertEqual(list(self.data.iterdir()), [])

    def test_columns_stand_below_one_another_whatever_the_letters(self):
        self.data.mkdir(parents=True)
        (self.data / "модель.bin").write_bytes(self.content)
        lines = self.run_cli("models", "list")[0].splitlines()
        self.assertEqual(len({line.index(" MB, ") for line in lines}), 1, lines)

    def test_a_damaged_list_is_named_and_the_built_in_one_serves(self):
        (self.root / "config/korvane/speech-models.json").write_text("{")
        out, err = self.run_cli("models", "list")
        self.assertIn("base-q8_0", out)
        self.assertRegex(err, r"\A\".*speech-models.json\" is not JSON.*\.\n\Z")

    def test_files_that_are_no_use_are_named(self):
        self.data.mkdir(parents=True)
        self.installed.write_bytes(self.content[:5000])
        self.assertIn('not usable: "ggml-test.bin" is cut off', self.run_cli("models", "list")[0])

    def test_added_files_and_the_choice_among_them(self):
        self.run_cli("models", "add", self.model)
        self.assertEqual(self.installed.read_bytes(), self.content)  # known by its digest
        other = self.folder / "ggml-mine.bin"
        subprocess.run([WRITER, other, " hallo@1"], check=True)
        _, err = self.run_cli("models", "add", other)
        self.assertIn("Added Whisper mine", err)
        for name in ("test", "mine"):
            self.run_cli("models", "use", name)
            self.assertIn("in use", self.listed()[name])

    def test_a_model_speaks(self):
        self.run_cli("models", "install", "test")
        for choice in ([], ["--engine", "whisper"], ["--model", "test"], ["--model", self.model]):
            out, _ = self.run_cli("transcribe", self.video, "-l", "ru-RU", *choice)
            self.assertEqual(out.split()[:2], ["Добрый", "день"])
        out, _ = self.run_cli("transcribe", self.video, "-l", "en-US", "--engine", "pocketsphinx")
        self.assertIn("machine", out)

    def test_a_choice_that_is_not_there_is_said(self):
        self.assertIn("no installed model and no file", self.fails("transcribe", self.video, "-l", "en", "--model", "none"))
        self.assertIn("cut off", self.fails("transcribe", self.video, "-l", "en", "--model", self.cut_off()))

    def cut_off(self):
        file = self.root / "short.bin"
        file.write_bytes(self.content[:5000])
        return file


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[3:]], verbosity=2)
