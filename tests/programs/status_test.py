"""Tests the commands of tarno-status, except watch and save --follow."""
import fcntl
import json
import os

from program_test_case import GROUP, MOMENT, RECORD, ProgramTest


class Status(ProgramTest):
    def test_save_then_show_applies_the_freshness_rule(self):
        self.assertIsNone(self.shown())
        self.save()
        fresh = {"status": "locked", "status_line": "Locked", "detail_line": "Mac locked.", "presence": "Face seen",
                 "device": "Kivo's Mac", "is_stale": False, "age_seconds": 150, "received_at": MOMENT, "snapshot": {**RECORD, "age_seconds": 150}}
        stale = {"status": "unknown", "status_line": "Status stale", "is_stale": True, "age_seconds": 151,
                 "detail_line": "Mac status is 2m old. Refresh Tarno before trusting it.",
                 "snapshot": {**RECORD, "stale": True, "age_seconds": 151}}
        self.assertEqual(self.shown("2026-11-16T15:44:05Z"), fresh)
        self.assertEqual(self.shown("2026-11-16T15:44:06Z"), {**fresh, **stale})
        people = self.run_program("tarno-status", "show", "--at", MOMENT).stdout.decode()
        for words in ("Locked\nMac locked.\n", "0 s", "face seen, no watch", "Kivo's Mac"):
            self.assertIn(words, people)
        self.write(record=("data", '{"status": "locked", "reason": "a\\u001bb"}'))
        self.assertIn(b"\na?b\n", self.run_program("tarno-status", "show", "--at", MOMENT).stdout)
        self.assertIsNone(self.shown()["received_at"])

    def test_a_bad_record_names_the_key_and_saves_nothing(self):
        self.save()
        before = self.shown()
        for record, words in (("", "the record"), ("[]", "expected an object, found an array"),
                              ('{"confidence": 2.5}', '"confidence": 2.5 is not a 64-bit integer'),
                              ('{"stale": 1}', '"stale": expected true or false, found a number'),
                              ('{"status": "Lock\\ned"}', '"status": "Lock?ed" is not a status'),
                              ('{"seen_at": "2026-11-16"}', '"seen_at": Invalid ISO8601 date'),
                              (" " * (1 << 20) + "{}", "is larger than")):
            with self.subTest(words):
                self.assertIn(words, self.run_program("tarno-status", "save", stdin=record, code=65).stderr.decode())
        self.run_program("tarno-status", "save", "no-such-file", code=66)
        self.assertEqual(self.shown(), before)

    def test_unknown_keys_are_named_and_left_out(self):
        done = self.run_program("tarno-status", "save", "--at", MOMENT, "--mirror-key", "mirror",
                                stdin='{"status": "locked", "stauts": 1, "x\\u001b": {}, "reason": null, "y": null}')
        self.assertEqual(done.stderr, b'tarno-status: the report was saved without its unknown keys: "stauts", "x?"\n')
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
        for arguments, code, when_stale in (((), 0, 1), (("locked",), 0, 1), (("unlocked",), 1, 1), (("unknown",), 1, 1),
                                            (("Locked",), 64, 64)):
            self.assertEqual(checked(*arguments), code, arguments)
            self.assertEqual(checked(*arguments, at="2026-11-16T15:44:06Z"), when_stale, arguments)
        self.write(record=("data", '{"status": "locked"}'))  # without a receipt date
        self.assertEqual(checked("locked"), 1)
        self.write(record=("data", 5))
        self.assertEqual(checked(), 69)

    def doctor(self, code=69):
        """Returns the lines that doctor prints, {label: text}. The label of its last line is ""."""
        done = self.call("tarno-status", "doctor", "--at", MOMENT)
        self.assertEqual((done.returncode, done.stderr), (code, b""), done.stdout)
        lines = done.stdout.decode().splitlines()
        return {**{line[:26].strip(): line[26:] for line in lines[:-2]}, "": lines[-1]}

    def write(self, **values):
        """Writes the store's file as another program would. `at`, `record` and `plain` are pairs (type, value)."""
        keys = {"at": "tarno.lastStatusAt", "record": "tarno.lastStatus", "plain": "tarno.lastStatusValue"}
        document = {keys[name]: dict(zip(("type", "value"), value)) for name, value in values.items()}
        (self.group / "defaults.json").write_text(json.dumps(document))

    def test_doctor_says_where_the_store_is_and_what_it_holds(self):
        self.assertEqual(self.doctor()[""], 'Nothing was saved yet, so the tile says "No status"; '
                         "save a report with tarno-status save.")
        self.assertFalse(self.group.exists())
        self.save()
        report = self.doctor(code=0)
        for label, text in (("store", str(self.group / "defaults.json")), ("file", r"owner \S+, mode 0600"),
                            ("folder", r"owner \S+, mode 0700"), ("tarno.lastStatus", r"data, \d+ bytes"),
                            ("tarno.lastStatusAt", "date, " + MOMENT), ("tarno.lastStatusValue", "string, 6 bytes"),
                            ("tarno.lastStatusMirrorKey", "nothing stored"), ("report's age", "0 s"),
                            ("reading", "works"), ("saving", "works"), ("confinement", "complete|.*the kernel.*"),
                            ("font", self.run_program("tarno-widget", "fonts").stdout.decode().split("\n")[0])):
            with self.subTest(label):
                self.assertRegex(report[label], rf"\A{text}\Z")

    def test_doctor_and_show_agree_on_what_is_stored(self):
        self.save()
        at, record, broken = ("date", MOMENT), ("data", '{"status": "locked"}'), ("data", '{"stale": 3}')
        kind = "the record cannot be decoded: stale: expected true or false, found a number"
        for code, verdict, values in (  # tests/shared/persistence_test.cpp has a row for each fault of a record
                (0, 'All is well. The report is fresh: the tile says "Locked".', {"at": at, "record": record}),
                (69, 'The last report is stale, so the tile says "Status stale" until the companion '
                 "saves a new one.", {"at": ("date", "2026-11-16T15:39:04Z"), "record": record}),
                (69, 'The report itself says that it is stale, so the tile says "Status stale" until the companion '
                 "saves one that does not.", {"at": at, "record": ("data", '{"stale": true}')}),
                (69, "The receipt date is in the future: the report does not turn stale before 2026-11-16T15:44:07Z, "
                 'unless a new one is saved; the tile says "Locked".',
                 {"at": ("date", "2026-11-16T15:41:36Z"), "record": record}),
                (69, "The receipt date is missing, so the age of the report is unknown; the tile says \"Locked\".",
                 {"record": record}),
                (0, f'Only the plain value is used, so the tile says "Locked": {kind}; the next save repairs it.',
                 {"at": at, "plain": ("string", "locked"), "record": broken}),
                (69, f'The tile says "No status": {kind}.', {"at": at, "record": broken}),
                (69, f'The tile says "No status": {self.group}/defaults.json is damaged: tarno.lastStatus: has no value '
                 "of its type; the next save sets it aside.", {"at": at, "record": ("data", 5)})):
            with self.subTest(values):
                self.write(**values)
                report = self.doctor(code)
                self.assertEqual(report[""], verdict)
                age = "received in the future" if "future" in verdict else "unknown: no receipt date is stored"
                self.assertEqual(report["report's age"] == age, "receipt date" in verdict)
                shown = self.call("tarno-status", "show", "--at", MOMENT)
                self.assertEqual(shown.returncode, 69 if "No status" in verdict else 0)
                if shown.stdout:
                    self.assertIn('the tile says "' + shown.stdout.decode().split("\n")[0], verdict)

    def test_doctor_says_where_another_store_is(self):
        self.save()
        self.assertNotIn("another store", self.doctor(code=0))
        systemctl, session = self.folder / "systemctl", self.folder / "session data"
        systemctl.write_text(f"#!/bin/sh\necho A=b; echo 'XDG_DATA_HOME={session}'; echo C=d\n")
        systemctl.chmod(0o755)
        own = self.environment["XDG_DATA_HOME"]
        self.environment["PATH"] = f"{self.folder}:{self.environment['PATH']}"
        for other in (self.folder / ".local/share", session):
            self.environment["XDG_DATA_HOME"] = str(other)
            self.save()
            self.environment["XDG_DATA_HOME"] = own
            report = self.doctor(code=0)
            self.assertIn(f"{other}/{GROUP}/defaults.json, saved 2", report["another store"])
            self.assertRegex(report[""], r"\AThe report is fresh: .* The other store is newer: ")

    def test_doctor_show_and_save_agree_on_a_store_that_cannot_be_used(self):
        self.group.parent.mkdir(parents=True)
        self.group.symlink_to("/")
        for command, code, kind in (("save", 73, "saving"), ("show", 69, "reading")):
            done = self.run_program("tarno-status", command, stdin="{}", code=code)
            self.assertIn(b"is a symbolic link", done.stderr)
            self.assertIn("is a symbolic link", self.doctor()[kind])

    def test_doctor_predicts_that_a_lock_or_a_file_size_limit_stops_a_save(self):
        self.save()
        lock = os.open(self.group, os.O_RDONLY)
        fcntl.flock(lock, fcntl.LOCK_EX)
        self.run_program("tarno-status", "save", stdin="{}", code=75)
        self.assertIn("would fail: ", self.doctor()["saving"])
        os.close(lock)
        limited = lambda command, limit="-f 0": self.call("sh", "-c", f"ulimit {limit}; exec tarno-status {command}", stdin="{}")
        if limited("--version").returncode:
            self.skipTest("a sanitizer writes a file when the program starts")
        for command, code in (("save", 74), ("doctor", 69)):
            done = limited(command)
            self.assertEqual(done.returncode, code)
            self.assertIn(b"File too large", done.stdout + done.stderr)
        if "LSAN_OPTIONS" not in os.environ:  # a sanitizer needs more descriptors
            self.assertIn(limited("doctor", "-n 6").returncode, (0, 69))
        self.assertEqual(self.shown()["snapshot"]["status"], "locked")
        self.assertEqual(os.listdir(self.group), ["defaults.json"])

    def test_a_closed_standard_descriptor_is_neither_written_nor_read(self):
        for command, code, said in (("show >&-", 74, b"standard output"), ("save <&-", 66, b"standard input"),
                                    ("save no-such-file 2>&-", 66, b""), ("save 2>&-", 65, b"")):
            with self.subTest(command):
                done = self.call("sh", "-c", "exec tarno-status " + command)
                self.assertEqual((done.returncode, done.stdout), (code, b""))
                self.assertIn(said, done.stderr)

    def test_wrong_command_lines(self):
        for words in ("", "shout", "show --at now", "save --received-at 2026-02-30T00:00:00Z"):
            self.run_program("tarno-status", *words.split(), code=64)
