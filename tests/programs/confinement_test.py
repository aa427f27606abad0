"""Tests the commands of tarno-widget that run in confinement."""
import os
import subprocess
from pathlib import Path

from program_test_case import ProgramTest


class Confinement(ProgramTest):
    def test_fonts_are_read_in_confinement(self):
        configuration = self.folder / "fonts.conf"
        memory = os.memfd_create("frame", os.MFD_ALLOW_SEALING)
        self.addCleanup(os.close, memory)
        for command in (f"frame --fd {memory}", "render --output a.png", "inspect", "gallery --output ."):
            os.mkfifo(configuration)
            self.environment["FONTCONFIG_FILE"] = str(configuration)
            process = self.start("tarno-widget", *command.split(), pass_fds=[memory], stdout=subprocess.DEVNULL)
            with configuration.open("w") as pipe:  # waits until the program reads it
                status = Path(f"/proc/{process.pid}/status").read_text()
                configuration.unlink()
                pipe.write("<fontconfig><dir>/usr/share/fonts</dir></fontconfig>")
            self.assertEqual(process.wait(60), 0, command)
            self.assertRegex(status, r"\nNoNewPrivs:\t1\nSeccomp:\t2\n", command)
