"""tarno-status as people run it."""

import fcntl
import json
import os
import unittest

from program_test_case import MOMENT, RECORD, ProgramTest


class Status(ProgramTest):
    def test_save_then_show_applies_the_freshness_rule(self):
        self.assertIsNone(self.shown())
        self.save()
        fresh = {"status": "locked", "status_line": "Locked", "detail_line": "Mac locked.", "presence": "Face seen",
                 "is_stale": False, "age_seconds": 150, "received_at": MOMENT, "snapshot": {**RECORD, "age_seconds": 150}}
        stale = {"status": "unknown", "status_line": "Status stale", "is_stale": True, "age_seconds": 151,
                 "detail_line": "Mac status is 2m old. Refresh Tarno before trusting it.",
                 "snapshot": {**RECORD, "stale": True, "age_seconds": 151}}
        self.assertEqual(self.shown("2026-11-16T15:44:05Z"), fresh)
        self.assertEqual(self.shown("2026-11-16T15:44:06Z"), {**fresh, **stale})
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

    def test_keys_that_no_record_has_are_named_and_left_out(self):
        done = self.run_program("tarno-status", "save", "--at", MOMENT, "--mirror-key", "mirror",
                                stdin='{"status": "locked", "stauts": 1, "x\\u001b": {}, "reason": null, "y": null}')
        self.assertEqual(done.stderr.decode(), "tarno-status: the report was saved without its unknown keys: "
                         '"stauts", "x?"\n')
        self.assertEqual(self.shown()["snapshot"], {"status": "locked", "age_seconds": 0})
        self.assertIn('"tarno.lastStatusMirrorKey": {"type": "string", "value": "mirror"}',
                      (self.group / "defaults.json").read_text())

    def test_check_answers_with_its_exit_code(self):
        def checked(*arguments, at=MOMENT):
            done = self.call("tarno-status", "check", *arguments, "--at", at)
            self.assertEqual(done.stdout, b"")
            self.assertEqual(bool(done.stderr), done.returncode > 1)
            return done.returncode

        self.assertEqual(checked(), 1)
        self.save()
        for code, *arguments in ((0,), (0, "locked"), (1, "unlocked"), (1, "unknown"), (64, "Locked")):
            self.assertEqual(checked(*arguments), code, arguments)
        for arguments in ((), ("locked",), ("unknown",)):
            self.assertEqual(checked(*arguments, at="2026-11-16T15:44:06Z"), 1, arguments)
        self.write(record=("data", '{"status": "locked"}'))  # how old, nobody knows
        self.assertEqual(checked("locked"), 1)
        self.write(record=("data", 5))
        self.assertEqual(checked(), 69)

    def doctor(self, code=69):
        """Its lines by their labels; the verdict is under ""."""
        done = self.call("tarno-status", "doctor", "--at", MOMENT)
        self.assertEqual((done.returncode, done.stderr), (code, b""), done.stdout)
        lines = done.stdout.decode().splitlines()
        return {**{line[:26].strip(): line[26:] for line in lines[:-2]}, "": lines[-1]}

    def write(self, **values):
        """A file as another program would write it: `at`, `record` and `plain` as (type, value)."""
        keys = {"at": "tarno.lastStatusAt", "record": "tarno.lastStatus", "plain": "tarno.lastStatusValue"}
        document = {keys[name]: dict(zip(("type", "value"), value)) for name, value in values.items()}
        (self.group / "defaults.json").write_text(json.dumps(document))

    def test_doctor_and_show_agree_on_what_is_stored(self):
        self.assertIn("Nothing was saved yet", self.doctor()[""])
        self.assertFalse(self.group.exists())
        self.save(at="2026-11-16T15:39:04Z")
        self.assertEqual(self.doctor()[""], 'The last report is stale, so the tile says "Status stale" until the companion '
                         "application saves a new one.")
        self.save()
        report = self.doctor(code=0)
        self.assertEqual(report[""], 'All is well. The report is fresh: the tile says "Locked".')
        self.assertRegex(report["file"], r"\Aowner \S+, mode 0600\Z")
        self.assertEqual(report["directory"], report["file"].replace("0600", "0700"))
        self.assertEqual(report["tarno.lastStatusAt"], "date, " + MOMENT)
        self.assertEqual(report["tarno.lastStatusValue"], "string, 6 bytes")
        self.assertEqual(report["tarno.lastStatusMirrorKey"], "nothing stored")
        self.assertEqual(report["report's age"], "0 s")
        self.assertEqual(report["font"], self.run_program("tarno-widget", "fonts").stdout.decode().split("\n")[0])
        at, record, plain = ("date", MOMENT), ("data", '{"status": "locked"}'), ("string", "locked")
        for code, status, words, values in (
                (69, "Locked", "age is unknown", {"record": record}),
                (0, "Locked", "there is no record", {"at": at, "plain": plain}),
                (0, "Locked", "the record is not data", {"at": at, "plain": plain, "record": plain}),
                (0, "Locked", 'does not decode: stale: expected true or false',
                 {"at": at, "plain": plain, "record": ("data", '{"stale": 3}')}),
                (69, None, "does not decode", {"at": at, "record": ("data", "{")}),
                (69, None, "there is no record", {"at": at, "plain": ("string", "Locked")}),
                (69, None, "is damaged", {"at": at, "record": ("data", 5)}),
                (0, "Locked", "All is well", {"at": ("date", "2026-11-16T15:41:36Z"), "record": record})):
            self.write(**values)
            verdict = self.doctor(code)[""]
            self.assertIn(words, verdict)
            self.assertIn(f'the tile says "{status or "No status"}"', verdict.replace("The", "the"))
            if status:
                self.assertIn(status + "\n", self.run_program("tarno-status", "show", "--at", MOMENT).stdout.decode())
            else:
                self.run_program("tarno-status", "show", code=69)
        self.assertEqual(self.doctor(0)["report's age"], "received in the future")
        self.write(record=("data", '{"status": "locked", "reason": "a\\u001bb"}'))
        self.assertIsNone(self.shown()["received_at"])
        self.assertIn("\na?b\n", self.run_program("tarno-status", "show", "--at", MOMENT).stdout.decode())

    def test_doctor_show_and_save_agree_on_a_store_that_cannot_be_used(self):
        self.group.parent.mkdir(parents=True)
        self.group.symlink_to("/")
        for command, code in (("save", 73), ("show", 69)):
            done = self.run_program("tarno-status", command, stdin="{}", code=code)
            self.assertIn(b"is a symbolic link", done.stderr)
        for kind in ("reading", "saving"):
            self.assertIn("is a symbolic link", self.doctor()[kind])

    def test_other_savers_and_a_file_size_limit_stop_a_save_that_doctor_foretells(self):
        self.save()
        lock = os.open(self.group, os.O_RDONLY)
        fcntl.flock(lock, fcntl.LOCK_EX)
        self.run_program("tarno-status", "save", stdin="{}", code=75)
        self.assertIn("would fail: ", self.doctor()["saving"])
        os.close(lock)
        limited = lambda command: self.call("sh", "-c", "ulimit -f 0; exec tarno-status " + command, stdin="{}")
        if limited("--version").returncode:
            self.skipTest("a sanitizer writes a file when the program starts")
        for command, code in (("save", 74), ("doctor", 69)):
            done = limited(command)
            self.assertEqual(done.returncode, code)
            self.assertIn(b"File too large", done.stdout + done.stderr)
        self.assertEqual(self.shown()["snapshot"]["status"], "locked")
        self.assertEqual(os.listdir(self.group), ["defaults.json"])

    def test_wrong_command_lines(self):
        for words in ("", "shout", "show --at now", "save --received-at 2026-02-30T00:00:00Z"):
            self.run_program("tarno-status", *words.split(), code=64)
