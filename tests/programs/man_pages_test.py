"""The man pages, compared with what the programs' --help says, and as mandoc judges them."""

import pathlib
import re
import subprocess

from program_test_case import ProgramTest

PAGES = pathlib.Path(__file__).resolve().parents[2] / "packaging/man"


def listed(part):
    """The options with an entry of their own: {"--layer": {"above", "desktop", "normal"}, "--json": set()}."""
    entries = re.findall(r"^\.It Fl (?:h , Fl )?-([\w-]+)(?: (?:Ar|Cm) (.*))?$", part, re.M)
    return {"--" + name: set(words.split()) - {"|"} for name, words in entries}


class ManPages(ProgramTest):
    def help_of(self, program, command):
        """The options as listed() gives them, and the commands."""
        text = self.run_program(program, *filter(None, [command]), "--help").stdout.decode()
        options, _, commands = text.partition("\nSubcommands:\n")
        found = re.findall(r"^  (?:-h,)?(--[\w-]+)(?: (?!Excludes|Needs|REQUIRED)([A-Z]+)(?::\{(.*?)\})?)?", options, re.M)
        return ({name: set(words.split(",") if words else argument.split()) for name, argument, words in found},
                re.findall(r"^  ([a-z]+)  ", commands.partition("\n\n")[0], re.M))

    def test_pages_and_help_name_the_same(self):
        for program in ("tarno-desktop", "tarno-status", "tarno-widget"):
            general, _, rest = (PAGES / f"{program}.1").read_text().partition("\n.Sh COMMANDS\n")
            names, texts = (re.split(r"^\.Ss (\w+)$", rest, flags=re.M)[start::2] for start in (1, 2))
            shared, sections, forms, used = listed(general), {"": "", **dict(zip(names, texts))}, {}, set()
            for form in re.split(r"^\.Nm$", general.partition("\n.Sh DESCRIPTION\n")[0], flags=re.M)[1:]:
                command = re.match(r"(?:\n\.Cm (\w+))?", form)[1] or ""
                forms.setdefault(command, set()).update("--" + name for name in re.findall(r"(?:Fl|\|) -([\w-]+)", form))
            self.assertEqual(names, self.help_of(program, "")[1])
            for command in ["", *names]:
                options, _ = self.help_of(program, command)
                general_ones = {name: shared[name] for name in options if name in shared}
                self.assertEqual({**general_ones, **listed(sections[command])}, options, (program, command))
                self.assertEqual(forms[command], set(options) - ({"--help"} if command else set()), (program, command))
                used.update(general_ones)
            self.assertEqual(used, set(shared), program)

    def test_mandoc_finds_nothing_wrong(self):
        self.needs("mandoc")
        for page in PAGES.glob("*.[15]"):
            done = subprocess.run(["mandoc", "-Tlint", page], capture_output=True, text=True, cwd=PAGES)
            # Which manuals of others are installed is not the page's matter.
            self.assertEqual([line for line in done.stdout.splitlines() if "referenced manual not found" not in line], [])
