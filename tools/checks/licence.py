# SPDX-License-Identifier: Apache-2.0
"""licence: every source file names its licence, in its first line or, below "#!", in its second."""
import pathlib
import re

TAG = "SPDX-License-Identifier: Apache-2.0"
MARKS = {".h": "//", ".cpp": "//", ".py": "#", ".sh": "#", ".cmake": "#"}


def line_of(tree, name):
    """The line that the file must have, or None where it is not a source file."""
    path = pathlib.PurePosixPath(name)
    mark = MARKS.get(path.suffix) or ("#" if path.name == "CMakeLists.txt" else None)
    if not mark and not path.suffix and (tree.text(name) or "").startswith("#!"):
        mark = "#"
    return f"{mark} {TAG}" if mark else None


def place(text):
    """Where the line goes: at the start, or behind the line with the interpreter."""
    interpreter = re.match(r"#!.*\n", text)
    return interpreter.end() if interpreter else 0


def missing(tree):
    for name in tree.files:
        line = line_of(tree, name)
        if line and not tree.text(name).startswith(line + "\n", place(tree.text(name))):
            yield name, line


def check(tree):
    return [f"{name}: '{line}' is not at its head; tools/spdx --add writes it" for name, line in missing(tree)]


def add(tree):
    """Writes the line where it is missing; returns how many files changed."""
    changed = list(missing(tree))
    for name, line in changed:
        text = tree.text(name)
        at = place(text)
        (tree.root / name).write_text(f"{text[:at]}{line}\n{text[at:]}", encoding="utf-8")
    return len(changed)
