"""Compares --help with the man pages and with the completions of shells."""
import re
import subprocess
from pathlib import Path

from program_test_case import BIN, ProgramTest

PROGRAMS = ("tarno-desktop", "tarno-status", "tarno-widget")
PAGES = Path(__file__).resolve().parents[2] / "packaging/man"
COMPLETIONS = BIN.parent / "packaging/completions"
COMPLETE = 'compopt() { :; }; source "$0"; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _${1//-/_}; echo "${COMPREPLY[@]}"'


def output(*command):
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout


def completed(line):
    """Returns the words that bash offers at the end of a line."""
    words = line.split(" ")
    return set(output("bash", "-c", COMPLETE, COMPLETIONS / words[0], *words).split())


def help_of(command):
    """Returns the options of a command with their values, {"--layer": {"above", "desktop"}, "--json": set()}, and its commands."""
    program, *words = command.split()
    text = output(BIN / program, *words, "--help")
    assert re.search(rf"Example:\n  .*{command}", text), text
    options, _, commands = text.partition("\nCommands:\n")
    found = re.findall(r"^  (?:-h,)?(--[\w-]+)(?: (?!Excludes|Needs|REQUIRED)([A-Z]+)(?::\{(.*?)\})?)?", options, re.M)
    return ({name: set(words.split(",") if words else argument.split()) for name, argument, words in found},
            re.findall(r"^  ([a-z]+)  ", commands.partition("\n\n")[0], re.M))


def listed(part):
    """Returns the options that have an entry in a part of a man page, in the form of help_of()."""
    entries = re.findall(r"^\.It Fl (?:h , Fl )?-([\w-]+)(?: (?:Ar|Cm) (.*))?$", part, re.M)
    return {"--" + name: set(words.split()) - {"|"} for name, words in entries}


class Help(ProgramTest):
    def test_pages_and_completions_name_the_same(self):
        for program in PROGRAMS:
            general, _, rest = (PAGES / f"{program}.1").read_text().partition("\n.Sh COMMANDS\n")
            names, texts = (re.split(r"^\.Ss (\w+)$", rest, flags=re.M)[start::2] for start in (1, 2))
            shared, sections, forms, used = listed(general), {"": "", **dict(zip(names, texts))}, {}, set()
            for form in re.split(r"^\.Nm$", general.partition("\n.Sh DESCRIPTION\n")[0], flags=re.M)[1:]:
                command = re.match(r"(?:\n\.Cm (\w+))?", form)[1] or ""
                forms.setdefault(command, set()).update("--" + name for name in re.findall(r"(?:Fl|\|) -([\w-]+)", form))
            self.assertEqual(names, help_of(program)[1])
            for command in ["", *names]:
                line = f"{program} {command}".strip()
                options, _ = help_of(line)
                general_ones = {name: shared[name] for name in options if name in shared}
                self.assertEqual({**general_ones, **listed(sections[command])}, options, line)
                self.assertEqual(forms[command], set(options) - ({"--help"} if command else set()), line)
                self.assertEqual(completed(f"{line} --"), set(options), line)
                used.update(general_ones)
            self.assertEqual(used, set(shared), program)
            self.assertRegex(output(BIN / program, "--version"), rf"\A{program} \d+\.\d+\.\d+\n\Z")

    def test_bash_and_fish_complete_lines(self):
        for line, words in (("tarno-status ch", "check"), ("tarno-status check lo", "locked locking"),
                            ("tarno-status watch --format w", "waybar"),
                            ("tarno-desktop --margin 3 --anchor bottom-", "bottom-left bottom-right"),
                            ("tarno-desktop --layer above --au", "--autostart"),
                            ("tarno-widget render --family ", "small medium large")):
            with self.subTest(line):
                self.assertEqual(completed(line), set(words.split()))
                self.needs("fish")
                shown = output("fish", "-N", "-c", f"source {COMPLETIONS / line.split()[0]}.fish; complete -C '{line}'")
                self.assertEqual({found.split("\t")[0] for found in shown.splitlines()}, set(words.split()))

    def test_zsh_and_mandoc_find_nothing_wrong(self):
        self.needs("zsh", "mandoc")
        for program in PROGRAMS:
            output("zsh", "-n", COMPLETIONS / f"_{program}")
        for page in PAGES.glob("*.[15]"):
            done = subprocess.run(["mandoc", "-Tlint", page], capture_output=True, text=True, cwd=PAGES)
            # A page may refer to a manual that is not installed.
            self.assertEqual([line for line in done.stdout.splitlines() if "referenced manual not found" not in line], [])
