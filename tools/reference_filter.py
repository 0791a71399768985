#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Prints a file as the API reference reads it: a header's opening comment becomes the description of the file.

  tools/reference_filter.py HavrinFoundation/text/hex.h

Lines that are indented by three blanks are the examples, and stay as they are written. Specialisations of other libraries'
templates are left out, since the reference has no such namespaces. Of a page's pictures the light one is kept.
"""
import pathlib
import re
import sys

FOREIGN = re.compile(r"^template <.*>\n(?:requires .*\n)?struct (?:std|fmt)::.*(?:\{\};|\{\n(?: .*\n|\n)*\};)\n", re.MULTILINE)


def escaped(line):
    """A line of prose, in which <string> is not a tag; what stands between backticks is left as it is."""
    parts = line.split("`")
    parts[::2] = [re.sub(r"<([\w:/.]+)>", r"\\<\1\\>", part) for part in parts[::2]]
    return "`".join(parts)


def described(name, text):
    lines = text.split("\n")
    opening = []
    while lines and lines[0].startswith("//"):
        opening.append(lines.pop(0)[2:].removeprefix(" "))
    comment, example = [f"/** @file {name}"], False
    for line in opening[1:]:  # behind the licence
        if line.startswith("  ") != example:
            example = not example
            comment.append("@code{.cpp}" if example else "@endcode")
        comment.append((line if example else escaped(line)).replace("*/", "* /"))
    comment += ["@endcode"] * example + ["*/"]
    return FOREIGN.sub("", "\n".join(comment + lines))


def page(text):
    text = re.sub(r"^ *</?(?:picture|source)\b.*\n", "", text, flags=re.MULTILINE)
    # Pictures lie beside the pages there, and the example is not part of the reference.
    return re.sub(r'(src="|!\[[^]]*\]\()(?:docs/)?(?:growth/)?', r"\1", text).replace("[the board](examples/radio/README.md)",
                                                                                    "the board")


def main():
    path = pathlib.Path(sys.argv[1])
    text = path.read_text(encoding="utf-8")
    sys.stdout.write(described(path.name, text) if path.suffix == ".h" else page(text))


if __name__ == "__main__":
    main()
