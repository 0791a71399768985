# SPDX-License-Identifier: Apache-2.0
"""How gdb shows the library's values. Installed where gdb loads it together with the libraries; in a build tree:

  (gdb) source tools/gdb/havrin_printers.py
  (gdb) print stations
  $1 = NSArray of 2 = {Station 0x5555555712f0, NSString "Nord"}

References and pointers show the object behind them; `print/r` shows the fields. Nothing is called in the program, so core
files and stopped threads are fine. Fields are read by name: a layout that differs is an error, never a wrong value. The
fields are described by the library's debug information; without it an object shows its class alone.
"""
import datetime
import re

import gdb
import gdb.printing

LAYER = "havrin::platform::"
DESTROYING = 0x8000_0000  # ObjectHeader::kDestroying
LONGEST = 200  # characters of a string, bytes of a data


def atomic(value):
    """What a std::atomic holds: a pointer or a number."""
    base = value["_M_b"] if "_M_b" in [field.name for field in value.type.strip_typedefs().fields()] else value
    return base["_M_p"] if "_M_p" in [field.name for field in base.type.strip_typedefs().fields()] else base["_M_i"]


def vector(value):
    """(the first element's address, how many) of a std::vector."""
    start, finish = value["_M_impl"]["_M_start"], value["_M_impl"]["_M_finish"]
    return start, int(finish - start)


def std_string(value):
    return value["_M_dataplus"]["_M_p"].string("utf-8", "replace", int(value["_M_string_length"]))


def string_view(value):
    return value["_M_str"].string("utf-8", "replace", int(value["_M_len"]))


def quoted(text):
    text = text if len(text) <= LONGEST else text[:LONGEST] + "..."
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"').replace("\n", "\\n") + '"'


def counted(number, one, many):
    return f"{number} {one if number == 1 else many}"


def is_object(kind):
    """Whether a class derives from NSObject."""
    kind = kind.strip_typedefs().unqualified()
    if kind.code != gdb.TYPE_CODE_STRUCT:
        return False
    return kind.name in OBJECTS or any(is_object(f.type) for f in kind.fields() if f.is_base_class)


def header(address):
    """The counts and the class in front of the object."""
    pointer = gdb.lookup_type(LAYER + "ObjectHeader").pointer()
    return (gdb.Value(address).cast(pointer) - 1).dereference()


def is_described(name):
    """Whether the fields of a class are known."""
    try:
        return bool(gdb.lookup_type(name).fields())
    except gdb.error:
        return False


def class_name(address):
    """The class of an object as the program sees it, also while it is observed."""
    if not is_described(LAYER + "ClassObject"):
        table = gdb.Value(address).cast(gdb.lookup_type("unsigned long").pointer()).dereference()
        found = re.search(r"vtable for (?:.*::)?(\w+)", gdb.execute(f"info symbol {int(table)}", to_string=True))
        return found.group(1) if found else "object"
    cls = atomic(header(address)["cls"])
    return string_view(cls["shown_"]["name_"]) if int(cls) else "constant object"


def date_text(seconds):
    try:
        when = datetime.datetime(2001, 1, 1) + datetime.timedelta(seconds=float(seconds))
        return when.isoformat(" ", "milliseconds") + " UTC"
    except (OverflowError, ValueError):
        return f"{float(seconds)} s since 2001"


def string_text(value):
    length, units = int(value["length_"]), value["units_"]
    if not length:
        return quoted("")
    width = 2 if bool(value["wide_"]) else 1
    raw = bytes(gdb.selected_inferior().read_memory(int(units), min(length, LONGEST + 1) * width))
    return quoted(raw.decode("utf-16-le" if width == 2 else "utf-8", "replace"))


def number_text(value):
    kind = str(value["kind_"]).rsplit("::", 1)[-1]
    if kind == "real":
        return repr(float(value["real_"]))
    integer = int(value["integer_"])
    if kind == "boolean":
        return "true" if integer else "false"
    return str(integer % 2**64 if kind == "unsignedInteger" else integer)


def data_text(value):
    start, count = vector(value["bytes_"])
    shown = bytes(gdb.selected_inferior().read_memory(int(start), min(count, LONGEST))).hex() if count else ""
    return counted(count, "byte", "bytes") + (f" {shown}" if shown else "") + ("..." if count > LONGEST else "")


def url_text(value):
    base = value["base_"]["_M_ptr"]
    return quoted(std_string(value["text_"])) + (f" relative to {quoted(std_string(base['text_']))}" if int(base) else "")


def colour_text(value):
    payload = value["space_"]["_M_payload"]
    if not bool(payload["_M_engaged"]):
        return "no colour"
    start, count = vector(value["many_"])
    few = value["few_"]["_M_elems"]
    numbers = [start[i] for i in range(count)] or [few[i] for i in range(int(value["count_"]))]
    return "(" + ", ".join(f"{float(number):g}" for number in numbers) + ")"


def array_children(value):
    return [value["slots_"][i]["object_"] for i in range(int(value["length_"]))]


def table_entries(table):
    start, count = vector(table["slots_"])
    entries = [start[i]["entry"] for i in range(count)]
    return [entry for entry in entries if int(entry["key"]["object_"])]  # a null key marks a removed entry


# What is behind the layer's own classes: (a type with its fields, its text, its members, how those are shown).
def of(name, text=None, members=None, hint="array", namespace=LAYER):
    return namespace + name, text, members, hint


STRING = of("NSString", string_text)
DATA = of("NSData", data_text)
ARRAY = of("NSArray", lambda v: f"of {int(v['length_'])}", array_children)
DICTIONARY = of("NSDictionary", lambda v: "of " + counted(int(v["entries_"]["live_"]), "entry", "entries"),
                lambda v: [e[part]["object_"] for e in table_entries(v["entries_"]) for part in ("key", "value")], "map")
SET = of("NSSet", lambda v: f"of {int(v['elements_']['live_'])}",
         lambda v: [entry["key"]["object_"] for entry in table_entries(v["elements_"])])
ORDERED_SET = of("NSOrderedSet", lambda v: f"of {int(v['order_']['object_']['length_'])}",
                 lambda v: array_children(v["order_"]["object_"].dereference()))
CLASSES = {
    "NSString": STRING, "NSMutableString": STRING, "NSData": DATA, "NSMutableData": DATA,
    "NSArray": ARRAY, "NSMutableArray": ARRAY, "NSDictionary": DICTIONARY, "NSMutableDictionary": DICTIONARY,
    "NSSet": SET, "NSMutableSet": SET, "NSOrderedSet": ORDERED_SET, "NSMutableOrderedSet": ORDERED_SET,
    "NSNumber": of("NSNumber", number_text), "NSNull": of("NSNull"),
    "NSDate": of("NSDate", lambda v: date_text(v["date_"]["seconds_"])),
    "NSURL": of("NSURL", lambda v: url_text(v["url_"])),
    "KeyValueObservation": of("KeyValueObservation", lambda v: "", lambda v: [
        v["observer_"], v["object_"]["object_"], v["keyPaths_"]["object_"]], namespace="havrin::"),
    "UIColor": of("UIColor", lambda v: colour_text(v["color_"])),
}


OBJECTS = {LAYER + "NSObject"} | {kind for kind, *_ in CLASSES.values()}  # known as such without their bases


class ObjectPrinter:
    """An object behind a reference or a pointer: its class, and for the layer's own classes its value."""

    def __init__(self, address, prefix=""):
        self.address, self.prefix = int(address), prefix
        self.name = class_name(self.address) if self.address else None
        kind, self.text, self.members, self.hint = CLASSES.get(self.name, (None, None, None, None))
        if kind and is_described(kind):
            self.value = gdb.Value(self.address).cast(gdb.lookup_type(kind).pointer()).dereference()
        elif kind:
            self.text = self.members = None

    def to_string(self):
        if not self.address:
            return self.prefix + "nil"
        shown = self.text(self.value) if self.text else "" if self.name == "NSNull" else f"{self.address:#x}"
        return f"{self.prefix}{self.name} {shown}".rstrip()

    def children(self):
        return iter([(f"[{i}]", member) for i, member in enumerate(self.members(self.value))])

    def display_hint(self):
        return self.hint


class PlainText:
    def __init__(self, text):
        self.text = text

    def to_string(self):
        return self.text


def object_printer(address, prefix=""):
    printer = ObjectPrinter(address, prefix)
    return printer if printer.members else PlainText(printer.to_string())  # gdb adds braces where there are children


def weak_printer(value):
    address = int(value["object_"])
    if not address:
        return PlainText("Weak nil")
    strong = int(atomic(header(address)["strong"]))
    if strong == 0 or strong >= DESTROYING:
        return PlainText("Weak nil (its object is gone)")
    return object_printer(address, "Weak ")


def owner_of(word):
    """The thread that holds a lock, as gdb numbers it; None where that cannot be found."""
    before, frame = gdb.selected_thread(), gdb.selected_frame()
    try:
        for thread in gdb.selected_inferior().threads():
            thread.switch()
            try:
                if int(gdb.parse_and_eval(f"(unsigned int)'{LAYER}unfair_lock_word::thisThread'")) == word:
                    return thread.num
            except gdb.error:
                return None  # a core file without the threads' storage
    finally:
        before.switch()
        frame.select()
    return None


def lock_printer(value):
    word = int(value["_os_unfair_lock_opaque"])
    if not word:
        return PlainText("free")
    owner = owner_of(word & 0x7FFF_FFFF)
    holder = f"thread {owner}" if owner else f"lock owner number {word & 0x7FFF_FFFF}"
    return PlainText(f"held by {holder}" + (", others wait" if word & 0x8000_0000 else ""))


def queue_printer(value):
    owners = value["owners_"]
    if not int(owners):
        return PlainText("no queue")
    if not is_described(LAYER + "QueueState"):
        return PlainText(f"queue {int(owners):#x}")
    state = owners.cast(gdb.lookup_type(LAYER + "QueueState").pointer())
    return PlainText("queue " + quoted(std_string(state["label_"])))


def block_printer(value):
    body = value["body_"]
    if not int(body):
        return PlainText("null block")
    references = int(atomic(body["references"]))
    return PlainText(f"block {int(body):#x}, " + counted(references, "reference", "references"))


VALUES = {
    LAYER + "Date": lambda v: PlainText(date_text(v["seconds_"])),
    LAYER + "URL": lambda v: PlainText(url_text(v)),
    LAYER + "CGColor": lambda v: PlainText(colour_text(v)),
    LAYER + "os_unfair_lock": lock_printer,
    LAYER + "DispatchQueue": queue_printer,
}
TEMPLATES = {
    LAYER + "Strong<": lambda v: object_printer(v["object_"]),
    LAYER + "Weak<": weak_printer,
    LAYER + "Block<": block_printer,
}


class HavrinPrinters(gdb.printing.PrettyPrinter):
    def __init__(self):
        super().__init__("HavrinFoundation")

    def __call__(self, value):
        kind = value.type.strip_typedefs().unqualified()
        if kind.code == gdb.TYPE_CODE_PTR:
            if is_object(kind.target()) and kind.target().strip_typedefs().name != LAYER + "ClassObject":
                return object_printer(value)
            return None
        name = kind.name or ""
        if name in VALUES:
            return VALUES[name](value)
        for start, printer in TEMPLATES.items():
            if name.startswith(start):
                return printer(value)
        if kind.code == gdb.TYPE_CODE_STRUCT and name.removeprefix(LAYER) in CLASSES and value.address is not None:
            return object_printer(value.address)
        return None


gdb.printing.register_pretty_printer(gdb.current_objfile(), HavrinPrinters(), replace=True)
