# SPDX-License-Identifier: Apache-2.0
"""includes: every block of includes stands in one order (tools/check --update-includes writes it).

A source's own header; our own headers; third parties; the standard library and the system. Each part is sorted and
followed by a blank line. Includes with other lines between them are separate blocks.
"""
import re

LINE = re.compile(r'#include ([<"])([^>"]+)[>"].*\n')
BLOCK = re.compile(r'(?:^#include [<"][^>"]+[>"].*\n(?:\n(?=#include ))?)+', re.MULTILINE)
# Headers of the system that have an extension; those of the standard library have none.
SYSTEM = re.compile(r"(sys/|linux/|(cpuid|cxxabi|dlfcn|fcntl|immintrin|malloc|poll|pthread|sched|signal|termios|time"
                    r"|unistd)\.h$)")
FOLDERS = ("HavrinFoundation/", "examples/", "tests/", "benchmarks/", "fuzz/")


def part(quote, path, own):
    if own == path or quote == '"' and own.endswith("/" + path):
        return 0
    if quote == '"' or path.startswith(("HavrinFoundation/", "tests/")):
        return 1
    return 3 if SYSTEM.match(path) or re.fullmatch("[a-z_]+", path) else 2


def ordered(name, text):
    """The text with each block of includes in order."""
    own = name.removesuffix(".cpp") + ".h"

    def rewritten(block):
        parts = [[], [], [], []]
        for line in LINE.finditer(block[0]):
            parts[part(line[1], line[2], own)].append((line[1] + line[2], line[0]))
        return "\n".join("".join(line for _, line in sorted(lines)) for lines in parts if lines)

    return BLOCK.sub(rewritten, text)


def wrong(tree):
    return [name for name in tree.under(*FOLDERS) if ordered(name, tree.text(name)) != tree.text(name)]


def check(tree):
    return [f"{name}: its includes are out of order; tools/check --update-includes sorts them" for name in wrong(tree)]


def update(tree):
    for name in wrong(tree):
        (tree.root / name).write_text(ordered(name, tree.text(name)))
        print(name)
