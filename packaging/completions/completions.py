#!/usr/bin/env python3
"""Generates the completions of a program for bash, zsh and fish from its --help.

usage: completions.py PROGRAM FOLDER
"""
import pathlib
import re
import shlex
import subprocess
import sys

# Values that --help does not list, and how each shell completes a path.
WORDS = {"--format": ["json", "waybar"]}
BASH = {"FILE": "compopt -o default", "FOLDER": "compopt -o dirnames"}
ZSH = {"FILE": "_files", "FOLDER": "_files -/"}
FISH = {"FILE": " -r -F", "FOLDER": " -x -a '(__fish_complete_directories)'"}


def commands(program):
    """Returns {command: (options, subcommands, positional argument)}. The key "" stands for the program itself.

    An option is (names, argument, words, text). The argument of a flag is "". The words are all possible values, if known.
    A positional argument is (argument, words), or ("", []) if the command has none.
    """
    found, names = {}, [""]
    for name in names:
        shown = subprocess.run([program, *name.split(), "--help"], capture_output=True, text=True, check=True).stdout
        options, subcommands, positional, section = [], [], ("", []), ""
        # CLI11 prints the text of a long name on the next line.
        for line in re.sub(r"(?m)^(  -.*)\n {20,}", r"\1  ", shown).splitlines():
            section = line if re.match(r"\S.*:$", line) else section
            if entry := re.match(r"  (\S+)(.*)", line):
                left, _, text = entry[2].rpartition("  ")
                text = re.split(r"[.:;] | \(" if section == "Options:" else ": ", text.strip())[0].replace(":", " ")
                words = re.search(r":\{([\w,-]+)\}", left) or re.search(r": (\w+(?:, \w+)* or \w+)$", line)
                words = re.split(r",\s*| or ", words[1]) if words else WORDS.get(entry[1], [])
                if section == "Options:":
                    argument = re.match(r" ?(?!Excludes:|Needs:|REQUIRED)([A-Z]*)", left)[1]
                    options.append((entry[1].split(","), argument, words, text))
                elif section == "Arguments:":
                    positional = entry[1], words
                elif section == "Commands:":
                    subcommands.append((entry[1], text))
        found[name] = options, subcommands, positional
        names += [word for word, _ in subcommands]
    return found


def bash(program, found):
    function = "_" + program.replace("-", "_")
    lines = [f"{function}() {{", "  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]} command= words",
             "  [[ $COMP_CWORD -gt 1 && ${COMP_WORDS[1]} != -* ]] && command=${COMP_WORDS[1]}", "  COMPREPLY=()",
             '  [[ $word == "=" ]] && word=', '  [[ $before == "=" ]] && before=${COMP_WORDS[COMP_CWORD-2]}',
             '  case "$command $before" in']
    for name, (options, _, _) in found.items():
        for names, argument, words, _ in options:
            if argument:
                pattern = "|".join(f'"{name} {one}"' for one in names)
                action = BASH.get(argument) or f'COMPREPLY=($(compgen -W "{" ".join(words)}" -- "$word"))'
                lines.append(f"    {pattern}) {action}; return ;;")
    lines += ["  esac", "  case $command in"]
    for name, (options, subcommands, (argument, values)) in found.items():
        words = [one for names, *_ in options for one in names] + [word for word, _ in subcommands] + values
        action = f"; {BASH[argument]}" if argument in BASH else ""
        lines.append(f'    "{name}") words="{" ".join(words)}"{action} ;;')
    return lines + ["  esac", '  COMPREPLY=($(compgen -W "$words" -- "$word"))', "}", f"complete -F {function} {program}"]


def zsh(program, found):
    def action(argument, words):
        return ZSH.get(argument) or (f"({' '.join(words)})" if words else " ")

    def arguments(options, positional):
        specs = [shlex.quote(f"1:{positional[0]}:{action(*positional)}")] if positional[0] else []
        for names, argument, words, text in options:
            specs += [shlex.quote(f"{one}=[{text}]:{argument}:{action(argument, words)}" if argument else f"{one}[{text}]") for one in names]
        return " ".join(["_arguments", *specs])

    options, subcommands, positional = found[""]
    if not subcommands:
        return [f"#compdef {program}", arguments(options, positional)]
    lines = [f"#compdef {program}", "if (( CURRENT == 2 )); then", "  local -a commands=(" +
             " ".join(shlex.quote(f"{word}:{text}") for word, text in subcommands) + ")", "  _describe command commands",
             "  " + arguments(options, positional), "  return", "fi", "local command=$words[2]", "shift words; (( CURRENT-- ))",
             "case $command in"]
    return lines + [f"  {word}) {arguments(found[word][0], found[word][2])} ;;" for word, _ in subcommands] + ["esac"]


def fish(program, found):
    lines = [f"complete -c {program} -f"]
    for name, (options, subcommands, (positional, values)) in found.items():
        # fish takes the argument of an option for a subcommand, so a program without subcommands has no condition.
        seen = f"__fish_seen_subcommand_from {name}" if name else "__fish_use_subcommand" if subcommands else "true"
        when = f"complete -c {program} -n '{seen}'"
        lines += [f"{when} -a {word} -d {shlex.quote(text)}" for word, text in subcommands]
        lines += [f"{when} -F"] if positional == "FILE" else [f"{when} -a '{' '.join(values)}'"] if values else []
        for names, argument, words, text in options:
            line = when + "".join(f" -l {one[2:]}" if one.startswith("--") else f" -s {one[1:]}" for one in names)
            takes = FISH.get(argument) or (f" -x -a '{' '.join(words)}'" if argument else "")
            lines.append(f"{line}{takes} -d {shlex.quote(text)}")
    return lines


program, folder = pathlib.Path(sys.argv[1]).absolute(), pathlib.Path(sys.argv[2])
found = commands(program)
for write, file in ((bash, program.name), (zsh, f"_{program.name}"), (fish, f"{program.name}.fish")):
    (folder / file).write_text("\n".join(write(program.name, found)) + "\n")
