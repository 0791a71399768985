# SPDX-License-Identifier: Apache-2.0
"""floors: the order of the layer's folders, read from the built objects.

What the objects of a folder leave undefined is defined in the same folder, in a lower one, or by a third party; the
order is that of tools/checks/layers.py, with the rooms above the layer. The table of contents is known to everybody:
what refers to it keeps the library's categories in a static program.
"""
import collections
import pathlib
import subprocess

from checks import build
from checks.layers import ORDER
from checks.source_tree import LIBRARY

LIBRARIES = ("HavrinTyped", "HavrinFoundation")
# The image, which lists every category. Message headers refer to it, wherever they are.
CONTENTS = "_ZN6havrin17kHavrinFoundationE"


def place(path):
    """(height, folder) of an object file: the layer's folders in their order, the rooms above them."""
    parts = path.parts[path.parts.index("platform"):] if "platform" in path.parts else path.parts[-2:]
    if parts[0] != "platform":
        return len(ORDER), "the rooms"
    return (ORDER[parts[1]], f"platform/{parts[1]}") if len(parts) > 2 else (-1, "platform")


def symbols(path):
    """(defined, undefined) names of an object file."""
    defined, undefined = set(), set()
    for line in subprocess.run(["nm", "--format=posix", path], check=True, text=True,
                               capture_output=True).stdout.splitlines():
        name, kind = line.split()[:2]
        if kind == "U":
            undefined.add(name)
        elif kind.isupper() or kind in "vw":
            defined.add(name)
    return defined, undefined


def check(tree):
    problems = build.ninja(tree, *LIBRARIES)
    if problems:
        return problems
    lowest, wanted = {}, collections.defaultdict(set)
    for library in LIBRARIES:
        folder = tree.root / build.FOLDER / "HavrinFoundation" / "CMakeFiles" / f"{library}_objects.dir"
        for path in sorted(folder.rglob("*.o")):
            relative = path.relative_to(folder)
            if f"{LIBRARY}{str(relative).removesuffix('.o')}" not in tree.known:
                continue  # left by a source that is gone
            where = place(pathlib.PurePath(relative))
            defined, undefined = symbols(path)
            for name in defined:
                lowest[name] = min(where, lowest.get(name, where))
            for name in undefined - {CONTENTS}:
                wanted[name].add((*where, path.name.removesuffix(".o")))
    if len(lowest) < 100:
        return [f"{build.FOLDER}: the objects of the libraries are not where they are looked for"]
    broken = collections.defaultdict(list)
    for name, users in wanted.items():
        for height, folder, file in users:
            if name in lowest and lowest[name][0] > height:
                broken[f"{folder}/{file}"].append(name)
    return [f"{file}: {len(names)} symbols it needs are defined above it, the first in {lowest[min(names)][1]}: " +
            subprocess.run(["c++filt", min(names)], check=True, text=True, capture_output=True).stdout.strip()
            for file, names in sorted(broken.items())]
