#!/usr/bin/env python3
"""tarno-widget as people run it."""

import json
import os
import shutil
import struct
import subprocess
import sys
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "../support"))
from program_test_case import BIN, MOMENT, ProgramTest  # noqa: E402


class Widget(ProgramTest):
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

    def test_wrong_command_lines(self):
        for arguments in ((), ("--output", "tile.gif"), ("--output", "a.png", "--family", "huge"),
                          ("--output", "a.png", "--scale", "0"), ("--output", "a.png", "--scale", "nan"),
                          ("--output", "a.png", "--scale", "100000"),
                          ("--output", "a.png", "--preview", "--placeholder"), ("--output", "/")):
            self.run_program("tarno-widget", "render", *arguments, code=64)
        self.assertEqual(os.listdir(self.folder), ["data"] if self.group.exists() else [])

    def test_help_has_an_example(self):
        for command in ([], ["render"], ["timeline"], ["gallery"], ["inspect"]):
            self.assertIn(b"Example", self.run_program("tarno-widget", *command, "--help").stdout)

    def test_what_cannot_be_written(self):
        self.run_program("tarno-widget", "render", "--output", "no/such/folder/a.png", code=73)
        (self.folder / "a.png").mkdir()
        self.run_program("tarno-widget", "render", "--output", "a.png", code=73)
        with open("/dev/full", "wb") as full:
            done = subprocess.run([BIN / "tarno-widget", "render", "--output", "-"], stdout=full,
                                  stderr=subprocess.PIPE, env=self.environment, check=False)
        self.assertEqual(done.returncode, 74, done.stderr)


if __name__ == "__main__":
    unittest.main()
