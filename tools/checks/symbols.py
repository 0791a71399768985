# SPDX-License-Identifier: Apache-2.0
"""symbols: what the shared libraries show, against tools/symbols/*.txt.

The lists hold, by library, what runs at load ("at load"), the plain functions and data ("plain"), and the C++ names
that are no inline copies ("C++"). A symbol more or less is a change of the interface: tools/check --update-symbols
writes the lists anew, and the difference is read before it lands.
"""
import re
import subprocess

from checks import build

LIBRARIES = ("HavrinTyped", "HavrinFoundation")
# Inline functions and templates appear or not as the compiler sees fit; they belong to whoever includes the header.
WEAK = set("VvWwu")
# Every shared library has it: the compiler's own start-up file registers nothing there.
STARTUP = "frame_dummy"


def tool(*command):
    return subprocess.run(command, check=True, text=True, capture_output=True).stdout


def library_file(tree, library):
    return tree.root / build.FOLDER / "HavrinFoundation" / f"lib{library}.so"


def initialisers(path):
    """The names of the functions that the loader runs when it has mapped the library, in order."""
    section = re.search(r"\.init_array\s+INIT_ARRAY\s+([0-9a-f]+)\s+[0-9a-f]+\s+([0-9a-f]+)",
                        tool("readelf", "--sections", "--wide", path))
    start, size = int(section[1], 16), int(section[2], 16)
    names = {int(address, 16): name for address, name in
             re.findall(r"^([0-9a-f]+) [tT] (\S+)$", tool("nm", path), re.MULTILINE)}
    functions = re.findall(r"^([0-9a-f]+)\s+[0-9a-f]+\s+R_X86_64_RELATIVE\s+([0-9a-f]+)$",
                           tool("readelf", "--relocs", "--wide", path), re.MULTILINE)
    found = [int(function, 16) for slot, function in functions if start <= int(slot, 16) < start + size]
    if len(found) * 8 != size:
        raise RuntimeError(f"{path}: {size // 8} load-time entries, {len(found)} of them understood")
    return [names[function] for function in found if names[function] != STARTUP]


def exports(path):
    """The lines of the list for one library."""
    plain, mangled = [], []
    for line in tool("nm", "--dynamic", "--defined-only", path).splitlines():
        kind, name = line.split()[1:3]
        if kind not in WEAK:
            (mangled if name.startswith("_Z") else plain).append((name, "function" if kind == "T" else "data"))
    readable = subprocess.run(["c++filt"], check=True, text=True, capture_output=True,
                              input="\n".join(name for name, _ in mangled)).stdout.splitlines()
    return ([f"at load\t{name}" for name in initialisers(path)] +
            sorted(f"plain\t{kind}\t{name}" for name, kind in plain) + sorted({f"C++\t{name}" for name in readable}))


def list_file(tree, library):
    return tree.root / "tools" / "symbols" / f"{library}.txt"


def update(tree):
    for problem in build.ninja(tree, *LIBRARIES):
        raise SystemExit(problem)
    for library in LIBRARIES:
        list_file(tree, library).parent.mkdir(exist_ok=True)
        list_file(tree, library).write_text("".join(line + "\n" for line in exports(library_file(tree, library))))


def check(tree):
    problems = build.ninja(tree, *LIBRARIES)
    if problems:
        return problems
    for library in LIBRARIES:
        shown = exports(library_file(tree, library))
        expected = list_file(tree, library).read_text().splitlines()
        problems += [f"{library}: not in the list: {line}" for line in shown if line not in expected]
        problems += [f"{library}: no longer there: {line}" for line in expected if line not in shown]
    return problems
