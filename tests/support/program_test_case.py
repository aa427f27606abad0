"""The base class of the tests that run programs. Each test has its own store."""
import contextlib
import json
import os
import shutil
import signal
import socket
import subprocess
import tempfile
import time
from pathlib import Path

from tidy_test_case import TidyTest

BIN = Path(os.environ["TARNO_BIN"])
GROUP = "K7T2M9Q4XW.dev.tarno.group"
MOMENT = "2026-11-16T15:41:35Z"
RECORD = {"device_name": "Kivo's Mac", "status": "locked", "reason": "Mac locked.", "face_present": True}


class ProgramTest(TidyTest):
    def setUp(self):
        self.folder = Path(tempfile.mkdtemp(prefix="tarno-test-"))
        self.addCleanup(shutil.rmtree, self.folder)
        self.group = self.folder / "data" / GROUP
        self.environment = {**os.environ, "HOME": str(self.folder), "XDG_DATA_HOME": str(self.folder / "data"),
                            "LC_ALL": "C.UTF-8", "XDG_CACHE_HOME": str(BIN.parent / "tests"),  # the cache of fontconfig
                            "PATH": f"{BIN}:{os.environ['PATH']}:/usr/sbin", "TMPDIR": str(self.folder)}

    def call(self, *command, stdin="", environment=None, **options):
        """Runs a command to its end, without checking its exit status. The options are those of subprocess.run()."""
        return subprocess.run([str(word) for word in command], input=stdin.encode(), timeout=120, cwd=self.folder,
                              env={**self.environment, **(environment or {})},
                              **{"stdout": subprocess.PIPE, "stderr": subprocess.PIPE, **options})

    def run_program(self, *command, stdin="", code=0, **environment):
        done = self.call(*command, stdin=stdin, environment=environment)
        self.assertEqual(done.returncode, code, (command, done.stderr.decode()))
        if code:
            self.assertRegex(done.stderr.decode(), r"\Atarno-\w+: [^\n]+\n\Z", command)
            self.assertEqual(done.stdout, b"", command)
        return done

    def start(self, *command, **options):
        """Starts a process, which is killed with its children when the test ends. The options are those of subprocess.Popen()."""
        process = self.enterContext(subprocess.Popen(command, env=self.environment, cwd=self.folder,
                                                     start_new_session=True, **options))

        def end():
            with contextlib.suppress(ProcessLookupError):
                os.killpg(process.pid, signal.SIGKILL)

        self.addCleanup(end)
        return process

    def stand_ins(self, folder, texts):
        """Creates a folder with shell scripts, {name: lines}, and returns its path."""
        path = self.folder / folder
        path.mkdir(parents=True)
        for name, text in texts.items():
            (path / name).write_text(f"#!/bin/sh\n{text}\n", encoding="utf-8")
            (path / name).chmod(0o755)
        return path

    def free_port(self):
        with socket.create_server(("127.0.0.1", 0)) as free:
            return free.getsockname()[1]

    def needs(self, *programs):
        for program in programs:
            if not shutil.which(program, path=self.environment["PATH"]):
                self.skipTest(f"{program} is not installed")

    def wait_for(self, condition):
        end = time.monotonic() + 60
        while not condition():
            self.assertLess(time.monotonic(), end, "what was waited for did not come")
            time.sleep(0.02)

    def save(self, record=None, at=MOMENT):
        self.run_program("tarno-status", "save", "--received-at", at, stdin=json.dumps(record or RECORD))

    def shown(self, at=MOMENT):
        """Returns what `show --json` prints for a date, or for now if it is None."""
        return json.loads(self.run_program("tarno-status", "show", "--json", *(["--at", at] if at else [])).stdout)

    def inspected(self, *arguments):
        return json.loads(self.run_program("tarno-widget", "inspect", "--json", *arguments).stdout)
