"""The two machines of the reporter's tests: a Mac, whose commands are replaced by scripts, and a desk with a real sshd."""
import contextlib
import os
import pwd
import shutil
import signal
import subprocess
import sys
import tempfile
from pathlib import Path

from program_test_case import BIN, ProgramTest

REPORTER = Path(__file__).resolve().parents[2] / "companion/mac/tarno-report"
SSHD = shutil.which("sshd", path=os.environ["PATH"] + ":/usr/sbin")

# The output of `ioreg -n Root -d1`. Here and below, the keys that the reporter reads also appear where it must ignore them.
ROOT = """+-o Root  <class IORegistryEntry, id 0x100000100, retain 31>
    {
      "IOKitBuildVersion" = "Darwin Kernel Version 23.1.0: root:xnu-10002.41.9~6/RELEASE_ARM64_T6000"
      "OSKernelCPUSubtype" = 18446744073709551615
%s      "IORegistryPlanes" = {"IOPower"="IOPower","IOService"="IOService","IOUSB"="IOUSB"}
      "IOKitDiagnostics" = {"Classes"={"IOConsoleLocked" = Yes,"IOHIDSystem"=1""" + ',"IOUserClient"=7' * 5000 + """}}
      "IOMaximumMappedIOByteCount" = 268435456
    }
"""
SESSION = ('{{"kCGSSessionOnConsoleKey"={},"kSCSecuritySessionID"=100007,"kCGSSessionUserNameKey"="kivo"{},'
           '"kCGSessionLongUserNameKey"="Kivo, the first","kCGSSessionIDKey"=257,"kCGSSessionUserIDKey"=501}}')
# The output of `ioreg -c IOHIDSystem`.
HID = "+-o Root  <class IORegistryEntry, id 0x100000100, retain 31>\n" + """\
  | +-o AppleARMPE  <class AppleARMPE, id 0x100000246, registered, matched, active, busy 0 (35 ms), retain 42>
""" * 2000 + """  | +-o IOHIDSystem  <class IOHIDSystem, id 0x1000004a2, registered, matched, active, busy 0 (0 ms), retain 22>
  | | | {
  | | |   "HIDParameters" = {"HIDPointerAcceleration"=45056,"HIDIdleTime" = 1,"HIDClickTime"=500000000}
%s  | | |   "IOProviderClass" = "IOResources"
  | | | }
"""
STAND_INS = {
    "ioreg": 'case "$*" in "-n Root -d1") cat "$MAC/now/root";; "-c IOHIDSystem") cat "$MAC/now/hid";; *) exit 64;; esac',
    "scutil": '[ "$*" = "--get ComputerName" ] && cat "$MAC/now/name"',
    "launchctl": f'exec {sys.executable} -B {Path(__file__).parent}/launchctl.py "$@"',
    "sleep": '[ "$1" != 1 ] || set 5; exec /bin/sleep "0.$1"',  # ten times as fast
    "scp": f'[ "$1" = desk:/usr/share/tarno/tarno-report ] && cp "{REPORTER}" "$2"',
    # Outside of batch mode, a person would type a password. This key replaces it.
    "ssh": 'case $* in *BatchMode*) ;; *) set -- -i "$MAC/person" "$@";; esac; exec /usr/bin/ssh -F "$MAC/config" "$@"',
}


def processes(of_session=None, of_parent=None):
    """Yields the ids of the running processes of a session or a parent."""
    for stat in Path("/proc").glob("[0-9]*/stat"):
        try:
            state, parent, _, session = stat.read_text().rpartition(")")[2].split()[:4]
        except OSError:
            continue
        if state != "Z" and (int(session) == of_session or int(parent) == of_parent):
            yield int(stat.parent.name)


class MacTest(ProgramTest):
    def setUp(self):
        super().setUp()
        self.mac, self.home = self.folder / "mac", self.folder / "Kivo & <sons>"
        self.home.mkdir()
        commands = self.stand_ins("mac/bin", {name: f'echo >>"$MAC/{name} calls"\n{text}' for name, text in STAND_INS.items()})
        self.environment |= {"PATH": f"{commands}:/usr/bin:/bin:{BIN}", "HOME": str(self.home), "MAC": str(self.mac)}
        self.set()

    def set(self, console="No", screen="", idle=0.5, name="Kivo's Mac", more=""):
        """Sets what the Mac's commands print from now on. `screen` is added to the session, and `more` after the session."""
        now = Path(tempfile.mkdtemp(dir=self.mac))
        root = f'      "IOConsoleUsers" = ({SESSION.format("Yes", screen)}{more})\n' if console else ""
        root += f'      "IOConsoleLocked" = {console}\n' if console else ""
        hid = f'  | | |   "HIDIdleTime" = {int(idle * 1e9)}\n' if idle is not None else ""
        for file, text in (("root", ROOT % root), ("hid", HID % hid), ("name", f"{name}\n")):
            (now / file).write_text(text)
        (now / "now").symlink_to(now)
        (now / "now").rename(self.mac / "now")

    def calls(self, name):
        return len((self.mac / f"{name} calls").read_text())

    def reporter(self, *words, code=0):
        """Runs the reporter without a terminal, so that ssh asks nothing. Returns its output, or its errors if it must fail."""
        done = self.call("sh", REPORTER, *words, start_new_session=True)
        self.assertEqual(done.returncode, code, (words, done.stdout, done.stderr))
        return (done.stderr if code else done.stdout).decode()


class DeskTest(MacTest):
    def setUp(self):
        super().setUp()
        if not SSHD:
            self.skipTest("sshd is not installed")
        if os.geteuid() == 0:
            with contextlib.suppress(FileExistsError):  # the service of sshd creates it, too
                os.mkdir("/run/sshd", 0o755)
                self.addCleanup(os.rmdir, "/run/sshd")
        self.port = self.free_port()
        for key in ("person", "host_key"):
            subprocess.run(["ssh-keygen", "-q", "-t", "ecdsa", "-N", "", "-f", self.mac / key], check=True)
        self.desk = self.folder / "desk"
        self.keys, self.known_hosts = self.desk / ".ssh/authorized_keys", self.home / ".ssh/known_hosts"
        for file, text in ((self.keys, "# mine\n" + (self.mac / "person.pub").read_text().strip()),  # without a line break at the end
                           (self.known_hosts, f"[127.0.0.1]:{self.port} " + (self.mac / "host_key.pub").read_text()),
                           (self.mac / "config", f"Host desk\nHostName 127.0.0.1\nPort {self.port}\nIdentitiesOnly yes\n"
                            # People may have these settings. They must not apply to the reports.
                            f"ControlMaster auto\nControlPath {self.mac}/control\nRemoteCommand false\n"
                            f"LocalForward {self.port} desk:1\nExitOnForwardFailure yes\nRequestTTY force\n"
                            f'User {pwd.getpwuid(os.geteuid()).pw_name}\nUserKnownHostsFile "{self.known_hosts}"\n')):
            file.parent.mkdir(parents=True, exist_ok=True)
            file.write_text(text)
        self.start_sshd()
        self.addCleanup(lambda: self.call("launchctl", "bootout", f"gui/{os.getuid()}/dev.tarno.report"))

    def start_sshd(self, setting="", path=f"{BIN}:/usr/bin:/bin"):
        (self.mac / "sshd_config").write_text(f"""Port {self.port}\nListenAddress 127.0.0.1\nHostKey {self.mac}/host_key
            PidFile none\nAuthorizedKeysFile {self.keys}\nStrictModes no\nPermitRootLogin yes\nPasswordAuthentication no
            SetEnv HOME={self.desk} XDG_DATA_HOME={self.folder}/data PATH={path}\n{setting}\n""")
        self.sshd = self.start(SSHD, "-D", "-e", "-f", self.mac / "sshd_config", stderr=subprocess.PIPE)
        self.addCleanup(self.stop, self.sshd)
        self.assertIn(b"listening", self.sshd.stderr.readline())

    def stop(self, sshd):
        """Kills sshd and the processes of its connections, which have sessions of their own."""
        ending = [sshd.pid] if sshd.poll() is None else []
        for process in ending:
            ending += processes(of_parent=process)
        for process in ending:
            with contextlib.suppress(ProcessLookupError):
                os.kill(process, signal.SIGKILL)
        sshd.wait()
