#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Stops debugged.cpp under gdb and compares what it prints with the lines "//> expression => pattern" in it.

Arguments: gdb, the printers, the program, its source. With "classes" as a fifth one, the program lacks the library's debug
information: the classes of objects are shown, and no more.
"""
import pathlib
import re
import subprocess
import sys

GDB, PRINTERS, PROGRAM, SOURCE = sys.argv[1:5]
WITHOUT = [("text", "NSString #"), ("station", "Station #"), ("array", "NSArray #"), ("none", "nil"),
           ("mine", "held by thread 1"), ("queue", "queue #")]


def main():
    rows = re.findall(r"//> (.*?) => (.*)", pathlib.Path(SOURCE).read_text(encoding="utf-8"))
    if sys.argv[5:] == ["classes"]:
        rows = WITHOUT
    elif len(rows) < 25:
        return f"{SOURCE} has only {len(rows)} rows"
    commands = ["set width 0", "set host-charset UTF-8", f"source {PRINTERS}", "break stopHere", "run", "up"]
    commands += [f"print {expression}" for expression, _ in rows] + ["kill"]
    run = subprocess.run([GDB, "-nx", "-batch", *(word for line in commands for word in ("-ex", line)), PROGRAM],
                         text=True, capture_output=True, encoding="utf-8")
    shown = re.findall(r"^\$\d+ = (.*)$", run.stdout, re.MULTILINE)
    wrong = [] if len(shown) == len(rows) else [f"gdb printed {len(shown)} values, not {len(rows)}"]
    for (expression, pattern), text in zip(rows, shown):
        wanted = re.escape(pattern.replace('\\\\', '\\')).replace(r"\#", "0x[0-9a-f]+")
        if not re.fullmatch(wanted, text):
            wrong.append(f"print {expression}: {text}, not {pattern}")
    print("\n".join(wrong + [run.stdout, run.stderr]) if wrong else f"{len(rows)} values are shown as they should be")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
