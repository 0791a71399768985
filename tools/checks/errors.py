# SPDX-License-Identifier: Apache-2.0
"""errors: docs/errors.md and docs/diagnosis.md agree with the texts in the sources.

Every text of the pages' first columns is in the library's string literals, part by part where "..." is what
varies; every reason for which the library ends the process is on the first page, every finding on the second.
"""
import re

from checks.source_tree import LIBRARY

PAGES = {"docs/errors.md": 30, "docs/diagnosis.md": 0}  # and the least number of rows; each finding has one
FINDINGS = LIBRARY + "platform/base/diagnosis.cpp"
LITERAL = r'"((?:[^"\\]|\\.)*)"'


def literals(text):
    """The string literals of a source; neighbours are one."""
    for found in re.finditer(rf"{LITERAL}(?:\s*{LITERAL})*", text):
        yield "".join(re.findall(LITERAL, found.group(0))).replace('\\"', '"')


def parts(text):
    """The pieces between the "..." of a text, cut at ": ", where a prefix is put before a reason."""
    return [part.strip(" {") for piece in text.split("...") for part in piece.split(": ") if len(part.strip(" {:")) > 2]


def check(tree):
    pages = {page: tree.text(page) if page in tree.files else "" for page in PAGES}
    sources = {name: tree.text(name) for name in tree.under(LIBRARY, suffixes=(".h", ".cpp"))}
    written = "\n".join(literal for text in sources.values() for literal in literals(text))
    problems = []
    for page, least in PAGES.items():
        rows = [(number, line) for number, line in enumerate(pages[page].splitlines(), 1) if line.startswith("| `")]
        for number, line in rows:
            for text in re.findall(r"`([^`]+)`", line.split(" | ")[0]):
                problems += [f"{page}:{number}: no source says {part!r}" for part in parts(text)
                             if part.rstrip(":") not in written]
        if len(rows) < least:
            problems.append(f"{page}: expected the tables of messages, found {len(rows)} rows")
    for name, text in sources.items():
        for call in re.finditer(r"\babortOnMisuse\(([^;{]*)\);", text):
            problems += [f"docs/errors.md: has no row for {literal!r} of {name}" for literal in literals(call.group(1))
                         if literal.strip() not in pages["docs/errors.md"]]
    texts = re.search(r"^std::string_view textOf\(Finding .*?^}", sources.get(FINDINGS, ""), re.DOTALL | re.MULTILINE)
    if FINDINGS in sources and not texts:
        problems.append(f"{FINDINGS}: expected textOf(Finding ...), which has the texts of the findings")
    problems += [f"docs/diagnosis.md: has no row for {literal!r}" for literal in literals(texts.group(0) if texts else "")
                 if re.sub(r"\{\d\}", "...", literal) not in pages["docs/diagnosis.md"]]
    return problems
