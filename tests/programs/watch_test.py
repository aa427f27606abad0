#!/usr/bin/env python3
"""tarno-status watch: lines for bars and scripts."""

import datetime
import json
import os
import shutil
import signal
import subprocess
import sys
import time
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "../support"))
from program_test_case import BIN, RECORD, ProgramTest  # noqa: E402


def ago(seconds):
    moment = datetime.datetime.now(datetime.timezone.utc) - datetime.timedelta(seconds=seconds)
    return moment.isoformat().replace("+00:00", "Z")


class Watch(ProgramTest):
    def start(self, *arguments):
        watch = subprocess.Popen([BIN / "tarno-status", "watch", *arguments], stdout=subprocess.PIPE,
                                 stderr=subprocess.PIPE, env=self.environment, text=True)
        self.addCleanup(watch.communicate)
        self.addCleanup(watch.kill)
        return watch

    def first(self, *arguments):
        watch = self.start(*arguments)
        line = watch.stdout.readline()
        watch.kill()
        return line

    def test_a_line_for_every_change_and_none_without(self):
        watch = self.start("--format", "{status} {age}|{detail_line}")
        line = watch.stdout.readline
        self.assertEqual(line(), "unknown |Waiting for Tarno status.\n")
        self.save(at=ago(0))
        self.assertEqual(line(), "locked 0s|Mac locked.\n")
        (self.group / "another").touch()  # is no change
        self.save({"status": "unlocked"}, at=ago(149.5))
        self.assertEqual(line(), "unlocked 2m|Waiting for Tarno status.\n")
        self.assertEqual(line(), "unknown 2m|Mac status is 2m old. Refresh Tarno before trusting it.\n")
        shutil.rmtree(self.group.parent)
        self.assertEqual(line(), "unknown |Waiting for Tarno status.\n")
        self.group.mkdir(parents=True, mode=0o700)
        (self.group / "new").write_text("{", encoding="utf-8")
        (self.group / "new").rename(self.group / "defaults.json")
        self.assertRegex(watch.stderr.readline(), r"\Atarno-status: [^\n]* is damaged[^\n]*\n\Z")
        self.assertEqual(line(), "unknown |Waiting for Tarno status.\n")
        self.save(at=ago(0))  # sets the damaged file aside, and for a moment there is none
        self.assertIn("locked 0s|Mac locked.\n", (said := line(), said if said.startswith("locked") else line()))
        watch.send_signal(signal.SIGTERM)
        self.assertEqual((watch.wait(20), watch.stdout.read(), watch.stderr.read()), (-signal.SIGTERM, "", ""))

    def test_it_sleeps_until_something_changes(self):
        self.save(at=ago(0))
        watch = self.start()
        watch.stdout.readline()

        def switches():
            with open(f"/proc/{watch.pid}/status", encoding="ascii") as status:
                return [line for line in status if "ctxt_switches" in line][0]

        time.sleep(0.2)
        before = switches()
        time.sleep(1)
        self.assertEqual(switches(), before)

    def test_a_reader_that_goes_ends_it_quietly(self):
        asleep = self.start()
        asleep.stdout.readline()
        asleep.stdout.close()
        gone = subprocess.run(["sh", "-c", '{ "$0" watch; echo $? >&2; } | true', BIN / "tarno-status"],
                              capture_output=True, env=self.environment, timeout=20, check=False)
        self.assertEqual(gone.stderr, b"0\n")
        self.assertEqual((asleep.wait(20), asleep.stderr.read()), (0, ""))
        asleep.stdout = None

    def test_formats(self):
        self.assertEqual(self.first("--json"), "null\n")
        self.assertEqual(json.loads(self.first("--format", "waybar")),
                         {"text": "No status", "alt": "none", "class": "none",
                          "tooltip": "Mac\nWaiting for Tarno status.\nPresence quiet"})
        full = {**RECORD, "confidence": 100, "reason": "<Mac> & \u001b", "companion_present": True}
        for record, word, percentage in ((full, "locked", 100), ({**full, "confidence": 0}, "locked", 0),
                                         ({**full, "confidence": 101}, "locked", None),
                                         ({**full, "confidence": -1}, "locked", None),
                                         ({**full, "stale": True}, "stale", None)):
            self.save(record, at=ago(1))
            line = self.first("--format", "waybar")
            said = json.loads(line)
            self.assertEqual([said["alt"], said["class"], said.get("percentage")], [word, word, percentage], line)
        self.assertEqual(said["text"], "Status stale")
        self.save({**full, "face_present": False}, at=ago(1))
        said = json.loads(self.first("--format", "waybar"))
        self.assertEqual(said["tooltip"], "Kivo's Mac\n&lt;Mac&gt; &amp; \u001b\nWatch near")
        self.save(full, at=ago(0))
        shown = json.loads(self.run_program("tarno-status", "show", "--json").stdout)
        line = self.first("--json")
        self.assertEqual({**json.loads(line), "age_seconds": 0, "snapshot": None},
                         {**shown, "age_seconds": 0, "snapshot": None})
        self.assertEqual(json.loads(line)["snapshot"]["reason"], full["reason"])
        self.assertEqual(self.first(), "Locked: <Mac> & ?\n")
        self.assertEqual(self.first("--format", "{{{status_line}}}, {device} {presence} {received_at}"),
                         "{Locked}, Kivo's Mac Face seen " + shown["received_at"] + "\n")
        for wrong in ("", "text", "{", "{}", "}{age}", "{age", "{Age}", "{{age}}"):
            self.run_program("tarno-status", "watch", "--format", wrong, code=64)
        self.run_program("tarno-status", "watch", "--json", "--format", "waybar", code=64)

    def test_where_nothing_can_be_written_or_watched(self):
        with open("/dev/full", "wb") as full:
            done = subprocess.run([BIN / "tarno-status", "watch"], stdout=full, stderr=subprocess.PIPE,
                                  env=self.environment, check=False)
        self.assertEqual(done.returncode, 74, done.stderr)
        if "LSAN_OPTIONS" in os.environ:
            return  # a sanitizer needs descriptors of its own
        done = subprocess.run(["sh", "-c", 'ulimit -n 5; exec "$0" watch', BIN / "tarno-status"], capture_output=True,
                              env=self.environment, check=False)
        self.assertEqual((done.returncode, done.stdout), (71, b""), done.stderr)


if __name__ == "__main__":
    unittest.main()
