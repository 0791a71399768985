# SPDX-License-Identifier: Apache-2.0
"""names: docs/names.md and the headers of the rooms tell the same.

Every typed form and selector that the page lists under a facility stands in the facility's headers, and every selector
that a room declares stands on the page. Headers that are not in the tree are not missed.
"""
import re

from checks.layers import ROOMS, facility_of
from checks.source_tree import LIBRARY

PAGE = "docs/names.md"
DECLARED = re.compile(r'\b(?:Class)?Message<\s*[\w:]+,\s*"([^"]+)"\s*>')


def header(tree, facility, suffix):
    """The header's text; empty where there is none."""
    name = f"{LIBRARY}{facility}{suffix}.h"
    return tree.text(name) if name in tree.files else ""


def rows(page):
    """(line number, facility, names of typed forms, selectors) for each row of the page's tables."""
    facility = None
    for number, line in enumerate(page.splitlines(), 1):
        if line.startswith("#"):
            facility = line.removeprefix("### ") if line.startswith("### ") else None
        if not line.startswith("| ") or line.startswith(("| typed form", "| receiver", "| name")):
            continue
        cells = [cell.strip() for cell in line.strip("|").split(" |")]
        if facility:  # a table of typed forms
            typed = re.findall(r"(\w+)(?:<[\w: ,]*>)?\((?!\))|(\w+)(?:<[\w: ,]*>)?\(\)", cells[0])
            yield number, facility, {one or other for one, other in typed}, re.findall(r"`\+?([\w:]+)`", cells[-1])
        elif len(cells) == 4:  # members that are messages alone
            yield number, cells[3], set(), re.findall(r"`\+?([\w:]+)`", cells[1])
        else:  # plain functions and data
            yield number, cells[2], set(re.findall(r"`(\w+)`", cells[0])), []


def check(tree):
    page = tree.text(PAGE)
    problems = []
    for number, facility, typed, selectors in rows(page):
        messages = header(tree, facility, "_messages")
        text = header(tree, facility, "") + messages
        problems += [f"{PAGE}:{number}: {facility} declares no {name}" for name in sorted(typed)
                     if text and not re.search(rf"\b{name}\b", text)]
        problems += [f"{PAGE}:{number}: {facility} declares no message {selector}" for selector in selectors
                     if messages and f'"{selector}"' not in messages]
    listed = set(re.findall(r"`\+?([\w:]+)`", page))
    for name in tree.under(*(f"{LIBRARY}{room}/" for room in ROOMS), suffixes=(".h",)):
        problems += [f"{name}: {PAGE} does not list the message {selector} of {facility_of(name)}"
                     for selector in DECLARED.findall(tree.text(name)) if selector not in listed]
    return problems
