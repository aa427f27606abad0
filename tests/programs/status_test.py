#!/usr/bin/env python3
"""tarno-status as people run it."""

import json
import os
import subprocess
import sys
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "../support"))
from program_test_case import BIN, MOMENT, RECORD, ProgramTest  # noqa: E402


class Status(ProgramTest):
    def test_save_then_show_applies_the_freshness_rule(self):
        self.assertIsNone(self.shown())
        self.save()
        self.assertEqual(self.shown("2026-11-16T15:44:05Z"),
                         {"received_at": MOMENT, "snapshot": {**RECORD, "age_seconds": 150}})
        self.assertEqual(self.shown("2026-11-16T15:44:06Z")["snapshot"],
                         {**RECORD, "stale": True, "age_seconds": 151})
        people = self.run_program("tarno-status", "show", "--at", MOMENT).stdout.decode()
        for words in ("Locked\nMac locked.\n", "0 s", "face seen, no watch", "Kivo's Mac"):
            self.assertIn(words, people)

    def test_a_bad_record_names_the_key_and_saves_nothing(self):
        self.save()
        before = self.shown()
        for record, words in (("", "the record"), ("[]", "expected an object, found an array"),
                              ('{"confidence": 2.5}', '"confidence": 2.5 is not a whole number'),
                              ('{"stale": 1}', '"stale": expected true or false, found a number'),
                              ('{"status": "Lock\\ned"}', '"status": "Lock?ed" is not a status'),
                              ('{"seen_at": "2026-11-16"}', '"seen_at": Invalid ISO8601 date'),
                              (" " * (1 << 20) + "{}", "is larger than")):
            done = self.run_program("tarno-status", "save", stdin=record, code=65)
            self.assertIn(words, done.stderr.decode())
        self.run_program("tarno-status", "save", "no-such-file", code=66)
        self.assertEqual(self.shown(), before)

    def test_a_store_that_nobody_shares(self):
        self.group.parent.mkdir(parents=True)
        self.group.symlink_to("/")
        done = self.run_program("tarno-status", "save", stdin="{}", code=73)
        self.assertIn("is a symbolic link", done.stderr.decode())
        self.run_program("tarno-status", "show", code=74)
        done = self.run_program("tarno-widget", "timeline", "--at", MOMENT)
        self.assertIsNone(json.loads(done.stdout)["entries"][0]["status"])
        self.assertRegex(done.stderr.decode(), r"\AERROR: TarnoMacDefaults could not [^\n]+\n\Z")
        self.assertIn("is a symbolic link", self.run_program("tarno-status", "doctor").stdout.decode())

    def test_doctor_names_what_is_wrong(self):
        def verdict():
            return self.run_program("tarno-status", "doctor", "--at", MOMENT).stdout.decode().strip().splitlines()[-1]

        self.assertIn("Nothing was saved yet", verdict())
        self.assertFalse(self.group.exists())
        self.save()
        self.assertEqual(verdict(), 'All is well: the tile says "Locked".')
        self.save(at="2026-11-16T15:39:04Z")
        self.assertIn("stale", verdict())
        statement = "UPDATE defaults SET value = CAST('{\"stale\": 3}' AS BLOB) WHERE key = 'tarno.lastStatus'"
        subprocess.run(["sqlite3", self.group / "defaults.sqlite", statement], check=True)
        report = self.run_program("tarno-status", "doctor", "--at", MOMENT).stdout.decode()
        self.assertIn("does not decode: stale: expected true or false", report)
        self.assertIn("only the plain value is used", verdict())
        (self.group / "defaults.sqlite").write_bytes(b"not a database at all" * 100)
        self.assertIn("cannot be used", verdict())
        self.save()
        self.assertEqual(verdict(), 'All is well: the tile says "Locked".')

    def test_saves_and_renders_at_once_see_whole_reports(self):
        records = [{"device_name": name * 50, "status": status, "message": name * 5000}
                   for name, status in (("a", "locked"), ("b", "unlocked"))]
        files = [self.folder / f"{i}.json" for i in range(2)]
        for file, record in zip(files, records):
            file.write_text(json.dumps(record), encoding="utf-8")
        loop = 'for i in 1 2 3 4 5 6 7 8; do "$0" save "$1" || exit; done'
        savers = [subprocess.Popen(["sh", "-c", loop, BIN / "tarno-status", file], env=self.environment)
                  for file in files]
        seen = 0
        while any(saver.poll() is None for saver in savers):
            entry = json.loads(self.run_program("tarno-widget", "timeline").stdout)["entries"][0]
            if entry["status"] is not None:
                seen += 1
                entry["status"].pop("age_seconds")
                self.assertIn(entry["status"], records)
        self.assertEqual([saver.returncode for saver in savers], [0, 0])
        self.assertIn(self.shown()["snapshot"]["status"], ("locked", "unlocked"))
        self.assertGreater(seen, 0)

    def test_wrong_command_lines(self):
        for arguments in ((), ("shout",), ("show", "--at", "now"),
                          ("save", "--received-at", "2026-02-30T00:00:00Z")):
            self.run_program("tarno-status", *arguments, code=64)

    def test_help_has_an_example(self):
        for command in ([], ["save"], ["show"], ["doctor"]):
            self.assertIn(b"Example", self.run_program("tarno-status", *command, "--help").stdout)

    def test_standard_output_that_cannot_be_written(self):
        with open("/dev/full", "wb") as full:
            done = subprocess.run([BIN / "tarno-status", "show"], stdout=full, stderr=subprocess.PIPE,
                                  env=self.environment, check=False)
        self.assertEqual(done.returncode, 74, done.stderr)


if __name__ == "__main__":
    unittest.main()
