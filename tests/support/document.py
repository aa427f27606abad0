"""Reads the code blocks of docs/companion.md."""

import re
from pathlib import Path

PAGE = Path(__file__).resolve().parents[2] / "docs/companion.md"


def blocks(language):
    """Returns (heading, code) of each block in a language, from top to bottom."""
    found = []
    for section in re.split(r"^##+ ", PAGE.read_text(encoding="utf-8"), flags=re.M)[1:]:
        heading = section.split("\n", 1)[0]
        found += [(heading, code) for code in re.findall(rf"^```{language}\n(.*?)^```$", section, re.M | re.S)]
    return found


def under(heading, language="sh"):
    """Returns the code of each block under a heading."""
    return [code for found, code in blocks(language) if found == heading]


def block(language, heading):
    """Returns the code of the only block under a heading."""
    (code,) = under(heading, language)
    return code
