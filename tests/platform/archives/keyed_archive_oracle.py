#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Keyed archives by an independent writer and reader, over plistlib alone.

  keyed_archive_oracle.py make FOLDER             writes FOLDER/NAME.bplist and FOLDER/NAME.xml for each graph below
  keyed_archive_oracle.py check FOLDER            reads FOLDER/NAME.bplist for each graph that archivers write so, and
                                                  wants the same graph: classes, values, nulls, and what is shared

keyed_archive_test.cpp builds the same objects.
"""
import pathlib
import plistlib
import sys

from plistlib import UID

ANCESTRY = {
    "NSMutableString": "NSString", "NSMutableData": "NSData", "NSMutableArray": "NSArray",
    "NSMutableDictionary": "NSDictionary", "NSMutableSet": "NSSet", "NSMutableOrderedSet": "NSOrderedSet",
    "NSMutableAttributedString": "NSAttributedString",
}


def ancestry(name):
    return [name] + (ancestry(ANCESTRY[name]) if name in ANCESTRY else ["NSObject"])


class Thing:
    """One object: a plain value, or a class and its values, where Things are references."""

    def __init__(self, cls, plain=None, hints=None, **fields):
        self.cls, self.plain, self.hints, self.fields = cls, plain, hints, fields

    def key(self, key, value):
        self.fields[key] = value
        return self


NOTHING = Thing(None)


def plain(value):
    return Thing(None, plain=value)


def own(cls, **fields):
    return Thing(cls, **fields)


def row(cls, *things):
    return Thing(cls).key("NS.objects", list(things))


def dictionary(*pairs, cls="NSDictionary"):
    return Thing(cls).key("NS.keys", [key for key, _ in pairs]).key("NS.objects", [value for _, value in pairs])


def ordered(*things, cls="NSOrderedSet"):
    made = Thing(cls)
    for index, thing in enumerate(things):
        made.key(f"NS.object.{index}", thing)
    return made


def null():
    return Thing("NSNull")


def link(text, base=NOTHING):
    return Thing("NSURL").key("NS.base", base).key("NS.relative", plain(text))


def sized(points):
    return dictionary((plain("NSFont"), plain(points)))


def varint(value):
    return bytes([value]) if value < 0x80 else bytes([value & 0x7F | 0x80]) + varint(value >> 7)


def runs(text, attributes, *lengths_and_indexes, cls="NSAttributedString"):
    info = b"".join(map(varint, lengths_and_indexes))
    return own(cls, NSString=plain(text), NSAttributes=row("NSArray", *attributes), NSAttributeInfo=plain(info))


def holding_itself():
    node = own("Node", name=plain("alone"), child=NOTHING)
    return node.key("parent", node)


def with_parent():
    node = own("Node", name=plain("above"), parent=NOTHING)
    return node.key("child", own("Node", name=plain("below"), child=NOTHING, parent=node))


def nulls():
    one, node = null(), own("Node", name=NOTHING, child=NOTHING, parent=NOTHING)
    return row("NSArray", one, dictionary((plain("k"), one)), node)


def shared():
    text, numbers = plain("twice"), row("NSMutableArray", plain(1))
    return row("NSArray", text, text, numbers, dictionary((text, numbers)), numbers)


NUMBERS = (0, 255, 256, 65536, 2**32, 2**63 - 1, 2**63, 2**64 - 1, -1, -2**63, 0.5, -1e300, True, False)
A_UUID = bytes(range(0xF0, 0x100))
BLUE, RED = sized(9), sized(12)

# What archivers write, ours among them.
GRAPHS = {
    "nothing": NOTHING,
    "string": plain("hello"),
    "wide_string": plain("Z\u00fcrich \U0001f44d"),
    "mutable_string": Thing("NSMutableString").key("NS.string", "grows"),
    "numbers": row("NSArray", *map(plain, NUMBERS)),
    "null": null(),
    "data": plain(bytes(range(256))),
    "mutable_data": Thing("NSMutableData").key("NS.data", b"\0\xff"),
    "array": row("NSArray", plain("a"), plain(1), plain(True)),
    "mutable_array": row("NSMutableArray", plain("a"), row("NSArray")),
    "dictionary": dictionary((plain("a"), plain(1)), (plain("b"), dictionary())),
    "mutable_dictionary": dictionary((plain("a"), row("NSSet", plain(2))), cls="NSMutableDictionary"),
    "set": row("NSSet", plain("a"), plain("b")),
    "mutable_set": row("NSMutableSet", plain(7)),
    "ordered_set": ordered(*(plain(str(i)) for i in range(12))),
    "mutable_ordered_set": ordered(plain("b"), plain("a"), cls="NSMutableOrderedSet"),
    "date": Thing("NSDate").key("NS.time", 730902896.25),
    "identifier": Thing("NSUUID").key("NS.uuidbytes", A_UUID),
    "link": link("https://havrin.example/a?b=%20#c"),
    "relative_link": link("../d?e", link("https://havrin.example/a/b/c")),
    "unchecked_link": link("no link at all"),
    "unchecked_relative_link": link("no link at all", link("https://havrin.example/a/d?e")),
    "attributed": own("NSAttributedString", NSString=plain("on air"), NSAttributes=sized(9)),
    "attributed_runs": runs("x" * 300, [sized(9), sized(10), dictionary()], 1, 0, 200, 1, 99, 2),
    "mutable_attributed": own("NSMutableAttributedString", NSString=plain("a"), NSAttributes=dictionary()),
    "shared": shared(),
    "scalars": own("Scalars", yes=True, no=False, small=7, large=2**40, negative=-2**63, real=0.25, bytes=b"\1\2")
               .key("$$dollar", 3).key("$$object", plain("$")).key("none", NOTHING),
    "holding_itself": holding_itself(),
    "with_parent": with_parent(),
    "nulls": nulls(),
}
# What is read too.
READ_ONLY = {
    "data_of_class": Thing("NSData").key("NS.data", b"inline"),
    "data_of_data": Thing("NSMutableData").key("NS.data", plain(b"apart")),
    "string_of_string": Thing("NSMutableString").key("NS.string", plain("apart")),
    "string_of_class": Thing("NSString").key("NS.string", "inline"),
    "ordered_set_of_objects": row("NSOrderedSet", plain("b"), plain("a"), plain("b")),
    "attributed_again": runs("abcde", [BLUE, RED, BLUE], 1, 0, 1, 1, 1, 2, 2, 0),
    "attributed_bare": own("NSAttributedString", NSString=plain("bare")),
    "hinted": Thing("Nobody", hints=["Noone", "NSMutableArray", "NSArray"]).key("NS.objects", [plain("a")]),
}


class Writer:
    def __init__(self):
        self.objects, self.uids, self.classes, self.kept = ["$null"], {}, {}, []

    def reference(self, thing):
        if thing is NOTHING:
            return UID(0)
        if id(thing) not in self.uids:
            self.uids[id(thing)] = uid = len(self.objects)
            self.kept.append(thing)
            self.objects.append(thing.plain)
            if thing.cls:
                self.objects[uid] = record = {}
                record.update((key, self.value(value)) for key, value in thing.fields.items())
                record["$class"] = self.class_record(thing)
        return UID(self.uids[id(thing)])

    def value(self, value):
        if isinstance(value, Thing):
            return self.reference(value)
        return [self.reference(thing) for thing in value] if isinstance(value, list) else value

    def class_record(self, thing):
        if thing.cls not in self.classes:
            self.classes[thing.cls] = len(self.objects)
            record = {"$classname": thing.cls, "$classes": ancestry(thing.cls)}
            self.objects.append(dict(record, **{"$classhints": thing.hints}) if thing.hints else record)
        return UID(self.classes[thing.cls])


def archive(root):
    writer = Writer()
    top = {"root": writer.reference(root)}
    return {"$archiver": "NSKeyedArchiver", "$version": 100000, "$top": top, "$objects": writer.objects}


def spelt(value):
    """XML has no element for references."""
    if isinstance(value, dict):
        return {key: spelt(part) for key, part in value.items()}
    if isinstance(value, list):
        return [spelt(part) for part in value]
    return {"CF$UID": value.data} if isinstance(value, UID) else value


def make(folder):
    folder.mkdir(parents=True, exist_ok=True)
    for name, root in {**GRAPHS, **READ_ONLY}.items():
        (folder / f"{name}.bplist").write_bytes(plistlib.dumps(archive(root), fmt=plistlib.FMT_BINARY, sort_keys=False))
        lines = plistlib.dumps(spelt(archive(root)), fmt=plistlib.FMT_XML).splitlines(keepends=True)
        (folder / f"{name}.xml").write_bytes(b"".join(line for line in lines if not line.startswith(b"<!DOCTYPE")))


def canonical(list_):
    """The parts that the top refers to, each where it is met first and a number afterwards: equal for equal graphs."""
    numbers = {0: 0}

    def spell(value):
        if isinstance(value, UID):
            if value.data in numbers:
                return "object", numbers[value.data]
            numbers[value.data] = len(numbers)
            return "new object", spell(list_["$objects"][value.data])
        if isinstance(value, dict):
            return [(key, spell(value[key])) for key in sorted(value)]
        return [spell(part) for part in value] if isinstance(value, list) else repr(value)

    top = spell(list_["$top"])
    others = {key: value for key, value in list_.items() if key not in ("$top", "$objects")}
    unreferred = set(range(len(list_["$objects"]))) - set(numbers)
    return {"others": others, "top": top, "first object": list_["$objects"][0], "not referred to": unreferred}


def check(folder):
    for name, root in GRAPHS.items():
        found = canonical(plistlib.loads((folder / f"{name}.bplist").read_bytes(), fmt=plistlib.FMT_BINARY))
        wanted = canonical(archive(root))
        if found != wanted:
            sys.exit(f"{name}.bplist: {found!r:.2000}\n  expected {wanted!r:.2000}")
    print(f"{len(GRAPHS)} archives agree")


if __name__ == "__main__":
    if len(sys.argv) != 3 or sys.argv[1] not in ("make", "check"):
        sys.exit(__doc__)
    (make if sys.argv[1] == "make" else check)(pathlib.Path(sys.argv[2]))
