# SPDX-License-Identifier: Apache-2.0
"""errors: docs/errors.md and the texts in the sources agree.

Every text of the page's first column is in the library's string literals, part by part where "..." is what
varies; every reason for which the library ends the process is on the page.
"""
import re

from checks.source_tree import LIBRARY

PAGE = "docs/errors.md"
LITERAL = r'"((?:[^"\\]|\\.)*)"'


def literals(text):
    """The string literals of a source; neighbours are one."""
    for found in re.finditer(rf"{LITERAL}(?:\s*{LITERAL})*", text):
        yield "".join(re.findall(LITERAL, found.group(0)))


def parts(text):
    """The pieces between the "..." of a text, cut at ": ", where a prefix is put before a reason."""
    return [part.strip(" {") for piece in text.split("...") for part in piece.split(": ") if len(part.strip(" {:")) > 2]


def check(tree):
    page = tree.text(PAGE) if PAGE in tree.files else ""
    sources = {name: tree.text(name) for name in tree.under(LIBRARY, suffixes=(".h", ".cpp"))}
    written = "\n".join(literal for text in sources.values() for literal in literals(text))
    problems, rows = [], 0
    for number, line in enumerate(page.splitlines(), 1):
        if not line.startswith("| `"):
            continue
        rows += 1
        for text in re.findall(r"`([^`]+)`", line.split(" | ")[0]):
            problems += [f"{PAGE}:{number}: no source says {part!r}" for part in parts(text)
                         if part.rstrip(":") not in written]
    if rows < 30:
        problems.append(f"{PAGE}: expected the tables of messages, found {rows} rows")
    for name, text in sources.items():
        for call in re.finditer(r"\babortOnMisuse\(([^;{]*)\);", text):
            problems += [f"{PAGE}: has no row for {literal!r} of {name}" for literal in literals(call.group(1))
                         if literal.strip() not in page]
    return problems
