"""Tests the reporter for the Mac: what it prints, and how its reports reach a desk."""
import json
import os
import shutil
import signal
import subprocess

from document import under
from mac_and_desk import REPORTER, SESSION, DeskTest, MacTest, processes

LOCKED = ',"CGSSessionScreenIsLocked"=Yes'
NAME = 'a "b\\\\c\\n"\t\x01\x7f\né 🦊 \\&'
TAKEN = "desk saves the reports of this Mac.\n"


class Reports(MacTest):
    def report(self, *shell, **options):
        return self.start(*(shell or ["sh"]), str(REPORTER), stdout=subprocess.PIPE, **options)

    def test_each_change_is_reported(self):
        other = "," + SESSION.format("No", LOCKED)
        lines = self.report().stdout
        for name, said, event, status, reason in (
                ("One", {"idle": 0}, "unlocked", "unlocked", "Screen unlocked"),
                ("Two", {"idle": 11.9}, "unchanged", "unlocked", "Screen unlocked"),
                ("Three", {"idle": 12}, "input_idle", "unlocked", "Screen unlocked"),
                ("Four", {"idle": 9e9, "console": "Yes", "screen": LOCKED}, "locked", "locked", "Screen locked"),
                ("Five", {"idle": 86400.2, "console": "Yes"}, "unchanged", "locked", "Screen locked"),
                ("Six", {"idle": 99, "more": other}, "unlocked", "unlocked", "Screen unlocked"),
                ("Seven", {"idle": 99, "screen": LOCKED, "more": other}, "locked", "locked", "Screen locked"),
                ("Eight", {"idle": None, "screen": LOCKED}, "input_none", "locked", "Screen locked"),
                ("Nine", {"idle": None, "console": None}, "unknown", "unknown", "Nobody is logged in")):
            self.set(name=name, **said)
            record = json.loads(lines.readline())
            while record["event"] == "unchanged" and record["device_name"] != name:
                record = json.loads(lines.readline())
            self.assertEqual([record["device_name"], record.get("input_idle_seconds")], [name, said["idle"]])
            self.assertEqual([record[key] for key in ("event", "status", "reason")], [event, status, reason])
        self.assertGreater(self.calls("ioreg"), 2 * 20)  # it looks every 2 s between two unchanged reports
        self.set(idle=11.99)
        self.assertIn(b'"input_idle_seconds": 11.9}', lines.readline())

    def test_every_shell_and_awk_prints_the_same_and_ends_with_its_reader(self):
        expected = None
        for awk in filter(shutil.which, ("original-awk", "gawk", "mawk", "busybox")):
            (self.mac / "bin/awk").unlink(missing_ok=True)
            (self.mac / "bin/awk").symlink_to(shutil.which(awk))
            for shell in ("dash", "bash --posix", "zsh --emulate sh", "mksh", "busybox sh"):
                if not shutil.which(shell.split()[0]):
                    continue
                self.set(name=NAME)
                # Python ignores SIGPIPE, and so does each run of the reporter except the first.
                process = self.report(*shell.split(), stderr=subprocess.PIPE, restore_signals=expected is None)
                line = process.stdout.readline().decode()
                self.assertEqual(self.run_program("tarno-status", "save", stdin=line).stderr, b"")
                record = json.loads(line)
                self.assertRegex(record.pop("seen_at"), r"\A\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ\Z")
                expected = expected or record | {"device_name": NAME}
                self.assertEqual(record, expected, (awk, shell))
                process.stdout.close()
                self.set("Yes")
                self.assertEqual((process.wait(60), process.stderr.read()), (0, b""), (awk, shell))

    def test_command_lines(self):
        self.assertIn("sh tarno-report install desk", self.reporter("--help"))
        version = self.run_program("tarno-status", "--version").stdout.decode()
        self.assertEqual(self.reporter("--version"), version.replace("status", "report"))
        for words in ("shout", "send", "status now", "install -oProxyCommand=ls", "install desk a;b"):
            self.assertRegex(self.reporter(*words.split(), code=64), r"\Atarno-report: [^\n]+\n\Z")
        for words in ("status", "uninstall"):
            self.assertEqual(self.reporter(words, code=69), "tarno-report: nothing is installed\n")
        (self.mac / "bin/ioreg").unlink()
        self.assertIn("'ioreg' is missing", self.reporter(code=69))


class FromMacToDesk(DeskTest):
    def homes(self):
        """Returns all files of both homes, except the one that each report changes."""
        return {path: path.is_file() and (path.read_bytes(), path.lstat().st_mode) for home in (self.home, self.desk)
                for path in home.rglob("*") if path.name != "last"}

    def wait_for_report(self, key, value):
        self.wait_for(lambda: (self.shown() or {"snapshot": {}})["snapshot"].get(key) == value)

    def logs(self, text, times):
        self.log = self.home / "Library/Application Support/Tarno/log"
        return self.log.exists() and self.log.read_text().count(text) == times

    def agent(self):
        return int((self.mac / "agent").read_text().split()[1])

    def test_install_makes_the_tile_follow_and_uninstall_undoes_it(self):
        self.keys.rename(self.desk / "dotfile")
        self.keys.symlink_to("../dotfile")
        before = self.homes()
        install, status, uninstall = under("A Mac that reports by itself")
        self.assertEqual(self.call("sh", "-e", "-c", install).stdout, TAKEN.encode())
        self.assertTrue(self.keys.read_text().startswith(
            'restrict,command="tarno-status save --follow --acknowledge" ssh-ed25519 '))
        watch = self.start("tarno-status", "watch", "--format", "{status} {device}", stdout=subprocess.PIPE).stdout
        for console, state in (("Yes", "locked"), ("No", "unlocked")):
            self.set(console)
            self.assertIn(f"{state} Kivo's Mac\n".encode(), watch)
        self.set(name=NAME)
        self.wait_for_report("device_name", NAME)
        homes, agent = self.homes(), self.agent()
        self.assertEqual(self.reporter("install", "desk"), TAKEN)
        self.assertEqual((self.homes(), self.agent()), (homes, agent))
        self.assertIn("this Mac reports to desk", self.reporter("install", "other", code=64))
        self.assertRegex(self.call("sh", "-e", "-c", status).stdout.decode(),
                         r"\AThe agent is running\.\ndesk saved the last report \d+ s ago\.\n\Z")
        self.assertEqual(self.call("sh", "-e", "-c", uninstall).stderr, b"")
        self.assertEqual(self.homes(), before)
        self.wait_for(lambda: not list(processes(of_session=agent)))
        self.assertEqual(list(self.folder.glob("tarno-report.*")), [])

    def test_connections_that_drop_are_made_again(self):
        self.reporter("install", "desk")
        for times, console, state in ((1, "Yes", "locked"), (2, "No", "unlocked")):
            self.stop(self.sshd)
            tried, looked = self.calls("ssh"), self.calls("ioreg")
            self.wait_for(lambda: self.calls("ssh") > tried)
            self.assertLess(self.calls("ioreg") - looked, 2 * 6)  # it ends before the next report
            self.wait_for(lambda: self.calls("ssh") > tried + 2)
            self.set(console)
            self.start_sshd()
            self.wait_for(lambda: self.logs("desk saves reports again", times))
            self.assertTrue(self.logs("no connection to desk", times) and self.logs("Connection refused", times))
            self.wait_for_report("status", state)
            self.log.write_text("old\n" * 999 + self.log.read_text())
        self.assertEqual(len(self.log.read_text().splitlines()), 999 + 200)
        (self.log.parent / "tarno-report").write_text("#!/bin/false\n")  # an older version
        agent = self.agent()
        self.assertEqual(self.reporter("install", "desk"), TAKEN)
        self.assertNotEqual(self.agent(), agent)
        os.kill(self.agent(), signal.SIGKILL)
        self.wait_for(lambda: not list(processes(of_session=self.agent())))  # its child processes end by themselves
        self.reporter("status", code=69)
        self.stop(self.sshd)
        self.assertIn(self.keys.read_text().split()[4], self.reporter("uninstall", code=69))  # the key that stays on the desk
        self.assertEqual(list(self.home.iterdir()), [self.home / ".ssh"])

    def test_what_fails_is_said_and_undone(self):
        def fails_with(text, **desk):
            before = self.homes()
            self.stop(self.sshd)
            self.start_sshd(**desk)
            self.assertIn(text, self.reporter("install", "desk", code=69))
            self.assertEqual(self.homes(), before, text)

        fails_with("Permission denied (publickey", setting="PubkeyAcceptedAlgorithms ecdsa-sha2-nistp256")
        fails_with("the desk has no tarno-status\n", path="/usr/bin:/bin")
        self.group.mkdir(parents=True)
        self.group.chmod(0o777)
        fails_with("nothing was saved: ")
        (self.mac / "agent").write_text("another 1")
        fails_with("Bootstrap failed: 5: Input/output error\n")
        self.known_hosts.write_text("")
        fails_with("Host key verification failed.")

    def test_a_person_sends_to_a_program_that_ssh_does_not_find(self):
        (self.folder / "there").symlink_to(shutil.which("tarno-status", path=self.environment["PATH"]))
        with (self.mac / "config").open("a") as config:
            config.write(f"IdentityFile {self.mac}/person\n")
        self.stop(self.sshd)
        self.start_sshd(path="/usr/bin:/bin")
        sender = self.start("sh", REPORTER, "send", "desk", self.folder / "there", stderr=subprocess.PIPE)
        self.wait_for_report("status", "unlocked")
        sender.terminate()
        self.assertEqual((sender.wait(), sender.stderr.read()), (143, b""))
