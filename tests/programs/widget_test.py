"""Tests the commands of tarno-widget."""
import fcntl
import json
import os
import re
import shutil
import struct
import subprocess
import sys
import zlib
from pathlib import Path

from program_test_case import BIN, MOMENT, ProgramTest


class Widget(ProgramTest):
    def widget(self, command, *arguments, **options):
        """Returns what a command of tarno-widget prints."""
        return self.run_program("tarno-widget", command, *arguments, **options).stdout

    def frame(self, *arguments, code=0, seals=0, said=rb"\A\Z", program="tarno-widget", **environment):
        """Returns the answer of a frame process and the memory with the picture, as a host gets them."""
        memory = os.memfd_create("frame", os.MFD_ALLOW_SEALING)
        self.addCleanup(os.close, memory)
        os.write(memory, bytes([255]) * 5000)
        fcntl.fcntl(memory, fcntl.F_ADD_SEALS, seals)
        done = self.call(program, "frame", "--fd", memory, *arguments, environment=environment, pass_fds=[memory])
        self.assertEqual(done.returncode, code, done.stderr)
        self.assertRegex(done.stderr, said)
        answer, = done.stdout.splitlines()
        return json.loads(answer), memory

    def test_tiles_and_frames_have_their_size(self):
        self.save()
        for family, scale, width, height in (("small", 1, 170, 170), ("medium", 1.25, 455, 213), ("large", 2, 728, 764)):
            arguments = ("--family", family, "--scale", scale, "--at", MOMENT)
            png = self.widget("render", *arguments, "--output", "-")
            self.assertEqual(struct.unpack(">II", png[16:24]), (width, height))
            self.widget("render", *arguments, "--output", "tile.png")
            self.assertEqual((self.folder / "tile.png").read_bytes(), png)
            answer, memory = self.frame(*arguments)
            self.assertEqual((answer["width"], answer["height"]), (width, height))
            self.assertEqual(fcntl.fcntl(memory, fcntl.F_GET_SEALS), fcntl.F_SEAL_SHRINK)
            self.assertEqual(os.fstat(memory).st_size, answer["stride"] * height)
            for x, y in ((width // 2, 0), (width - 1, height // 2), (width // 2, height - 1), (0, 0)):
                pixel = int.from_bytes(os.pread(memory, 4, y * answer["stride"] + 4 * x), sys.byteorder)
                self.assertEqual(hex(pixel), hex(0xFFF7FAF8 if x else 0), (family, x, y))  # the corners are transparent
        self.widget("render", "--output", "a.svg")
        self.assertIn(b"<title>Tarno</title>", (self.folder / "a.svg").read_bytes())
        self.assertEqual(sorted(os.listdir(self.folder)), ["a.svg", "data", "tile.png"])

    def test_a_pdf_holds_its_texts(self):
        self.save({"device_name": "🔒 हि 🔒"})
        self.widget("render", "--family", "medium", "--output", "a.pdf")
        pdf = (self.folder / "a.pdf").read_bytes()
        for stream in re.findall(rb"stream\r?\n(.*?)\r?\nendstream", pdf, re.S):  # newer libraries also compress dictionaries
            pdf += zlib.decompressobj().decompress(stream)
        for words in (b"/Title (Tarno)", b"/Subject ", b"/MediaBox [ 0 0 364 170 ]", b"Quicksand",
                      b"/ActualText <feffd83ddd12>", b"/ActualText <feff0939093f>"):
            self.assertTrue(words in pdf, words)
        self.assertFalse(b"/CreationDate" in pdf)
        names = re.findall(rb"/x\d+", re.search(rb"/XObject <<(.*?)>>", pdf, re.S)[1])
        self.assertEqual(len(names), len(set(names)), "readers call a file malformed that lists an image twice")
        self.assertGreater(int(re.search(rb"/Width (\d+)", pdf)[1]), 100)

    def test_a_frame_says_what_a_host_needs(self):
        self.save(at="2026-11-16T15:41:30.123456Z")
        answer, _ = self.frame("--scale", 2, "--at", "2026-11-16T15:41:35.000400Z")
        elements = answer.pop("accessibility")
        self.assertEqual(answer, {
            "width": 728, "height": 340, "stride": 2912, "scale": 2, "tile": {"width": 364, "height": 170},
            "title": "Tarno", "announcement": "Kivo's Mac locked", "reload_after": "2026-11-16T15:42:05.001Z",
            "stale_from": "2026-11-16T15:44:01.124Z", "watch": {"folder": str(self.group), "file": "defaults.json"}})
        self.assertEqual(elements[0], {"role": "image", "label": "Kivo's Mac locked",
                                       "x": 16, "y": 23, "width": 124, "height": 124})
        self.assertIn("4s ago", [element["label"] for element in elements if element["role"] == "staticText"])
        for at, words, stale_from in (("2026-11-16T15:44:01.123Z", "Kivo's Mac locked", "2026-11-16T15:44:01.124Z"),
                                      ("2026-11-16T15:44:01.124Z", "Kivo's Mac status stale", None)):
            answer, _ = self.frame("--at", at)
            self.assertEqual((answer["announcement"], answer["stale_from"]), (words, stale_from))
        self.group.chmod(0o777)  # the store reports that on standard output, which must not mix with the answer
        answer, _ = self.frame("--at", "9999-12-31T23:59:59.9999Z", said=rb"\AERROR: [^\n]+\n\Z")
        self.assertEqual((answer["announcement"], answer["stale_from"]), ("Mac status unknown", None))
        self.assertEqual(answer["reload_after"], "9999-12-31T23:59:59.999Z")
        answer, _ = self.frame(XDG_DATA_HOME="/\udcff")  # a path need not be UTF-8
        self.assertEqual(answer["watch"]["folder"], f"/\ufffd/{self.group.name}")

    def test_a_frame_that_cannot_be_drawn_says_why(self):
        for arguments, seals in ((("--scale", 50), 0), ((), fcntl.F_SEAL_SEAL), ((), fcntl.F_SEAL_SHRINK)):
            answer, _ = self.frame(*arguments, seals=seals, code=64)
            self.assertEqual(list(answer), ["error"])

    def test_what_the_provider_answers(self):
        self.assertEqual(self.inspected("--at", MOMENT)["entry"], {"date": MOMENT, "status": None, "last_refresh": None})
        received = "2026-11-16T15:41:30.250Z"
        self.save({"status": "locking"}, at=received)
        entry = {"date": MOMENT, "status": {"status": "locking", "age_seconds": 4}, "last_refresh": received}
        self.assertEqual(json.loads(self.widget("timeline", "--at", MOMENT)),
                         {"entries": [entry], "reload_after": "2026-11-16T15:42:05Z"})
        self.assertEqual(self.inspected("--at", MOMENT)["entry"], entry)
        for flag in ("--placeholder", "--preview"):
            inspected = self.inspected(flag, "--at", MOMENT, "--family", "small")
            self.assertEqual(inspected["family"], "systemSmall")
            self.assertEqual(inspected["entry"]["status"]["device_name"], "Kivo's Mac")
            self.assertEqual(inspected["accessibility"][0]["label"], "Kivo's Mac locked")

    def test_inspection_for_people_cannot_control_a_terminal(self):
        name = "a\x1b[2J\x7f\x9b\u202eb\n"
        self.save({"device_name": name})
        shown = self.widget("inspect", "--at", MOMENT).decode()
        self.assertNotRegex(shown, "[\x00-\x09\x0b-\x1f\x7f-\x9f\u202a-\u202e]")
        self.assertEqual(self.inspected("--at", MOMENT)["entry"]["status"]["device_name"], name)
        self.assertRegex(shown, r"(?s)\Aentry systemMedium\n  date .*\n    HStack spacing=14\n.* size=16.12 .*\nScene .* end=239.472"
                                r"\n.* font=\"15.636 bold.*\naccessibility\n  image ")

    def test_gallery(self):
        self.assertEqual(json.loads(self.widget("gallery", "--json", "--output", "previews")),
                         {"kind": "TarnoMacWidget", "display_name": "Tarno",
                          "description": "Mac lock status and presence signals.",
                          "families": ["systemSmall", "systemMedium", "systemLarge"]})
        previews = {path.name: path.read_bytes() for path in (self.folder / "previews").iterdir()}
        self.assertEqual(previews, {
            f"TarnoMacWidget-system{family}.png": self.widget("render", "--placeholder", "--family", family.lower(),
                                                              "--scale", 2, "--output", "-")
            for family in ("Small", "Medium", "Large")})
        self.assertIn(b"\n  systemLarge   364 x 382 points\n", self.widget("gallery"))

    def test_the_widgets_words_are_in_the_users_language(self):
        catalogues = self.folder / "share/locale/de/LC_MESSAGES"
        catalogues.mkdir(parents=True)
        copy = self.folder / "bin/tarno-widget"
        copy.parent.mkdir()
        shutil.copy(BIN / "tarno-widget", copy)
        text = 'msgid ""\nmsgstr "Content-Type: text/plain; charset=UTF-8\\n"\nmsgid "Tarno"\nmsgstr "für Sie"\n'
        subprocess.run(["msgfmt", "-o", catalogues / "tarno.mo", "-"], input=text.encode(), check=True)
        # The system may have no German locale, and newer C libraries translate nothing in C.UTF-8.
        subprocess.run(["localedef", "--no-archive", "-i", "de_DE", "-f", "UTF-8", self.folder / "de_DE.UTF-8"], check=True)
        self.environment |= {"LOCPATH": str(self.folder)}
        german, messages = {"LC_ALL": "de_DE.UTF-8"}, {"LC_ALL": "", "LC_CTYPE": "C", "LC_MESSAGES": "de_DE.UTF-8"}
        for locale in german, messages:
            answer, _ = self.frame(program=copy, **locale)
            self.assertEqual(answer["title"], "für Sie", locale)
        shown = json.loads(self.widget("gallery", "--json", **german))
        self.assertEqual(shown["description"], "Sperrstatus und Anwesenheitssignale Ihres Macs.")

    def test_fonts_tell_when_quicksand_is_missing(self):
        rejecting, bare, other, fonts = (self.folder / name for name in ("fonts.conf", "bare", "other", "fonts"))
        rejecting.write_text("<fontconfig><include>/etc/fonts/fonts.conf</include><selectfont><rejectfont>"
                             "<glob>/*quicksand*</glob></rejectfont></selectfont></fontconfig>")
        # With a FONTCONFIG_SYSROOT, fontconfig 2.14 lists the fonts inside it, but reads their files from outside.
        for root in (bare, other):
            (root / "etc/fonts").mkdir(parents=True)
            (root / "etc/fonts/fonts.conf").write_text(f"<fontconfig><dir>{fonts}</dir><cachedir>/c</cachedir></fontconfig>")
        for folder in (fonts, Path(f"{other}{fonts}")):
            folder.mkdir(parents=True)
            shutil.copy(next(Path("/usr/share/fonts").rglob("Quicksand-Bold.*")), folder)
        for variable, value, code, printed in (
                ("FONTCONFIG_FILE", rejecting, 69, r"\AQuicksand is missing[^\n]*fonts-quicksand\n\Z"),
                ("FONTCONFIG_SYSROOT", bare, 69, r"\AQuicksand is missing"),  # there is no Quicksand
                ("FONTCONFIG_SYSROOT", other, 0, r"\AQuicksand\n\Z"),  # Quicksand is not in Debian's folder
                ("LC_ALL", "C", 0, r"\AQuicksand\n\Z")):
            done = self.call("tarno-widget", "fonts", environment={variable: str(value)})
            self.assertEqual((done.returncode, done.stderr), (code, b""), value)
            self.assertRegex(done.stdout.decode(), printed, value)
        draw = ("render", "--output", "-", "--at", MOMENT)
        self.assertNotEqual(self.widget(*draw, FONTCONFIG_FILE=str(rejecting)), self.widget(*draw))
        (self.folder / "fontconfig").mkdir()
        (self.folder / "fontconfig/fonts.conf").write_text("<fontconfig><match><edit name='embolden'><bool>true</bool></edit>"
                                                           "</match></fontconfig>")
        self.assertNotEqual(self.widget(*draw, XDG_CONFIG_HOME=str(self.folder)), self.widget(*draw))
        for language, letter in ("ja", "の"), ("ko", "맥"):  # the last letter is cut off, but decides the language of the text
            self.save({"device_name": "書斎" * 30 + letter})
            bold = self.folder / language
            bold.write_text(f"<fontconfig><include>/etc/fonts/fonts.conf</include><match><test name='lang'><string>{language}</string>"
                            "</test><edit name='embolden'><bool>true</bool></edit></match></fontconfig>")
            self.assertNotEqual(self.widget(*draw, FONTCONFIG_FILE=str(bold)), self.widget(*draw), language)
        lines = set()
        for record in ({"stale": True}, {}, {"status": "locked"}, {"status": "unlocked"}, {"status": "locking"}):
            self.save(record)
            texts = re.findall(rb"text text=.*? (y=\S+) .*?(height=\S+ baseline=\S+)", self.widget("inspect", "--family", "small"))
            lines.add(texts[-1])
        self.assertEqual(len(lines), 1, "the dial's text moves when the status changes")
        self.save({"stale": True})
        for family in ("small", "medium", "large"):  # a font that replaces Quicksand must cut no text
            scene = self.widget("inspect", "--json", "--family", family, FONTCONFIG_FILE=str(rejecting))
            self.assertIn(b"Status stale", scene)
            self.assertNotIn(b"truncated", scene)

    def test_wrong_command_lines_make_nothing(self):
        for words, reason in (("", "--output"), ("--output tile.gif", "tile.gif"), ("--output /", "format of /"),
                              ("--output a.png --family huge", "'huge'"), ("--output a.png --scale 50", "16384 pixels"),
                              ("--output a.png --at yesterday", "'yesterday'"), ("--output a.png --preview --placeholder", "excl"),
                              *((f"--output a.png --scale {number}", f"'{number}' is not a number from 0.01 to 96")
                                for number in ("0", "-1", "nan", "inf", "-inf", "1e400", "1e-163", "96.1", "2x"))):
            done = self.run_program("tarno-widget", "render", *words.split(), code=64)
            self.assertIn(reason, done.stderr.decode(), words)
        for words in ("", "frame"):
            self.run_program("tarno-widget", *words.split(), code=64)
        self.assertEqual(os.listdir(self.folder), [])

    def test_what_cannot_be_written_leaves_what_was_there(self):
        (self.folder / "folder.png").mkdir()
        (self.folder / "old.png").write_text("old")
        for output in ("no/such/folder/a.png", "folder.png"):
            self.widget("render", "--output", output, code=73)
        self.widget("gallery", "--output", "old.png/previews", code=73)
        for end in ("render --output - > /dev/full", "render --output old.png"):
            done = self.call("sh", "-c", "ulimit -f 0; tarno-widget " + end)
            self.assertEqual(done.returncode, 74, done.stderr)
        self.assertEqual(sorted(os.listdir(self.folder)), ["folder.png", "old.png"])
        self.assertEqual((self.folder / "old.png").read_text(), "old")
