# SPDX-License-Identifier: Apache-2.0
"""tree: one facility, one basename, everywhere.

Every facility has its test and every file stands in its folder's list; tests, fuzz bodies and benchmarks bear the name
of what they are about; categories stand in image.cpp; headers say what they are; files of more than 400 lines say why.
"""
import pathlib
import re

from checks.fault_list import read_faults
from checks.layers import PLATFORM, ROOMS, facility_of
from checks.source_tree import LIBRARY

LONGEST = 400
# The line a longer file carries in its opening comment, with the reason after the colon.
LENGTH_REASON = re.compile(r"^(//|#|\"\"\"|\s).*\bLength: \S", re.MULTILINE)
BAD_NAMES = re.compile(r"(^|_)(util|utils|common|misc|helper)$")
NAME = re.compile(r"[a-z][a-z0-9_]*$")
# Other names for the namespace `detail`, in which a header keeps what no user calls.
HIDDEN_NAMESPACE = re.compile(r"namespace .*\b(\w+_detail|internal|impl|details) \{")
SUFFIXES = {"tests": "_test", "fuzz": "_fuzz", "benchmarks": "_benchmark"}
CXX_FOLDERS = (LIBRARY, "tests/", "fuzz/", "benchmarks/", "examples/")


def listed(tree, name):
    """Whether the nearest CMakeLists.txt above names the file, or one of cmake/ does."""
    if any(name in tree.text(script) for script in tree.under("cmake/", suffixes=(".cmake",))):
        return True
    folder = pathlib.PurePosixPath(name).parent
    while True:
        text = tree.text(f"{folder}/CMakeLists.txt") if f"{folder}/CMakeLists.txt" in tree.files else None
        if text is not None:
            relative = str(pathlib.PurePosixPath(name).relative_to(folder))
            return re.search(rf"(?<![\w./-]){re.escape(relative)}(?![\w./-])", text) is not None
        if str(folder) == ".":
            return False
        folder = folder.parent


def facilities(tree):
    """The facilities of the rooms, as 'text/base36'."""
    rooms = tuple(f"{LIBRARY}{room}/" for room in ROOMS)
    return sorted({facility_of(name) for name in tree.under(*rooms)})


def check_names(tree):
    for name in tree.under(*CXX_FOLDERS):
        stem = pathlib.PurePosixPath(name).stem
        if name.removeprefix(LIBRARY) not in ("HavrinFoundation.h", "Typed.h") and not NAME.match(stem):
            yield f"{name}: file names are lower_snake"
        if BAD_NAMES.search(stem):
            yield f"{name}: a file is named after what it offers"


def check_lists(tree):
    public = set()
    for name in tree.under(LIBRARY, suffixes=(".h",)):
        if listed(tree, name):
            public.add(name)
    for name in sorted(public):
        for path in tree.includes(name):
            if path.startswith(LIBRARY) and path in tree.files and path not in public:
                yield f"{name}: a public header includes {path}, which no list installs"
    for name in tree.under(*CXX_FOLDERS, suffixes=(".cpp",)):
        if not name.startswith("tests/consumers/") and not listed(tree, name):
            yield f"{name}: stands in no CMakeLists.txt, so nothing builds it"


# Headers that only the files that use them pay for.
OPTIONAL = {LIBRARY + "frame/coroutines.h"}


def check_umbrella(tree):
    umbrella = LIBRARY + "HavrinFoundation.h"
    typed = LIBRARY + "Typed.h"
    brought = {path for name in (umbrella, typed) if name in tree.known for path in tree.includes(name)}
    for name in tree.under(*(f"{LIBRARY}{room}/" for room in ROOMS), suffixes=(".h",)):
        if listed(tree, name) and name not in brought | OPTIONAL:
            yield f"{umbrella}: does not include {name}, and neither does Typed.h"


def check_tests(tree):
    known = facilities(tree)
    tests = tree.under("tests/")
    included = {(name.split("/")[1], path) for name in tests for path in tree.includes(name)}
    for facility in known:
        # A few lines that are tested on another facility's rows need no file of their own.
        room = facility.split("/")[0]
        headers = {(room, f"{LIBRARY}{facility}{kind}.h") for kind in ("", "_messages")}
        if f"tests/{facility}_test.cpp" not in tree.known and not headers & included:
            yield f"{LIBRARY}{facility}: has no tests/{facility}_test.cpp, and no test of its room includes it"
    for folder, suffix in SUFFIXES.items():
        for name in tree.under(*(f"{folder}/{room}/" for room in ROOMS), suffixes=(suffix + ".cpp",)):
            about = name.removeprefix(folder + "/").removesuffix(suffix + ".cpp")
            if not any(about == facility or about.startswith(facility + "_") for facility in known):
                yield f"{name}: there is no facility of this name"
    tested = set().union(*(tree.reached(path) for name in tests for path in tree.includes(name)))
    for name in tree.under(PLATFORM, suffixes=(".h",)):
        if name.count("/") > 2 and name.removesuffix(".h") + ".cpp" in tree.files and name not in tested:
            if listed(tree, name):
                yield f"{name}: no test reaches it"


def check_faults(tree):
    for fault in read_faults(tree.text("tests/faults.txt")):
        if misplaced := "is not in the tree" if fault.file not in tree.files else fault.misplaced(tree.text(fault.file)):
            yield f"tests/faults.txt: {fault.fault}: {misplaced}"


def check_messages(tree):
    contents = tree.text(LIBRARY + "image.cpp") or ""
    for name in tree.under(LIBRARY, suffixes=("_messages.h", "_messages.cpp")):
        partner = name.removesuffix(".h") + ".cpp" if name.endswith(".h") else name.removesuffix(".cpp") + ".h"
        if partner not in tree.files:
            yield f"{name}: has no {partner}"
        for category in re.findall(r"\bconst Category (k\w+)\s*[{(]", tree.text(name)):
            if not re.search(rf"\b{category}\b", contents):
                yield f"{name}: {category} does not stand in image.cpp, so its messages never arrive"


def check_headers(tree):
    for name in tree.under(LIBRARY, suffixes=(".h",)):
        text = tree.text(name)
        if not text.startswith("//"):
            yield f"{name}:1: a header opens with what it is"
        for found in HIDDEN_NAMESPACE.findall(text):
            yield f"{name}: what no user calls is in the namespace detail, not {found}"
        if "#pragma once" not in text:
            yield f"{name}:1: no #pragma once"
        for number, line in enumerate(text.splitlines(), 1):
            if re.match(r"using namespace\b", line):
                yield f"{name}:{number}: 'using namespace' in a header"
            if re.match(r"\s*#\s*define\s", line) and not re.match(r"#define HAVRIN_(EXPORT|THREAD_SAFETY)\b", line):
                yield f"{name}:{number}: the macros of the headers are HAVRIN_EXPORT and HAVRIN_THREAD_SAFETY"


def check_lengths(tree):
    for name in tree.files:
        text = tree.text(name)
        if text is None or not name.endswith((".h", ".cpp", ".py", ".sh", ".cmake")):
            continue
        lines = text.count("\n")
        if lines > LONGEST and not LENGTH_REASON.search("\n".join(text.splitlines()[:40])):
            yield f"{name}: {lines} lines; over {LONGEST} its opening comment says why, after 'Length:'"


def check(tree):
    parts = (check_names, check_lists, check_umbrella, check_tests, check_faults, check_messages, check_headers,
             check_lengths)
    return [problem for part in parts for problem in part(tree)]
