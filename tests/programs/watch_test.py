"""tarno-status watch: lines for bars and scripts."""

import datetime
import json
import os
import shutil
import signal
import subprocess
import time
import unittest

from program_test_case import RECORD, ProgramTest

WATCH = ("tarno-status", "watch")


def ago(seconds):
    moment = datetime.datetime.now(datetime.timezone.utc) - datetime.timedelta(seconds=seconds)
    return moment.isoformat().replace("+00:00", "Z")


class Watch(ProgramTest):
    def watch(self, *arguments):
        return self.start(*WATCH, *arguments, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)

    def first(self, *arguments):
        return self.watch(*arguments).stdout.readline()

    def test_a_line_for_every_change_and_none_without(self):
        watch = self.watch("--format", "{status} {age}|{detail_line}")
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
        watch = self.watch("--format", "{status}")
        watch.stdout.readline()

        def switches():
            with open(f"/proc/{watch.pid}/status", encoding="ascii") as status:
                return [line for line in status if "ctxt_switches" in line][0]

        time.sleep(0.2)
        before = switches()
        time.sleep(1)
        self.assertEqual(switches(), before)
        shutil.copy(self.group / "defaults.json", self.group / "new")
        (self.group / "new").rename(self.group / "defaults.json")  # only the age differs
        self.wait_for(lambda: switches() != before)
        self.save({"status": "unlocked"}, at=ago(0))
        self.assertEqual(watch.stdout.readline(), "unlocked\n")

    def test_a_reader_that_goes_ends_it_quietly(self):
        asleep = self.watch()
        asleep.stdout.readline()
        asleep.stdout.close()
        reader, writer = os.pipe()
        os.close(reader)
        gone = self.call(*WATCH, stdout=writer)
        os.close(writer)
        self.assertEqual((gone.returncode, gone.stderr), (0, b""))
        self.assertEqual((asleep.wait(20), asleep.stderr.read()), (0, ""))

    def test_formats(self):
        self.assertEqual(self.first("--json"), "null\n")
        self.assertEqual(json.loads(self.first("--format", "waybar")),
                         {"text": "No status", "alt": "none", "class": "none",
                          "tooltip": "Mac\nWaiting for Tarno status.\nPresence quiet"})
        full = {**RECORD, "reason": "<Mac> & \u001b"}
        common = {"text": "Locked", "alt": "locked", "class": "locked",
                  "tooltip": "Kivo's Mac\n&lt;Mac&gt; &amp; \u001b\nFace seen"}
        for changes, differences in (({"confidence": 100}, {"percentage": 100}), ({"confidence": 0}, {"percentage": 0}),
                                     ({"confidence": 101}, {}), ({"confidence": -1}, {}),
                                     ({"confidence": 100, "stale": True},
                                      {"text": "Status stale", "alt": "stale", "class": "stale", "tooltip":
                                       "Kivo's Mac\nMac status is 1m old. Refresh Tarno before trusting it.\nFace seen"})):
            self.save({**full, **changes}, at=ago(61))
            self.assertEqual(json.loads(self.first("--format", "waybar")), {**common, **differences})
        self.save(full, at=ago(0))
        shown = json.loads(self.run_program("tarno-status", "show", "--json").stdout)
        said = json.loads(self.first("--json"))
        for report in (shown, said):  # both differ in the age
            self.assertLess(report.pop("age_seconds") + report["snapshot"].pop("age_seconds"), 10)
        self.assertEqual(said, shown)
        self.assertEqual(self.first(), "Locked: <Mac> & ?\n")
        self.assertEqual(self.first("--format", "{{{status_line}}}, {device} {presence} {received_at}"),
                         "{Locked}, Kivo's Mac Face seen " + shown["received_at"] + "\n")
        for wrong in ("", "text", "{", "{}", "}{age}", "{age", "{Age}", "{{age}}"):
            self.run_program(*WATCH, "--format", wrong, code=64)
        self.run_program(*WATCH, "--json", "--format", "waybar", code=64)

    def test_where_nothing_can_be_written_or_watched(self):
        self.assertEqual(self.call("sh", "-c", "tarno-status watch > /dev/full").returncode, 74)
        if "LSAN_OPTIONS" not in os.environ:  # a sanitizer needs descriptors of its own
            done = self.call("sh", "-c", "ulimit -n 5; exec tarno-status watch")
            self.assertEqual((done.returncode, done.stdout), (71, b""), done.stderr)
