"""Reads the code blocks of docs/companion.md."""
import re
from pathlib import Path

PAGE = Path(__file__).resolve().parents[2] / "docs/companion.md"


def under(heading, language="sh"):
    """Returns the code of each block in a language under a heading, from top to bottom."""
    section = re.search(rf"(?ms)^##+ {re.escape(heading)}$(.*?)(?=^##+ |\Z)", PAGE.read_text(encoding="utf-8"))[1]
    return re.findall(rf"(?ms)^```{language}\n(.*?)^```$", section)


def block(language, heading):
    """Returns the code of the only block under a heading."""
    (code,) = under(heading, language)
    return code
