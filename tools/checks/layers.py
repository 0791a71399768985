# SPDX-License-Identifier: Apache-2.0
"""layers: who may include whom. The tables below are the house rules; a new arrow is a new line here, with its reason.

The rooms include the layer and not one another, the layer includes no room, and its own folders are in one order, in
which every arrow points down.
A typed header never includes a message header, and brings in no object runtime unless its typed form is about objects.
Third-party headers stand in the layer's .cpp files alone.
"""
import re

from checks.source_tree import LIBRARY

PLATFORM = LIBRARY + "platform/"
ROOMS = ("frame", "observation", "collections", "runtime", "text", "dates", "colours", "links")

# The layer's folders, from the lowest: a folder includes itself and those before it. The first row is the floor of plain
# values, the second that of objects.
VALUES = ("base", "unicode", "crypto", "graphics", "time", "net", "documents", "decoding")
OBJECTS = ("object", "foundation", "observing", "dispatch", "archives", "application", "log", "interface")
ORDER = {folder: height for height, folder in enumerate(VALUES + OBJECTS)}

# Facilities that build on another room's facility, or on another of their own room.
FACILITY_LINKS = {
    ("frame/locked", "frame/unfair_lock"): "the box is guarded by the typed lock",
    ("frame/coroutines", "frame/main_queue"): "a coroutine goes on on the main queue",
    ("frame/coroutines", "collections/array_blocks"): "a coroutine awaits the asynchronous map",
    ("frame/main_queue", "frame/main_queue_mark"): "asks for the mark, which the image sets",
    ("observation/key_value_observation", "frame/main_queue"): "a token delivers on the main queue",
    ("observation/responder_observations", "observation/key_value_observation"): "the registry creates and owns tokens",
    ("collections/set_blocks", "collections/array_blocks"): "sets send the array operations",
    ("colours/hex_codes", "text/character_sets"): "a code keeps hexadecimal characters only",
    ("text/sha256", "text/hex"): "a digest is written as hexadecimal text",
    ("object_printing", "printing"): "adds objects to what is printed",
    ("formatting", "printing"): "formats what is printed",
    ("text/attributed_strings", "frame/not_localized"): "the empty fallback is marked as not localised",
}

# Files that need the library's image besides those of the rooms' messages.
IMAGE_USERS = {
    "platform/observing/key_value_coding.h": "its messages are those of a category",
    "platform/observing/key_value_observing.h": "its messages are those of a category",
    "frame/main_queue.cpp": "its initialisers mark the main queue, also in a static link",
}

# Facilities whose typed form is about objects, so that their typed header brings in the object runtime.
ABOUT_OBJECTS = {
    "object_keys": "references to objects are keys",
    "object_printing": "objects are printed",
    "frame/coroutines": "arrays and run loops are what is awaited",
    "frame/test_flag": "the process information object is asked for its environment",
    "frame/main_queue": "a block is what is queued",
    "frame/not_localized": "the text is a string object",
    "testkit/main_bundle": "bundles are objects",
    "testkit/test_clock": "drives the run loop, whose work may be a block",
    "frame/log": "a handle comes from the layer's log",
    "text/attributed_strings": "makes attributed-string objects",
    "dates/shared_formatter": "hands out the formatter object",
    "dates/zero_uuid": "has a value and an object form",
    "colours/hex_codes": "colours are objects",
    "colours/colour_arithmetic": "colours are objects",
    "links/app_identity": "bundles are objects",
}

# What stands at the root of the library: the table of contents, which knows every room.
ROOT_FILES = {"HavrinFoundation.h", "Typed.h", "image.h", "image.cpp"}

# Headers for users of a library that this one does not use itself.
FOR_USERS_OF = {"fmt/": "formatting.h"}

# Third-party headers, and the folders of the layer whose .cpp files use them.
THIRD_PARTY = {
    "unicode/": {"unicode", "time"},
    "cctz/": {"time"},
    "openssl/": {"crypto"},
    "simdjson.h": {"documents"},
    "expat.h": {"documents"},
}

# The system's headers. The rooms go through the layer.
SYSTEM = re.compile(r"(sys|linux|asm|bits)/|(cpuid|cxxabi|dirent|dlfcn|errno|fcntl|immintrin|langinfo|link|locale|poll"
                    r"|pthread|pwd|sched|signal|stdio|stdlib|string|syslog|time|unistd)\.h$")

UNWANTED = {
    "iostream": "brings a load-time initialiser",
    "ranges": "its views do not compile with clang 14",
}


def facility_of(name):
    """'text/base36' for HavrinFoundation/text/base36_messages.cpp."""
    return re.sub(r"(_messages)?\.(h|cpp)$", "", name.removeprefix(LIBRARY))


def line_of(tree, name, included):
    for number, line in enumerate(tree.text(name).splitlines(), 1):
        if included in line and "include" in line:
            return number
    return 0


def platform_include(name, included):
    folder = name.removeprefix(PLATFORM).split("/")[0] if name.count("/") > 2 else None
    if included == LIBRARY + "image.h" and name.removeprefix(LIBRARY) in IMAGE_USERS:
        return None
    if not included.startswith(PLATFORM):
        return "the layer knows nothing of the rooms"
    other = included.removeprefix(PLATFORM).split("/")[0]
    if folder is None or other in (folder, "export.h") or "/" not in included.removeprefix(PLATFORM):
        return None
    if folder not in ORDER or other not in ORDER:
        return f"platform/{folder if folder not in ORDER else other} has no place in the order of tools/checks/layers.py"
    if ORDER[other] > ORDER[folder]:
        return f"platform/{folder} is below platform/{other}"
    return None


def room_include(name, included):
    if included.startswith(PLATFORM) or name.removeprefix(LIBRARY) in ROOT_FILES:
        return None
    if included == LIBRARY + "image.h":
        wanted = name.endswith(("_messages.h", "_messages.cpp")) or name.removeprefix(LIBRARY) in IMAGE_USERS
        return None if wanted else "only message files need the image"
    facility, other = facility_of(name), facility_of(included)
    if facility == other:
        if "_messages" in included and "_messages" not in name:
            if name.endswith(".h"):
                return "a typed header does not know its messages"
            if facility not in ABOUT_OBJECTS:
                return "a typed source does not know its messages unless it is about objects"
        return None
    if (facility, other) not in FACILITY_LINKS:
        return f"{facility} does not build on {other}"
    return None


def foreign_include(name, included):
    """For an include that is not ours."""
    in_platform = name.startswith(PLATFORM)
    if included in UNWANTED:
        return f"<{included}> {UNWANTED[included]}"
    if SYSTEM.match(included):
        return None if in_platform else "system headers are the layer's"
    if "." not in included and "/" not in included:
        return None
    for prefix, header in FOR_USERS_OF.items():
        if included.startswith(prefix):
            return None if name == LIBRARY + header else f"<{included}> is for {header} alone"
    for prefix, folders in THIRD_PARTY.items():
        if included.startswith(prefix):
            if not in_platform or name.removeprefix(PLATFORM).split("/")[0] not in folders:
                return f"<{included}> belongs to platform/{' and platform/'.join(sorted(folders))}"
            return None if name.endswith(".cpp") else f"<{included}> stands in .cpp files alone"
    return f"<{included}> is in no table of tools/checks/layers.py"


def runtime_reached(tree, name):
    """The object runtime's headers that a typed header brings in, where it should not."""
    if "_messages" in name or name.startswith(PLATFORM) or name.removeprefix(LIBRARY) in ROOT_FILES:
        return []
    if facility_of(name) in ABOUT_OBJECTS:
        return []
    return sorted(path for path in tree.reached(name) if path.startswith(PLATFORM + "object/"))


def check(tree):
    problems = []
    for name in tree.under(LIBRARY):
        for included in tree.includes(name):
            if included.startswith(LIBRARY):
                rule = platform_include if name.startswith(PLATFORM) else room_include
                why = rule(name, included) if included in tree.files else f"{included} is not in the tree"
            else:
                why = foreign_include(name, included)
            if why:
                problems.append(f"{name}:{line_of(tree, name, included)}: {why}")
        if name.endswith(".h"):
            for path in runtime_reached(tree, name)[:1]:
                problems.append(f"{name}:1: a typed header brings in the object runtime: {path}")
    return problems
