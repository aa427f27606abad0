"""The blocks of code on a page of the documentation."""

import re
from pathlib import Path

PAGE = Path(__file__).resolve().parents[2] / "docs/companion.md"


def blocks(language):
    """(heading, code) of each block in the language, from top to bottom."""
    found = []
    for section in re.split(r"^##+ ", PAGE.read_text(encoding="utf-8"), flags=re.M)[1:]:
        heading = section.split("\n", 1)[0]
        found += [(heading, code) for code in re.findall(rf"^```{language}\n(.*?)^```$", section, re.M | re.S)]
    return found


def under(heading, language="sh"):
    """The code of each under a heading."""
    return [code for found, code in blocks(language) if found == heading]


def block(language, heading):
    """The only one under a heading."""
    (code,) = under(heading, language)
    return code
