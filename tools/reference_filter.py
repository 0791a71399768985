#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Prints a file as the API reference reads it: a header's opening comment becomes the description of the file.

  tools/reference_filter.py HavrinFoundation/text/hex.h

Lines that are indented by three blanks are the examples, and stay as they are written. Other files are printed unchanged.
"""
import pathlib
import sys


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
        comment.append(line.replace("*/", "* /"))
    comment += ["@endcode"] * example + ["*/"]
    return "\n".join(comment + lines)


def main():
    path = pathlib.Path(sys.argv[1])
    text = path.read_text(encoding="utf-8")
    sys.stdout.write(described(path.name, text) if path.suffix == ".h" else text)


if __name__ == "__main__":
    main()
