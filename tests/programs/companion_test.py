"""Runs the commands of docs/companion.md as they are, except those that tests/companion and tests/examples run."""
import json
import re
import socket
import subprocess

from document import PAGE, block, under
from program_test_case import RECORD, ProgramTest

STUBS = {
    "ssh": '[ "$1" = desk ] && shift && exec "$@"',
    "mac-status": "echo unlocked",
    # This machine is the desk.
    "mosquitto_pub": 'for word; do shift; [ "$word" = desk ] && word=localhost; set -- "$@" "$word"; done\n'
                     "exec /usr/bin/mosquitto_pub \"$@\"",
    "sudo": 'case $1 in chown | systemctl) ;; *) exec "$@" ;; esac',
    "loginctl": 'echo "$@" >>desk.log',
    "notify-send": 'echo "$@" >>desk.log',
}


class Companion(ProgramTest):
    def setUp(self):
        super().setUp()
        stubs = self.stand_ins("stubs", STUBS)
        self.environment |= {"PATH": f"{stubs}:{self.environment['PATH']}", "XDG_CONFIG_HOME": str(self.folder)}

    def start_block(self, code):
        self.start("sh", "-e", "-c", code, stdout=subprocess.DEVNULL)

    def run_block(self, code, stdin=""):
        done = self.call("sh", "-e", "-c", code, stdin=stdin)
        self.assertEqual((done.returncode, done.stderr.replace(b"Password: Reenter password: ", b"")), (0, b""), code)
        return done.stdout.decode()

    def status(self):
        shown = self.shown(at=None)
        return shown and (shown["status"], shown["detail_line"])

    def test_the_example_is_a_record_and_the_manual_page_lists_its_keys(self):
        example = block("json", "The record")
        self.assertEqual(self.run_program("tarno-status", "save", stdin=example).stderr, b"")
        manual = (PAGE.parents[1] / "packaging/man/tarno-status.1").read_text().partition(".Sh THE RECORD")[2]
        keys = re.findall(r"^\.It Li (\w+)", manual, re.M)
        self.assertEqual(keys, list(json.loads(example)))
        self.assertEqual(len(keys), 16)

    def test_a_report_over_ssh_and_what_a_script_is_told(self):
        self.assertEqual(self.run_block(block("sh", "One ssh command per report")), "")
        self.assertEqual(self.status(), ("locked", "Lid closed"))
        check, show = under("Read the status in a script")
        self.assertEqual(self.run_block(check), "The Mac is locked.\n")
        self.assertEqual(json.loads(self.run_block(show))["status_line"], "Locked")
        self.assertIn("All is well.", self.run_block(block("sh", "If the tile does not change")))

    def test_recipes(self):
        for heading, log, line in (("Lock the desk when the Mac locks", "desk.log", r"lock-session"),
                                   ("A notification at every change", "desk.log", r"--app-name=Tarno Kivo's Mac: Locked"),
                                   ("A log", "mac.log", r"20\S+Z locked")):
            with self.subTest(heading):
                log = self.folder / log
                log.unlink(missing_ok=True)
                self.run_program("tarno-status", "save", stdin='{"status": "unlocked"}')
                self.start_block(block("sh", heading))
                self.wait_for(lambda: log.exists() or "Lock" in heading)
                self.run_program("tarno-status", "save", stdin=json.dumps(RECORD))
                self.wait_for(lambda: log.exists() and re.search(rf"(?m)^{line}$", log.read_text()))

    def test_one_ssh_connection(self):
        self.start_block(block("sh", "One ssh connection"))
        self.wait_for(lambda: self.status() == ("unlocked", "Waiting for Tarno status."))

    def test_mqtt(self):
        self.needs("mosquitto", "mosquitto_sub")
        port = self.free_port()
        (self.folder / "conf.d").mkdir()
        setup, subscribe, publish = [code.replace("1883", f"{port} 127.0.0.1").replace("/etc/mosquitto", str(self.folder))
                                     for code in under("MQTT")]
        self.run_block(setup, stdin="secret\nsecret\n")
        (self.folder / "mosquitto.conf").write_text(f"include_dir {self.folder}/conf.d\nuser root\n")
        self.start("mosquitto", "-c", "mosquitto.conf", stderr=subprocess.DEVNULL)
        login = block("conf", "MQTT").replace("PASSWORD", "secret")
        for name in ("mosquitto_sub", "mosquitto_pub"):
            (self.folder / name).write_text(f"-p {port}\n{login}", encoding="utf-8")
        with socket.socket() as client:
            self.wait_for(lambda: client.connect_ex(("127.0.0.1", port)) == 0)
        self.start_block(subscribe)
        # Publishes again and again, because the subscriber may not be ready yet.
        self.wait_for(lambda: self.run_block(publish) or self.status() == ("unlocked", "Touch ID"))
        anybody = self.call("/usr/bin/mosquitto_pub", "-p", port, "-t", "mac/status", "-m", "{}",
                            environment={"XDG_CONFIG_HOME": "/nonexistent"})
        self.assertIn(b"not authori", anybody.stderr)
