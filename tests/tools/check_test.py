#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Plants one fault at a time into a small sound tree, and expects tools/check to name it."""
import contextlib
import pathlib
import subprocess
import sys
import tempfile

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tools"))
from checks import errors, format, layers, licence, names, proportion, tree, words  # noqa: E402
from checks.source_tree import SourceTree  # noqa: E402

ALL = (words, tree, layers, names, proportion, format)
HEADER = "// What it is.\n#pragma once\n"
HEX = "HavrinFoundation/text/hex.h"
OBJECT = "#include <HavrinFoundation/platform/object/object.h>\n"
SOUND = {
    ".clang-format": "BasedOnStyle: Google\n",
    "HavrinFoundation/CMakeLists.txt": "HavrinFoundation.h image.h image.cpp",
    "HavrinFoundation/HavrinFoundation.h": HEADER + "#include <HavrinFoundation/text/hex.h>\n"
                                                    "#include <HavrinFoundation/text/hex_messages.h>\n",
    "HavrinFoundation/image.h": HEADER,
    "HavrinFoundation/image.cpp": "const Category* kAll[] = {&kHex};\n",
    "HavrinFoundation/platform/object/CMakeLists.txt": "object.h",
    "HavrinFoundation/platform/object/object.h": HEADER,
    "HavrinFoundation/text/CMakeLists.txt": "hex.h hex_messages.h hex.cpp hex_messages.cpp",
    "HavrinFoundation/text/hex.h": HEADER + "int hexString(int);\n",
    "HavrinFoundation/text/hex.cpp": "#include <HavrinFoundation/text/hex.h>\n",
    "HavrinFoundation/text/hex_messages.h":
        HEADER + "#include <HavrinFoundation/image.h>\n#include <HavrinFoundation/platform/object/object.h>\n"
                 'template <>\nstruct Message<NSData, "hexString"> {};\n',
    "HavrinFoundation/text/hex_messages.cpp": "constinit const Category kHex{};\n",
    "docs/names.md": "### text/hex\n\n| typed form | selector |\n|---|---|\n| `int hexString(int)` | `hexString` |\n",
    "tests/text/CMakeLists.txt": "hex_test.cpp",
    "tests/text/hex_test.cpp": "#include <HavrinFoundation/text/hex.h>\n",
    "tests/faults.txt": "fault: f\nfile: HavrinFoundation/text/hex.h\nold: (int)\nnew: (long)\ntest: hex_test\n",
}

# (check, what takes the place of a sound file or joins them, what the check says)
PLANTED = [
    (words, {"docs/plan.md": "see ../" + "shared\n"}, "names a place outside the tree"),
    (words, {HEX: HEADER + "int hexString(int);  // TO" + "DO\n"}, "a note left for later"),
    (tree, {"HavrinFoundation/text/octal.h": HEADER}, "has no tests/text/octal_test.cpp"),
    (tree, {"HavrinFoundation/text/hex_utils.h": HEADER}, "a file is named after what it offers"),
    (tree, {"tests/text/CMakeLists.txt": ""}, "stands in no CMakeLists.txt"),
    (tree, {"tests/text/octal_test.cpp": "", "tests/text/CMakeLists.txt": "hex_test.cpp octal_test.cpp"},
     "there is no facility of this name"),
    (tree, {"HavrinFoundation/HavrinFoundation.h": HEADER}, "does not include HavrinFoundation/text/hex.h"),
    (tree, {"HavrinFoundation/image.cpp": ""}, "kHex does not stand in image.cpp"),
    (tree, {HEX: "#pragma once\nint hexString(int);\n"}, "a header opens with what it is"),
    (tree, {HEX: HEADER + "using namespace std;\nint hexString(int);\n"}, "'using namespace'"),
    (tree, {HEX: HEADER + "#define HEX 1\nint hexString(int);\n"}, "the macros of the headers"),
    (tree, {HEX: HEADER + "namespace hex_detail {\nint hexString(int);\n}\n"}, "not hex_detail"),
    (tree, {"HavrinFoundation/text/hex.cpp": "int i;\n" * 401}, "401 lines"),
    (tree, {"tests/faults.txt": SOUND["tests/faults.txt"].replace("(int)", "(char)")}, "stands 0 times"),
    (layers, {HEX: HEADER + "#include <HavrinFoundation/text/hex_messages.h>\n"},
     "a typed header does not know its messages"),
    (layers, {HEX: HEADER + OBJECT}, "brings in the object runtime"),
    (layers, {"HavrinFoundation/platform/time/date.h": HEADER + OBJECT}, "platform/time is below platform/object"),
    (layers, {"HavrinFoundation/platform/object/object.h": HEADER + "#include <HavrinFoundation/text/hex.h>\n"},
     "the layer knows nothing of the rooms"),
    (layers, {"HavrinFoundation/links/link.h": HEADER + "#include <HavrinFoundation/text/hex.h>\n"},
     "links/link does not build on text/hex"),
    (layers, {"HavrinFoundation/text/hex.cpp": "#include <unicode/uchar.h>\n"}, "belongs to platform/"),
    (layers, {"HavrinFoundation/platform/time/zone.h": HEADER + "#include <cctz/time_zone.h>\n"}, ".cpp files alone"),
    (layers, {"HavrinFoundation/text/hex.cpp": "#include <sys/types.h>\n"}, "system headers are the layer's"),
    (layers, {"HavrinFoundation/text/hex.cpp": "#include <iostream>\n"}, "load-time initialiser"),
    (layers, {"HavrinFoundation/text/hex.cpp": "#include <fancy/fancy.h>\n"}, "is in no table"),
    (names, {"docs/names.md": SOUND["docs/names.md"].replace("int hexString(int)", "int octal(int)")},
     "declares no octal"),
    (names, {"docs/names.md": SOUND["docs/names.md"].replace("| `hexString` |", "| |")},
     "does not list the message hexString"),
    (errors, {"docs/errors.md": "| `never said` | | |\n"}, "no source says 'never said'"),
    (errors, {"HavrinFoundation/text/hex.cpp": 'void f() { abortOnMisuse("hex", "too odd"); }\n'}, "no row for 'too odd'"),
    (errors, {"HavrinFoundation/platform/base/diagnosis.cpp":
              'std::string_view textOf(Finding one) {\n  return "{0} is odd";\n}\n'}, "no row for '{0} is odd'"),
    (proportion, {"tests/text/hex_test.cpp": "int i;\n" * 99}, "expected at most"),
    (format, {"HavrinFoundation/text/hex.cpp": "int  i;\n"}, "clang-format-14 -i"),
]


@contextlib.contextmanager
def folder_of(files):
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run(["git", "init", "--quiet", folder], check=True)
        for name, text in files.items():
            path = pathlib.Path(folder, name)
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text)
        yield folder


def problems_of(check, files):
    with folder_of(files) as folder:
        return check.check(SourceTree(folder))


def licence_lines():
    """What is wrong when the licence lines of the sound tree are written: each once, and nothing else is harmed."""
    wrong = []
    with folder_of(SOUND | {"tools/run": "#!/bin/sh\nexit 0\n"}) as folder:
        for changed in (14, 0):  # .clang-format, faults.txt and the page are no sources
            if (count := licence.add(SourceTree(folder))) != changed:
                wrong.append(f"licence changes {count} files, not {changed}")
        if pathlib.Path(folder, "tools/run").read_text() != f"#!/bin/sh\n# {licence.TAG}\nexit 0\n":
            wrong.append("licence does not keep the interpreter first")
        wrong += [f"{check.__name__} with licence lines: {problem}" for check in ALL
                  for problem in check.check(SourceTree(folder))]
        pathlib.Path(folder, "HavrinFoundation/text/hex.h").write_text(HEADER)
        if len(licence.check(SourceTree(folder))) != 1:
            wrong.append("licence does not name the one file without its line")
    return wrong


def main():
    wrong = licence_lines()
    for check in ALL:
        wrong += [f"{check.__name__} in the sound tree: {problem}" for problem in problems_of(check, SOUND)]
    for check, planted, says in PLANTED:
        problems = problems_of(check, SOUND | planted)
        if not any(says in problem for problem in problems):
            wrong.append(f"{check.__name__} with {', '.join(planted)} says {problems}, not '{says}'")
    print("\n".join(wrong) or f"{len(PLANTED)} planted faults were named")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
