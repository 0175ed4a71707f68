#!/usr/bin/env python3
"""korvane-cli and the models for speech recognition: installed, interrupted, used, from a server of our own.

models_test.py CLI CLIPS MODEL_WRITER [TEST...]   CLIPS as end_to_end_test.py makes them
"""
import base64
import hashlib
import json
import resource
import signal
import subprocess
import sys
import time
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
WRITER = Path(sys.argv.pop(3)).resolve()
sys.path.append(str(Path(__file__).parents[1] / "support"))
from end_to_end_test import Case  # noqa: E402  (reads the arguments)
from model_server import ModelServer  # noqa: E402


class Models(Case):
    def setUp(self):
        super().setUp()
        self.model = self.root / "scripted.bin"
        subprocess.run([WRITER, self.model, " Добрый@1", " день@2"], check=True)
        self.content = self.model.read_bytes()
        self.server = ModelServer(self.content)
        self.addCleanup(self.server.close)
        self.data = self.root / ".local/share/korvane/models/whisper"
        self.installed, self.part = self.data / "ggml-test.bin", self.data / "ggml-test.bin.part"
        self.write_list()

    def write_list(self, mirror=None, **changes):
        entry = {"id": "test", "name": "Test", "file": "ggml-test.bin", "bytes": len(self.content), "memory": 10**8,
                 "operations": 10**8, "sha256": hashlib.sha256(self.content).hexdigest(), **changes}
        file = self.root / "config/korvane/speech-models.json"
        file.parent.mkdir(exist_ok=True)
        file.write_text(json.dumps({"mirror": mirror or self.server.address, "models": [entry]}))

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

    def test_a_broken_connection_is_taken_up_again(self):
        self.server.breaks_after = len(self.content) // 3
        self.run_cli("models", "install", "test")
        self.assertEqual(self.server.ranges, [None, f"bytes={len(self.content) // 3}-"])
        self.assertEqual(self.installed.read_bytes(), self.content)

    def stop_at_half(self):
        self.server.until = len(self.content) // 2
        process = self.start("models", "install", "test")
        while not (self.part.exists() and self.part.stat().st_size == self.server.until):
            time.sleep(0.01)
        process.send_signal(signal.SIGINT)
        process.communicate(timeout=100)
        self.server.until = len(self.content)

    def test_a_server_without_ranges_or_with_another_version_begins_anew(self):
        for change in ({"has_ranges": False}, {"tag": '"2"'}):
            self.stop_at_half()
            vars(self.server).update(change)
            self.run_cli("models", "install", "test")
            self.assertEqual(self.server.ranges[-1], f"bytes={len(self.content) // 2}-")
            self.assertEqual(self.installed.read_bytes(), self.content)
            self.run_cli("models", "remove", "test")

    def test_the_page_of_a_network_that_wants_a_sign_in_costs_nothing(self):
        self.stop_at_half()
        self.server.page = b"<html>Sign in, please</html>"
        self.assertIn("sent a web page instead of the model", self.fails("models", "install", "test"))
        self.server.page = None
        self.run_cli("models", "install", "test")
        self.assertEqual(self.server.ranges[-1], f"bytes={len(self.content) // 2}-")

    def test_a_proxy_is_gone_through_with_name_and_password(self):
        proxy = self.server.address.rstrip("/")
        self.write_list(mirror="http://models.example/")  # nobody but the proxy has it
        self.environment["http_proxy"] = proxy
        self.run_cli("models", "install", "test")
        self.assertEqual(self.server.paths, ["http://models.example/ggml-test.bin"])
        self.run_cli("models", "remove", "test")
        self.server.password = "Basic " + base64.b64encode(b"ada:secret").decode()
        self.assertIn("wants a name and a password", self.fails("models", "install", "test"))
        self.run_cli("models", "install", "test", "--proxy", proxy.replace("//", "//ada:secret@"))
        self.assertEqual(self.installed.read_bytes(), self.content)

    def test_a_disk_that_fills_up_is_given_back(self):
        limit = lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (len(self.content) // 2,) * 2)
        self.assertIn("The disk is full", self.fails("models", "install", "test", preexec_fn=limit))
        self.assertEqual(list(self.data.iterdir()), [])
        self.assertIn("The disk is full", self.fails("models", "add", self.model, preexec_fn=limit))
        self.assertEqual(list(self.data.iterdir()), [])

    def test_a_small_disk_is_refused_before_anything_is_asked_for(self):
        self.write_list(bytes=8 * 10**15)
        self.assertRegex(self.fails("models", "install", "test"), r"not enough room in .*: .* are needed, and .* are free")
        self.assertEqual(self.server.ranges, [])

    def test_a_mirror_of_the_systems_configuration_serves(self):
        mine = self.root / "config/korvane/speech-models.json"
        system = self.root / "xdg/korvane/speech-models.json"
        system.parent.mkdir(parents=True)
        mine.rename(system)
        self.environment["XDG_CONFIG_DIRS"] = f"{self.root}/none:{self.root}/xdg"
        self.run_cli("models", "install", "test")
        self.assertEqual(self.installed.read_bytes(), self.content)

    def test_two_files_of_nearly_one_name_are_two_models(self):
        self.data.mkdir(parents=True)
        for name in ("x.bin", "ggml-x.bin"):
            (self.data / name).write_bytes(self.content)
        self.assertEqual(set(self.listed()), {"test", "x", "x.bin"})
        self.run_cli("models", "use", "x.bin")
        self.assertIn("in use", self.listed()["x.bin"])

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

    def test_a_damaged_list_is_named_and_nothing_is_downloaded_with_another(self):
        self.write_list(mirror=self.server.address.replace("//", "/"))
        self.assertRegex(self.fails("models", "install", "tiny-q8_0"), r"speech-models.json.*put right or removed")
        (self.root / "config/korvane/speech-models.json").write_text("{")
        self.assertIn("Nothing is downloaded", self.fails("models", "install", "base-q8_0"))
        out, err = self.run_cli("models", "list")
        self.assertIn("base-q8_0", out)
        self.assertRegex(err, r"\A\".*speech-models.json\" is not JSON.*\.\n\Z")

    def test_a_damaged_model_is_named_and_got_again_or_removed(self):
        self.data.mkdir(parents=True)
        self.installed.write_bytes(self.content[:5000])
        (self.data / "ggml-mine.bin").write_text("no model at all")
        lines = self.listed()
        self.assertEqual(set(lines), {"test", "mine"})
        self.assertIn('not usable: "ggml-test.bin" is cut off: it isn\'t all of a model. '
                      "(korvane-cli models install test gets it again, korvane-cli models remove test removes it)",
                      lines["test"])
        self.assertIn('not usable: "ggml-mine.bin" is not a Whisper model', lines["mine"])
        self.assertTrue(lines["mine"].endswith("(korvane-cli models remove mine removes it)"))
        self.assertIn('"ggml-test.bin" is cut off', self.fails("models", "use", "test"))
        self.assertIn('"ggml-test.bin" is cut off', self.fails("transcribe", self.video, "-l", "ru-RU", "--model", "test"))
        self.assertIn("no server has it", self.fails("models", "install", "mine"))
        self.run_cli("models", "install", "test")
        self.assertEqual(self.installed.read_bytes(), self.content)
        self.assertIn("installed, in use", self.listed()["test"])
        self.run_cli("models", "remove", "mine")
        self.assertEqual(list(self.data.iterdir()), [self.installed])

    def test_added_files_and_the_choice_among_them(self):
        self.run_cli("models", "add", self.model)
        self.assertEqual(self.installed.read_bytes(), self.content)  # known by its digest
        other = self.folder / "ggml-mine.bin"
        subprocess.run([WRITER, other, " hallo@1"], check=True)
        _, err = self.run_cli("models", "add", other)
        self.assertIn("Added Whisper mine", err)
        self.assertIn("in use", self.listed()["mine"])  # it was added to be used
        for name in ("test", "mine"):
            self.run_cli("models", "use", name)
            self.assertIn("in use", self.listed()[name])

    def test_a_choice_that_is_not_there_is_said(self):
        self.assertIn("no installed model and no file", self.fails("transcribe", self.video, "-l", "en", "--model", "none"))
        self.assertIn("cut off", self.fails("transcribe", self.video, "-l", "en", "--model", self.cut_off()))

    def cut_off(self):
        file = self.root / "short.bin"
        file.write_bytes(self.content[:5000])
        return file


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[3:]], verbosity=2)
