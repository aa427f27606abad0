"""Tests the lines that tarno-status watch prints for bars and scripts."""
import datetime
import json
import os
import re
import shutil
import signal
import subprocess
import time

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

    def replace(self, document):
        """Replaces the store's file as another program would."""
        (self.group / "new").write_text(document, encoding="utf-8")
        (self.group / "new").rename(self.group / "defaults.json")

    def test_a_line_for_every_change_and_none_without(self):
        watch = self.watch("--format", "{status} {age}|{detail_line}")
        line = watch.stdout.readline
        self.assertEqual(line(), "unknown |Waiting for Tarno status.\n")
        self.save(at=ago(0))
        self.assertRegex(line(), r"\Alocked \ds\|Mac locked.\n\Z")
        (self.group / "another").touch()  # must cause no line
        self.save({"status": "unlocked"}, at=ago(145))
        self.assertEqual(line(), "unlocked 2m|Waiting for Tarno status.\n")
        self.assertEqual(line(), "unknown 2m|Mac status is 2m old. Refresh Tarno before trusting it.\n")
        shutil.rmtree(self.group.parent)
        self.assertEqual(line(), "unknown |Waiting for Tarno status.\n")
        watch.send_signal(signal.SIGTERM)
        self.assertEqual((watch.wait(20), watch.stdout.read(), watch.stderr.read()), (-signal.SIGTERM, "", ""))

    def test_since_is_when_the_status_became_what_it_is(self):
        self.save({"status": "locked"}, at=ago(100))
        watch = self.watch("--format", "{status}\t{since}")

        def reads(status, seconds):
            said, since = watch.stdout.readline().split("\t")
            self.assertEqual((said, since[:10]), (status, ago(seconds)[:10]))
            age = datetime.datetime.now(datetime.timezone.utc) - datetime.datetime.fromisoformat(since.strip()[:-1] + "+00:00")
            self.assertLess(abs(age.total_seconds() - seconds), 30)

        reads("locked", 100)
        self.save({"status": "locked"}, at=ago(0))  # no line: the status is the same
        self.save({"status": "unlocked"}, at=ago(0))
        reads("unlocked", 0)
        self.group.chmod(0o777)
        reads("unknown", 0)
        self.assertIn("can be written by group or others", watch.stderr.readline())
        self.group.chmod(0o700)
        reads("unlocked", 0)
        self.save({"status": "locked"}, at=ago(250))
        reads("unknown", 99)

    def test_each_fault_is_said_once(self):
        self.save()
        watch = self.watch("--format", "{status}")
        self.assertEqual(watch.stdout.readline(), "unknown\n")
        plain = '{"tarno.lastStatusValue": {"type": "string", "value": "%s"}}'
        for document, fault in (("{", "[^\n]* is damaged: [^\n]*"), (plain % "locked", "there is a plain value, but no record"),
                                (plain % "unlocked", ""), ("[", "[^\n]* is damaged: [^\n]*")):
            self.replace(document)
            if fault:
                self.assertRegex(watch.stderr.readline(), rf"\Atarno-status: {fault}\n\Z")
        self.save(at=ago(0))  # sets the damaged file aside first
        self.assertEqual(watch.stdout.readline(), "locked\n")
        watch.terminate()
        self.assertEqual((watch.wait(20), watch.stderr.read()), (-signal.SIGTERM, ""))

    def test_it_sleeps_until_something_changes(self):
        self.save(at=ago(0))
        watch = self.watch("--format", "{status}")
        watch.stdout.readline()

        def switches():
            with open(f"/proc/{watch.pid}/status", encoding="ascii") as status:
                text = status.read()
            return "(sleeping)" in text and re.findall("^voluntary_ctxt_switches.*", text, re.M)

        def sleeps():
            before = switches()
            time.sleep(1.2)
            return before and before == switches()

        self.wait_for(sleeps)
        before = switches()
        self.assertTrue(sleeps())
        self.replace((self.group / "defaults.json").read_text())  # the same report: no new line
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

    def test_json_is_what_show_prints(self):
        self.assertEqual(self.first("--json"), "null\n")
        self.save({**RECORD, "reason": "<Mac> & \u001b"}, at=ago(0))
        said, shown = self.first("--json"), self.run_program("tarno-status", "show", "--json").stdout.decode()
        ages = re.compile(r'"age_seconds": ?\d')  # differs if a second passes in between
        self.assertEqual(json.loads(ages.sub('"age_seconds":0', said)), json.loads(ages.sub('"age_seconds":0', shown)))

    def test_waybar_gets_its_own_json(self):
        self.assertEqual(json.loads(self.first("--format", "waybar")),
                         {"text": "No status", "alt": "none", "class": "none",
                          "tooltip": "Mac\nWaiting for Tarno status.\nPresence quiet"})
        common = {"text": "Locked", "alt": "locked", "class": "locked",
                  "tooltip": "Kivo's Mac\n&lt;Mac&gt; &amp; \u001b\nFace seen"}
        for changes, differences in (({"confidence": 100}, {"percentage": 100}), ({"confidence": 0}, {"percentage": 0}),
                                     ({"confidence": 101}, {}), ({"confidence": -1}, {}),
                                     ({"confidence": 100, "stale": True},
                                      {"text": "Status stale", "alt": "stale", "class": "stale", "tooltip":
                                       "Kivo's Mac\nMac status is 1m old. Refresh Tarno before trusting it.\nFace seen"})):
            with self.subTest(changes):
                self.save({**RECORD, "reason": "<Mac> & \u001b", **changes}, at=ago(61))
                self.assertEqual(json.loads(self.first("--format", "waybar")), {**common, **differences})

    def test_custom_formats(self):
        self.save({**RECORD, "reason": "<Mac> & \u001b"}, at=(at := ago(0)))
        self.assertEqual(self.first(), "Locked: <Mac> & ?\n")
        self.assertRegex(self.first("--format", "{{{status_line}}}, {device} {presence} {received_at}"),
                         r"\A\{Locked\}, Kivo's Mac Face seen " + at[:19])
        for wrong in ("", "text", "{", "{}", "}{age}", "{age", "{Age}", "{{age}}"):
            with self.subTest(wrong):
                self.run_program(*WATCH, "--format", wrong, code=64)
        self.run_program(*WATCH, "--json", "--format", "waybar", code=64)

    def test_where_nothing_can_be_written_or_watched(self):
        self.assertEqual(self.call("sh", "-c", "tarno-status watch > /dev/full").returncode, 74)
        if "LSAN_OPTIONS" not in os.environ:  # a sanitizer needs more descriptors
            blind = self.start("sh", "-c", "ulimit -n 5; exec tarno-status watch", stderr=subprocess.PIPE, text=True)
            self.assertRegex(blind.stderr.readline(), "cannot watch .*, so looks for changes every 5 s: Too many open files")
            blind.terminate()
            self.assertEqual(blind.wait(20), -signal.SIGTERM)
