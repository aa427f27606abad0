"""Checks what is installed beside the programs with the desktop's own tools, and the autostart entry."""
import os
import shutil
import subprocess

from program_test_case import BIN, ProgramTest


class Packaging(ProgramTest):
    def version_by(self, entry):
        """Runs each Exec line of a desktop entry with --version, unescaped as desktops do. Returns the number of lines."""
        lines = [line.removeprefix("Exec=") for line in entry.read_text().splitlines() if line.startswith("Exec=")]
        for line in lines:
            self.assertNotIn("%", line.replace("%%", ""))
            command = line.replace("\\\\", "\\").replace("%%", "%") + " --version"
            done = subprocess.run(["sh", "-c", command], capture_output=True, text=True)
            self.assertRegex(done.stdout, r"\Atarno-desktop \d+\.\d+\.\d+\n", (line, done.stderr))
        return len(lines)

    def test_an_installation_is_what_desktops_expect(self):
        prefix = self.folder / "a prefix"
        subprocess.run(["cmake", "--install", BIN.parent, "--prefix", prefix], check=True, capture_output=True)
        share = prefix / "share"
        for command, file in [
                ("desktop-file-validate", "applications/tarno-desktop.desktop"),
                ("appstreamcli validate --no-net --pedantic", "metainfo/dev.tarno.tarno.metainfo.xml"),
                ("systemd-analyze --user --man=no verify", "systemd/user/tarno-desktop.service")]:
            with self.subTest(command):
                self.needs(command.split()[0])
                done = self.call(*command.split(), share / file, environment={"XDG_RUNTIME_DIR": str(self.folder)})
                said = [line for line in done.stderr.splitlines() if b"connect to system bus" not in line]
                self.assertEqual((done.returncode, said), (0, []), done.stdout)
        self.assertEqual(self.version_by(share / "applications/tarno-desktop.desktop"), 3)
        for side in (16, 22, 24, 32, 48, 64, 128, 256):
            png = (share / f"icons/hicolor/{side}x{side}/apps/tarno-desktop.png").read_bytes()
            self.assertEqual(png[16:24], side.to_bytes(4, "big") * 2, side)
        self.assertTrue(os.access(share / "tarno/tarno-report", os.X_OK))
        svg = (share / "icons/hicolor/scalable/apps/tarno-desktop.svg").read_text()
        self.assertRegex(svg, r'(?s)<svg [^>]* viewBox="0 0 128 128".*<title>Tarno</title>.*(<path .*){4}</svg>')

    def test_autostart_is_written_and_removed(self):
        program = self.folder / 'my "own" \\$place 100%s' / "tarno-desktop"
        program.parent.mkdir()
        shutil.copy(BIN / "tarno-desktop", program)
        entry = self.folder / "config/autostart/tarno-desktop.desktop"
        for word, said in [("off", "Nothing to do: "), ("on", "Wrote "), ("on", "Wrote "), ("off", "Removed ")]:
            done = self.run_program(program, "--autostart", word, XDG_CONFIG_HOME=str(self.folder / "config"))
            self.assertRegex(done.stdout.decode(), rf"\A{said}[^\n]*{entry}[^\n]*\n\Z")
            self.assertEqual(entry.exists(), word == "on")
            if word == "on":
                self.assertEqual(self.version_by(entry), 1)
                self.assertIn("\nTryExec=" + str(program).replace("\\", "\\\\") + "\n", entry.read_text())
        for number, name in enumerate((".bak", ".bak-2")):
            entry.write_text(f"edited {number}")
            done = self.run_program(program, "--autostart", "on", XDG_CONFIG_HOME=str(self.folder / "config"))
            self.assertIn(f"kept as {entry}{name}.\n", done.stdout.decode())
            self.assertEqual(entry.with_name(entry.name + name).read_text(), f"edited {number}")
        (self.folder / "file").touch()
        for words, home, code in [("on", "/proc", 73), ("off", self.folder / "file", 74),
                                  ("on --margin 3", "/x", 64)]:
            self.run_program("tarno-desktop", "--autostart", *words.split(), code=code,
                             XDG_CONFIG_HOME=str(home), HOME="")
