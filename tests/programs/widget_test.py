#!/usr/bin/env python3
"""tarno-widget as people run it."""

import fcntl
import json
import os
import resource
import shutil
import struct
import subprocess
import sys
import unittest
import zlib

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "../support"))
from program_test_case import BIN, MOMENT, ProgramTest  # noqa: E402


SHRINK_SEAL = 0x2  # F_SEAL_SHRINK, <linux/fcntl.h>


def png_pixels(png):
    """The RGBA rows of a PNG whose rows are not filtered."""
    data, at = b"", 8
    while at < len(png):
        length, kind = struct.unpack_from(">I4s", png, at)
        data += png[at + 8:at + 8 + length] if kind == b"IDAT" else b""
        at += 12 + length
    width, height = struct.unpack_from(">II", png, 16)
    rows, row = zlib.decompress(data), 1 + 4 * width
    assert not any(rows[::row]), "a row is filtered"
    return [rows[y * row + 1:(y + 1) * row] for y in range(height)]


def straight(argb):
    """The RGBA bytes of a premultiplied pixel."""
    alpha = argb >> 24
    return bytes([((argb >> shift & 255) * 255 + alpha // 2) // alpha if alpha else 0 for shift in (16, 8, 0)] + [alpha])


class Widget(ProgramTest):
    def frame(self, *arguments, code=0, flags=os.MFD_ALLOW_SEALING, said=rb"\A\Z", program="tarno-widget",
              **environment):
        """The answer of a frame and the memory that it is in, as a host gets them."""
        memory = os.memfd_create("frame", flags)
        self.addCleanup(os.close, memory)
        os.write(memory, bytes([255]) * 5000)
        done = subprocess.run([BIN / program, "frame", "--fd", str(memory), *map(str, arguments)], timeout=60,
                              pass_fds=[memory], capture_output=True, env={**self.environment, **environment})
        self.assertEqual(done.returncode, code, done.stderr)
        self.assertRegex(done.stderr, said)
        answer, = done.stdout.splitlines()
        return json.loads(answer), memory

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
        later = self.run_program("tarno-widget", "render", "--at", "2026-11-16T15:44:06Z", "--output", "-").stdout
        sooner = self.run_program("tarno-widget", "render", "--at", MOMENT, "--output", "-").stdout
        self.assertNotEqual(png_pixels(later), png_pixels(sooner))
        for name, start in (("a.svg", b"<?xml"), ("a.pdf", b"%PDF")):
            self.run_program("tarno-widget", "render", "--output", name, "--placeholder")
            self.assertTrue((self.folder / name).read_bytes().startswith(start))
        self.assertEqual(sorted(os.listdir(self.folder)), ["a.pdf", "a.svg", "data", "tile.png"])

    def test_a_frame_is_what_render_draws(self):
        self.save()
        for family, scale, width, height in (("small", 1, 170, 170), ("medium", 1.25, 455, 213), ("large", 2, 728, 764)):
            arguments = ("--family", family, "--scale", scale, "--at", MOMENT)
            answer, memory = self.frame(*arguments)
            self.assertEqual((answer["width"], answer["height"]), (width, height))
            self.assertEqual(fcntl.fcntl(memory, fcntl.F_GET_SEALS), SHRINK_SEAL)
            self.assertEqual(os.fstat(memory).st_size, answer["stride"] * height)
            rows = png_pixels(self.run_program("tarno-widget", "render", *arguments, "--output", "-").stdout)
            for y in range(height):
                row = struct.unpack(f"={width}I", os.pread(memory, 4 * width, y * answer["stride"]))
                self.assertEqual(b"".join(map(straight, row)), rows[y], (family, y))

    def test_a_frame_says_what_a_host_needs(self):
        self.save(at="2026-11-16T15:41:30.123456Z")
        answer, _ = self.frame("--scale", 2, "--at", "2026-11-16T15:41:35.000400Z")
        elements = answer.pop("accessibility")
        self.assertEqual(answer, {
            "width": 728, "height": 340, "stride": 2912, "scale": 2, "tile": {"width": 364, "height": 170},
            "title": "Tarno", "announcement": "Kivo's Mac locked", "reload_after": "2026-11-16T15:42:05.001Z",
            "stale_from": "2026-11-16T15:44:01.124Z",
            "watch": {"folder": str(self.group), "file": os.listdir(self.group)[0]}})
        self.assertEqual(elements[0], {"role": "image", "label": "Kivo's Mac locked",
                                       "x": 16, "y": 23, "width": 124, "height": 124})
        self.assertEqual([element["role"] for element in elements[1:]], ["staticText"] * (len(elements) - 1))
        self.assertIn("4s ago", [element["label"] for element in elements])
        before, _ = self.frame("--at", "2026-11-16T15:44:01.123Z")
        self.assertEqual(before["announcement"], "Kivo's Mac locked")
        after, _ = self.frame("--at", "2026-11-16T15:44:01.124Z")
        self.assertEqual((after["announcement"], after["stale_from"]), ("Kivo's Mac status stale", None))

    def test_a_frame_without_a_status(self):
        answer, _ = self.frame("--at", "9999-12-31T23:59:59.9999Z")
        self.assertEqual((answer["announcement"], answer["stale_from"]), ("Mac status unknown", None))
        self.assertEqual(answer["reload_after"], "9999-12-31T23:59:59.999Z")
        self.assertEqual(answer["watch"]["folder"], str(self.group))

    def test_the_stores_message_is_not_part_of_the_answer(self):
        self.save()
        self.group.chmod(0o777)
        answer, _ = self.frame(said=rb"\A[^\n]+\n\Z")
        self.assertEqual(answer["announcement"], "Mac status unknown")

    def test_a_frame_that_cannot_be_drawn(self):
        for arguments, flags in ((("--scale", 1e6), os.MFD_ALLOW_SEALING), ((), 0)):
            answer, _ = self.frame(*arguments, flags=flags, code=64)
            self.assertEqual(list(answer), ["error"])
        self.run_program("tarno-widget", "frame", code=64)

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
            self.assertEqual(inspected["entry"]["last_refresh"], MOMENT)

    def test_inspection_cannot_steer_a_terminal(self):
        name = "a\x1b[2J\x7f\x9b\u202eb\n"
        self.save({"device_name": name})
        shown = self.run_program("tarno-widget", "inspect", "--at", MOMENT).stdout.decode()
        self.assertNotRegex(shown, "[\x00-\x09\x0b-\x1f\x7f-\x9f\u202a-\u202e]")
        self.assertEqual(self.inspected("--at", MOMENT)["entry"]["status"]["device_name"], name)

    def test_inspection_shows_the_arc_where_it_is_drawn(self):
        for status, end in (("locked", 457.2), ("unlocked", 318.096), ("locking", 378.576), ("unknown", 239.472)):
            self.save({"status": status})
            items = self.inspected("--family", "small", "--at", MOMENT)["scene"]["children"]
            arc, = (item for item in items if item.get("outline") == "arc")
            self.assertEqual((arc["start"], arc["end"], arc["lineCap"]), (154.8, end, "round"), status)
        people = self.run_program("tarno-widget", "inspect", "--placeholder", "--at", MOMENT).stdout.decode()
        self.assertRegex(people, r'(?s)entry systemMedium\n  date .*\n    HStack spacing=14\n.*\naccessibility\n  image ')

    def test_gallery(self):
        shown = json.loads(self.run_program("tarno-widget", "gallery", "--json", "--output", "previews").stdout)
        self.assertEqual(shown, {"kind": "TarnoMacWidget", "display_name": "Tarno",
                                 "description": "Mac lock status and presence signals.",
                                 "families": ["systemSmall", "systemMedium", "systemLarge"]})
        self.assertEqual(sorted(os.listdir(self.folder / "previews")),
                         [f"TarnoMacWidget-system{family}.png" for family in ("Large", "Medium", "Small")])
        people = self.run_program("tarno-widget", "gallery").stdout.decode()
        self.assertEqual(people, "Tarno\nMac lock status and presence signals.\nkind TarnoMacWidget\n"
                                 "  systemSmall   170 x 170 points\n  systemMedium  364 x 170 points\n"
                                 "  systemLarge   364 x 382 points\n")

    def test_previews_show_the_placeholder(self):
        self.save({"status": "unlocked"})
        self.run_program("tarno-widget", "gallery", "--output", ".", "--scale", 1.5)
        for family in ("small", "medium"):
            drawn = self.run_program("tarno-widget", "render", "--placeholder", "--family", family, "--scale", 1.5,
                                     "--output", "-").stdout
            shown = (self.folder / f"TarnoMacWidget-system{family.capitalize()}.png").read_bytes()
            self.assertEqual(png_pixels(shown), png_pixels(drawn), family)

    def test_gallery_speaks_the_users_language(self):
        programs, catalogues = self.folder / "bin", self.folder / "share/locale/de/LC_MESSAGES"
        programs.mkdir()
        catalogues.mkdir(parents=True)
        shutil.copy(BIN / "tarno-widget", programs)
        text = ('msgid ""\nmsgstr "Content-Type: text/plain; charset=UTF-8\\n"\n'
                'msgid "Tarno"\nmsgstr "Tarno-Kachel"\n'
                'msgid "Mac lock status and presence signals."\nmsgstr "Sperre und Anwesenheit für den Mac"\n')
        subprocess.run(["msgfmt", "-o", catalogues / "tarno.mo", "-"], input=text.encode(), check=True)
        for locale in ({"LC_ALL": "C.UTF-8"}, {"LC_ALL": "", "LC_CTYPE": "C", "LC_MESSAGES": "C.UTF-8"}):
            shown = json.loads(
                self.run_program(programs / "tarno-widget", "gallery", "--json", LANGUAGE="de", **locale).stdout)
            self.assertEqual(shown["description"], "Sperre und Anwesenheit für den Mac", locale)
            self.assertEqual(shown["display_name"], "Tarno-Kachel")
        answer, _ = self.frame(program=programs / "tarno-widget", LANGUAGE="de")
        self.assertEqual(answer["title"], "Tarno-Kachel")

    def test_wrong_command_lines(self):
        for arguments in ((), ("--output", "tile.gif"), ("--output", "a.png", "--family", "huge"),
                          ("--output", "a.png", "--scale", "0"), ("--output", "a.png", "--scale", "nan"),
                          ("--output", "a.png", "--scale", "inf"), ("--output", "a.png", "--scale", "-1"),
                          ("--output", "a.png", "--at", "yesterday"),
                          ("--output", "a.png", "--scale", "100000"),
                          ("--output", "a.png", "--preview", "--placeholder"), ("--output", "/")):
            self.run_program("tarno-widget", "render", *arguments, code=64)
        self.assertEqual(os.listdir(self.folder), ["data"] if self.group.exists() else [])

    def test_fonts_tell_when_the_rounded_face_is_missing(self):
        self.assertEqual(self.run_program("tarno-widget", "fonts").stdout, b"Quicksand\n")
        (self.folder / "fonts.conf").write_text("<fontconfig><include>/etc/fonts/fonts.conf</include><selectfont>"
                                                "<rejectfont><glob>*quicksand*</glob></rejectfont></selectfont></fontconfig>")
        done = subprocess.run([BIN / "tarno-widget", "fonts"], capture_output=True,
                              env={**self.environment, "FONTCONFIG_FILE": str(self.folder / "fonts.conf")})
        self.assertEqual((done.returncode, done.stderr), (69, b""))
        self.assertRegex(done.stdout.decode(), r"\AQuicksand is missing[^\n]*\n\Z")

    def test_help_and_version(self):
        for command in ([], ["frame"], ["render"], ["timeline"], ["gallery"], ["inspect"], ["fonts"]):
            self.assertIn(b"Example:\n  tarno-widget", self.run_program("tarno-widget", *command, "--help").stdout)
        for program in ("tarno-status", "tarno-widget", "tarno-desktop"):
            self.assertRegex(self.run_program(program, "--version").stdout.decode(), rf"\A{program} \d+\.\d+\.\d+\n\Z")

    def test_what_cannot_be_written(self):
        self.run_program("tarno-widget", "render", "--output", "no/such/folder/a.png", code=73)
        (self.folder / "a.png").mkdir()
        self.run_program("tarno-widget", "render", "--output", "a.png", code=73)
        with open("/dev/full", "wb") as full:
            done = subprocess.run([BIN / "tarno-widget", "render", "--output", "-"], stdout=full,
                                  stderr=subprocess.PIPE, env=self.environment, check=False)
        self.assertEqual(done.returncode, 74, done.stderr)

    def test_a_file_size_limit_leaves_nothing(self):
        (self.folder / "b.png").write_text("old")
        done = subprocess.run([BIN / "tarno-widget", "render", "--output", "b.png"], capture_output=True,
                              env=self.environment, cwd=self.folder,
                              preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (100, 100)))
        self.assertEqual(done.returncode, 74, done.stderr)
        self.assertEqual([name for name in os.listdir(self.folder) if name != "data"], ["b.png"])
        self.assertEqual((self.folder / "b.png").read_text(), "old")


if __name__ == "__main__":
    unittest.main()
