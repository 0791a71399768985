#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Property lists by an independent reader and writer.

  property_list_oracle.py make FOLDER    writes the fixtures, each value in the binary form and as XML
  property_list_oracle.py check FOLDER   reads FOLDER/NAME.bplist for each value, and wants the same value

property_list_test.cpp builds the same values.
"""
import datetime
import pathlib
import plistlib
import sys

VALUES = {
    "numbers": {
        "integers": [0, 1, 255, 256, 65535, 65536, 2**32 - 1, 2**32, 2**63 - 1, 2**63, 2**64 - 1, -1, -256, -2**63],
        "reals": [0.0, 0.5, -1e300],
        "booleans": [True, False],
    },
    "texts": ["", "a", "fourteen chars", "fifteen letters", "x" * 300, "\u00e9\u4e2d", "a\U0001f44d", "<&>\"'", " \t\n"],
    "data": [b"", b"a", b"ab", b"abc", bytes(range(256)) * 2],
    "dates": [datetime.datetime(2001, 1, 1), datetime.datetime(2024, 2, 29, 12, 34, 56), datetime.datetime(1900, 1, 1)],
    "nested": {"": {}, "list": [], "deep": [[[[{"a": [1, {"b": "a"}]}]]]], "\u00e9": {"a": "a", "b": "a"}},
    "many": [str(i) for i in range(70000)],
    "info": {
        "CFBundleIdentifier": "com.havrin.radio",
        "CFBundleShortVersionString": "2024.10.0",
        "CFBundleVersion": "612345",
        "StudioFloors": [1, 2],
        "IsOnAir": True,
    },
}
# XML has no element for them: they are dictionaries there.
UIDS = [0, 255, 256, 65536, 2**32]
# Too large to be kept.
NOT_KEPT = {"many"}


def xml(value):
    """The XML form without its reference to a document type, which readers do not follow."""
    lines = plistlib.dumps(value, fmt=plistlib.FMT_XML).splitlines(keepends=True)
    return b"".join(line for line in lines if not line.startswith(b"<!DOCTYPE"))


def make(folder):
    folder.mkdir(parents=True, exist_ok=True)
    for name, value in VALUES.items():
        if name in NOT_KEPT:
            continue
        (folder / f"{name}.bplist").write_bytes(plistlib.dumps(value, fmt=plistlib.FMT_BINARY))
        (folder / f"{name}.xml").write_bytes(xml(value))
    binary = plistlib.dumps([plistlib.UID(number) for number in UIDS], fmt=plistlib.FMT_BINARY)
    (folder / "uids.bplist").write_bytes(binary)
    (folder / "uids.xml").write_bytes(xml([{"CF$UID": number} for number in UIDS]))


def check(folder):
    wanted = dict(VALUES, uids=[plistlib.UID(number) for number in UIDS])
    for name, value in wanted.items():
        read = plistlib.loads((folder / f"{name}.bplist").read_bytes(), fmt=plistlib.FMT_BINARY)
        # repr tells 1, 1.0 and True apart.
        if read != value or (name == "numbers" and repr(read) != repr(dict(sorted(value.items())))):
            sys.exit(f"{name}.bplist reads as {read!r:.200}, not as {value!r:.200}")
    print(f"{len(wanted)} property lists agree")


if __name__ == "__main__":
    if len(sys.argv) != 3 or sys.argv[1] not in ("make", "check"):
        sys.exit(__doc__)
    (make if sys.argv[1] == "make" else check)(pathlib.Path(sys.argv[2]))
