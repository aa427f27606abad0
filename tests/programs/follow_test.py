"""Tests tarno-status save --follow."""
import fcntl
import json
import os
import re
import subprocess
import time

from program_test_case import MOMENT, ProgramTest

FOLLOW = ("tarno-status", "save", "--follow")


class Follow(ProgramTest):
    def follow(self, text, *arguments):
        """Returns the exit status and the lines on standard error, without the program's name."""
        (self.folder / "reports").write_text(text, encoding="utf-8")  # unlike a pipe, a file can be read at once
        done = self.call("sh", "-c", 'exec "$@" < reports', "sh", *FOLLOW, "--at", MOMENT, *arguments)
        self.assertEqual(done.stdout, b"")
        self.assertRegex(done.stderr.decode(), r"\A(tarno-status: [^\n]+\n)*\Z")
        return done.returncode, re.findall("^tarno-status: (.*)", done.stderr.decode(), re.M)

    def saved(self, key="status"):
        shown = self.shown()
        return shown and shown["snapshot"].get(key)

    def test_each_line_is_saved_or_named(self):
        big = json.dumps({"message": "x" * (1 << 20)})
        fits = '{"status": "locked"}'.ljust(1 << 20)
        cut = "line {}: the input ended in the middle of the line; nothing was saved"
        for text, code, said, status in (
                ("", 0, [], None),
                ('{"status": "locked"}\r\n\n  \n \t', 0, [], "locked"),
                ('{"status": "locked"}\n{"status": "Locked"}\n[]\n', 65,
                 ['line 2: key "status": "Locked" is not a status; nothing was saved',
                  "line 3: the record: expected an object, found an array; nothing was saved"], "locked"),
                ('{"status": "locked"}\n{"status": "unlocked"}', 65, [cut.format(2)], "locked"),
                (f'{{"status": "unlocked"}}\n{fits}  \n', 65, ["line 2: longer than 1048576 bytes"], "unlocked"),
                (f'{fits}\n{big}', 65, [cut.format(2)], "locked"),
                ('{"a": 1, "status": "locking"}\n', 0, ['line 1: the report was saved without its unknown keys: "a"'],
                 "locking")):
            self.assertEqual(self.follow(text), (code, said), text[:99])
            self.assertEqual(self.saved(), status, text[:99])

    def test_it_saves_at_once_when_it_arrived(self):
        follower = self.start(*FOLLOW, stdin=subprocess.PIPE, stderr=subprocess.PIPE, bufsize=0)
        before = time.time()
        for status in ("locked", "unlocked"):
            follower.stdin.write(json.dumps({"status": status}).encode() + b'\n{"status": "loc')
            self.wait_for(lambda: self.saved() == status)
            follower.stdin.write(b'king"}\n')
            self.wait_for(lambda: self.saved() == "locking")
        age = self.shown(time.strftime("%Y-%m-%dT%H:%M:%SZ", time.gmtime(before)))["age_seconds"]
        self.assertLessEqual(age, 1)
        for number in range(2000):  # nobody reads the errors
            follower.stdin.write(b"[" * 100 + b"\n")
        follower.stdin.write(b'{"status": "unlocked"}\n')
        self.wait_for(lambda: self.saved() == "unlocked")
        follower.stderr.close()  # nobody can read the errors
        follower.stdin.write(b'nonsense\n{"status": "locked"}\n')
        self.wait_for(lambda: self.saved() == "locked")
        follower.stdin.close()
        self.assertEqual(follower.wait(20), 65)

    def test_saves_are_acknowledged_if_somebody_reads(self):
        text = '[]\n{"status": "locked"}\n'
        done = self.call(*FOLLOW, "--acknowledge", stdin=text)
        self.assertEqual((done.returncode, done.stdout), (65, b"line 2: saved\n"))
        reader, writer = os.pipe()
        with open(reader, "rb"), open(writer, "wb", 0) as full:
            fcntl.fcntl(full, fcntl.F_SETPIPE_SZ, 4096)
            full.write(b"-" * 4096)
            self.assertEqual(self.call(*FOLLOW, "--acknowledge", stdin=text, stdout=full).returncode, 65)
        self.run_program("tarno-status", "save", "--acknowledge", code=64)

    def test_of_the_reports_that_wait_only_the_newest_is_saved(self):
        records = "".join(json.dumps({"a": 1, "status": "locked", "confidence": i}) + "\n" for i in range(1500))
        self.assertEqual(self.follow(records, "--mirror-key", "desk"),
                         (0, ['line 1500: the report was saved without its unknown keys: "a"',
                              "reports skipped because newer ones arrived: 1499"]))
        self.assertEqual(self.saved("confidence"), 1499)
        self.assertIn('"desk"', (self.group / "defaults.json").read_text())

    def test_an_endless_flood_does_not_keep_the_newest_from_being_saved(self):
        flood = self.start("yes", '{"status": "unlocked"}', stdout=subprocess.PIPE)
        self.start(*FOLLOW, stdin=flood.stdout)
        self.wait_for(lambda: self.saved() == "unlocked")

    def test_what_else_fails_has_its_own_code(self):
        self.save()
        lock = os.open(self.group, os.O_RDONLY)
        fcntl.flock(lock, fcntl.LOCK_EX)
        code, said = self.follow('{"status": "unlocked"}\n[]\n')
        os.close(lock)
        self.assertEqual(code, 65)  # the first error is that of reading
        self.assertRegex("\n".join(said), r"\Aline 2: [^\n]+\nline 1: nothing was saved: [^\n]+\Z")
        self.group.chmod(0o777)
        code, said = self.follow('{}\n')
        self.assertEqual((code, len(said)), (73, 1))
        folder = self.call("sh", "-c", " ".join(FOLLOW) + " < /")
        self.assertEqual((folder.returncode, folder.stderr),
                         (66, b"tarno-status: line 1: cannot read standard input: Is a directory\n"))
        for arguments in (("report.json",), ("--received-at", MOMENT)):
            self.run_program(*FOLLOW, *arguments, code=64)
