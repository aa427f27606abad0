"""What shells complete after the programs' names."""

import re
import subprocess

from program_test_case import BIN, ProgramTest

FOLDER = BIN.parent / "packaging/completions"
COMPLETE = 'compopt() { :; }; source "$0"; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _${1//-/_}; echo "${COMPREPLY[@]}"'


def output(*command):
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout


class Completions(ProgramTest):
    def test_bash_and_fish_complete_lines(self):
        for line, words in (("tarno-status ch", "check"), ("tarno-status watch --format w", "waybar"),
                            ("tarno-desktop --margin 3 --anchor bottom-", "bottom-left bottom-right"),
                            ("tarno-desktop --layer above --au", "--autostart"),
                            ("tarno-widget render --family ", "small medium large")):
            with self.subTest(line):
                shown = output("bash", "-c", COMPLETE, FOLDER / line.split()[0], *line.split(" "))
                self.assertEqual(set(shown.split()), set(words.split()))
                self.needs("fish")
                shown = output("fish", "-N", "-c", f"source {FOLDER / line.split()[0]}.fish; complete -C '{line}'")
                self.assertEqual({found.split("\t")[0] for found in shown.splitlines()}, set(words.split()))

    def test_every_option_is_offered(self):
        for program in ("tarno-desktop", "tarno-status", "tarno-widget"):
            commands = re.findall(r"(?m)^  ([a-z]+)  ", output(BIN / program, "--help"))
            for command in [[], *([word] for word in commands)]:
                with self.subTest(program=program, command=command):
                    options = set(re.findall(r"(?m)^  (?:-h,)?(--[\w-]+)", output(BIN / program, *command, "--help")))
                    shown = output("bash", "-c", COMPLETE, FOLDER / program, program, *command, "--")
                    self.assertEqual(set(shown.split()), options)
            with self.subTest(program, shell="zsh"):
                self.needs("zsh")
                output("zsh", "-n", FOLDER / f"_{program}")
