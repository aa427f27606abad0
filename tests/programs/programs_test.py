#!/usr/bin/env python3
"""The programs as people run them: tarno-status and tarno-widget, on a store of the test's own."""

import json
import os
import shutil
import struct
import subprocess
import tempfile
import unittest
from pathlib import Path

BIN = Path(os.environ["TARNO_BIN"])
GROUP = "K7T2M9Q4XW.dev.tarno.group"
MOMENT = "2026-11-16T15:41:35Z"
RECORD = {"device_name": "Kivo's Mac", "status": "locked", "reason": "Mac locked.", "face_present": True}


class Programs(unittest.TestCase):
    def setUp(self):
        self.folder = Path(tempfile.mkdtemp(prefix="tarno-test-"))
        self.addCleanup(shutil.rmtree, self.folder)
        self.group = self.folder / "data" / GROUP
        self.environment = {**os.environ, "XDG_DATA_HOME": str(self.folder / "data"), "LC_ALL": "C.UTF-8"}

    def run_program(self, *arguments, stdin="", code=0, **environment):
        program, *rest = map(str, arguments)
        done = subprocess.run([BIN / program, *rest], input=stdin.encode(), capture_output=True, timeout=60,
                              env={**self.environment, **environment}, cwd=self.folder)
        self.assertEqual(done.returncode, code, (arguments, done.stderr.decode()))
        if code:
            self.assertRegex(done.stderr.decode(), r"\Atarno-\w+: [^\n]+\n\Z", arguments)
            self.assertEqual(done.stdout, b"", arguments)
        return done

    def save(self, record=None, at=MOMENT):
        self.run_program("tarno-status", "save", "--received-at", at, stdin=json.dumps(record or RECORD))

    def shown(self, at=MOMENT):
        return json.loads(self.run_program("tarno-status", "show", "--json", "--at", at).stdout)

    def inspected(self, *arguments):
        return json.loads(self.run_program("tarno-widget", "inspect", "--json", *arguments).stdout)

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

    def test_wrong_command_lines(self):
        for arguments in (("tarno-status",), ("tarno-status", "shout"), ("tarno-status", "show", "--at", "now"),
                          ("tarno-status", "save", "--received-at", "2026-02-30T00:00:00Z"),
                          ("tarno-widget", "render"), ("tarno-widget", "render", "--output", "tile.gif"),
                          ("tarno-widget", "render", "--output", "a.png", "--family", "huge"),
                          ("tarno-widget", "render", "--output", "a.png", "--scale", "0"),
                          ("tarno-widget", "render", "--output", "a.png", "--scale", "nan"),
                          ("tarno-widget", "render", "--output", "a.png", "--scale", "100000"),
                          ("tarno-widget", "render", "--output", "a.png", "--preview", "--placeholder")):
            self.run_program(*arguments, code=64)
        self.assertEqual(os.listdir(self.folder), ["data"] if self.group.exists() else [])

    def test_help_has_an_example(self):
        for command in ([], ["save"], ["show"], ["doctor"]):
            self.assertIn(b"Example", self.run_program("tarno-status", *command, "--help").stdout)
        for command in ([], ["render"], ["timeline"], ["gallery"], ["inspect"]):
            self.assertIn(b"Example", self.run_program("tarno-widget", *command, "--help").stdout)

    def test_tiles_have_their_size_and_replace_files_whole(self):
        self.save()
        for family, width, height in (("small", 170, 170), ("medium", 364, 170), ("large", 364, 382)):
            for scale in (1, 2, 1.5):
                arguments = ("--family", family, "--scale", scale, "--at", MOMENT)
                self.run_program("tarno-widget", "render", *arguments, "--output", "tile.png")
                png = (self.folder / "tile.png").read_bytes()
                self.assertEqual(struct.unpack(">II", png[16:24]), (width * scale, height * scale))
                done = self.run_program("tarno-widget", "render", *arguments, "--output", "-")
                self.assertEqual(done.stdout, png)
        for name, start in (("a.svg", b"<?xml"), ("a.pdf", b"%PDF")):
            self.run_program("tarno-widget", "render", "--output", name, "--placeholder")
            self.assertTrue((self.folder / name).read_bytes().startswith(start))
        self.assertEqual(sorted(os.listdir(self.folder)), ["a.pdf", "a.svg", "data", "tile.png"])

    def test_what_cannot_be_written(self):
        self.run_program("tarno-widget", "render", "--output", "no/such/folder/a.png", code=73)
        self.run_program("tarno-widget", "render", "--output", "/", code=64)
        (self.folder / "a.png").mkdir()
        self.run_program("tarno-widget", "render", "--output", "a.png", code=73)
        with open("/dev/full", "wb") as full:
            for arguments in (["tarno-widget", "render", "--output", "-"], ["tarno-status", "show"]):
                done = subprocess.run([BIN / arguments[0], *arguments[1:]], stdout=full, stderr=subprocess.PIPE,
                                      env=self.environment, check=False)
                self.assertEqual(done.returncode, 74, done.stderr)

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

    def test_timeline_and_requests(self):
        self.save({"status": "locking"})
        timeline = json.loads(self.run_program("tarno-widget", "timeline", "--at", MOMENT).stdout)
        self.assertEqual(timeline, {"entries": [{"date": MOMENT, "status": {"status": "locking", "age_seconds": 0},
                                                 "last_refresh": MOMENT}],
                                    "reload_after": "2026-11-16T15:42:05Z"})
        for flag in ("--placeholder", "--preview"):
            inspected = self.inspected(flag, "--at", MOMENT)
            self.assertEqual(inspected["entry"]["status"]["device_name"], "Kivo's Mac")
            self.assertEqual(inspected["accessibility"][0]["label"], "Kivo's Mac locked")

    def test_inspection_shows_the_arc_where_it_is_drawn(self):
        for status, end in (("locked", 457.2), ("unlocked", 318.096), ("locking", 378.576), ("unknown", 239.472)):
            self.save({"status": status})
            items = self.inspected("--family", "small", "--at", MOMENT)["scene"]["children"][0]["children"]
            arc, = (item for item in items if item.get("outline") == "arc")
            self.assertEqual((arc["start"], arc["end"], arc["lineCap"]), (154.8, end, "round"), status)
        people = self.run_program("tarno-widget", "inspect", "--placeholder", "--at", MOMENT).stdout.decode()
        self.assertRegex(people, r'(?s)entry systemMedium\n  date .*\n    HStack spacing=14\n.*\naccessibility\n  image ')

    def test_gallery(self):
        shown = json.loads(self.run_program("tarno-widget", "gallery", "--json", "--output", "previews").stdout)
        self.assertEqual(shown, {"kind": "TarnoMacWidget", "display_name": "Tarno",
                                 "description": "Mac lock status and presence signals.",
                                 "families": ["systemSmall", "systemMedium", "systemLarge"]})
        self.assertEqual(len(os.listdir(self.folder / "previews")), 3)

    def test_gallery_speaks_the_users_language(self):
        programs, catalogues = self.folder / "bin", self.folder / "share/locale/de/LC_MESSAGES"
        programs.mkdir()
        catalogues.mkdir(parents=True)
        shutil.copy(BIN / "tarno-widget", programs)
        text = ('msgid ""\nmsgstr "Content-Type: text/plain; charset=UTF-8\\n"\n'
                'msgid "Mac lock status and presence signals."\nmsgstr "Sperre und Anwesenheit für den Mac"\n')
        subprocess.run(["msgfmt", "-o", catalogues / "tarno.mo", "-"], input=text.encode(), check=True)
        shown = self.run_program(programs / "tarno-widget", "gallery", "--json", LANGUAGE="de").stdout
        self.assertEqual(json.loads(shown)["description"], "Sperre und Anwesenheit für den Mac")
        self.assertEqual(json.loads(shown)["display_name"], "Tarno")

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


if __name__ == "__main__":
    unittest.main()
