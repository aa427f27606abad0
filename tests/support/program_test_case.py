"""What the tests of the programs share: the programs run on a store of the test's own."""

import json
import os
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

BIN = Path(os.environ["TARNO_BIN"])
GROUP = "K7T2M9Q4XW.dev.tarno.group"
MOMENT = "2026-11-16T15:41:35Z"
RECORD = {"device_name": "Kivo's Mac", "status": "locked", "reason": "Mac locked.", "face_present": True}


class ProgramTest(unittest.TestCase):
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
