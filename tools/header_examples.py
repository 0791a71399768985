#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Turns the examples in the opening comments of public headers, and those of pages, into C++ sources, one each.

  tools/header_examples.py <names file> <output folder> <pages, joined by ":"> <header>...

An example is a line of the comment indented by three blanks: C++ code, then at least two blanks, then its result. Code that
ends in ";" or begins as a statement is one; anything else is an expression. "..." is code that is left out. An expression's result is compared where it is a literal,
{a, b}, an enumerator, "null" or "empty", and "throws <class>" is held to it; a line that "does not compile" is left
out; any other result is a remark. A line indented by more than eight blanks, when no
bracket is open, is the result of the line above. Lines of a bracket that is open belong together.

A source includes its header, and no other of the project. The names file declares what the examples of a header use
besides and the headers that bring it ("with", a standard one in angle brackets, one of the tests' in quotation marks), or says that they are compiled only, or left alone, and why.

The first block of C++ on a page is what the others begin with; each other one is a function. A result follows
"//", and is compared as a header's is.
"""
import pathlib
import re
import sys

STATEMENT = re.compile(r"(for|if|while|try|struct|class) ")
ENUMERATOR = re.compile(r"([A-Z]\w*::\w+)(?=$|[:;,])")
NUMBER = re.compile(r"(-?\d[\d']*(?:\.\d+)?)(?=$|[:;]|, (?!-?\d))")
WORD = re.compile(r"(true|false|null|empty)(?=$|[:;,.])")
PAIR = re.compile(r"(\{\d+, \d+\})(?=$|[:;,])")
THROWS = re.compile(r"throws (\w+)")
TEXT = re.compile(r'(u?"(?:[^"\\]|\\.)*")(?=$|[:;,])')


def opening_comment(text):
    lines = []
    for number, line in enumerate(text.split("\n"), 1):
        if not line.startswith("//"):
            break
        lines.append((number, line[2:]))
    return lines


def split_result(line):
    """The code of a line and what follows two blanks outside of quotation marks."""
    quote, i = "", len(line) - len(line.lstrip())
    while i < len(line):
        c = line[i]
        if quote:
            i += c == "\\"
            quote = "" if c == quote else quote
        elif c == '"' or (c == "'" and not line[i - 1].isalnum()):
            quote = c
        elif line.startswith("  ", i):
            return line[:i], line[i:].strip()
        i += 1
    return line.rstrip(), ""


def depth(code):
    bare = re.sub(r'"(?:[^"\\]|\\.)*"', '""', code)
    bare = re.sub(r"'(?:[^'\\]|\\.)'", "''", bare)
    return sum(bare.count(c) for c in "([{") - sum(bare.count(c) for c in ")]}")


def examples(text):
    """Triples of line number, code and result."""
    found = []
    for number, line in opening_comment(text):
        is_open = bool(found) and depth(found[-1][1]) > 0
        if not line.startswith("   "):
            continue
        if not is_open and line.startswith(" " * 9):
            if found and not found[-1][2]:
                found[-1][2] = line.strip()
            continue
        code, result = split_result(line[3:])
        if is_open:
            found[-1][1] += "\n" + code
            found[-1][2] = result
        else:
            found.append([number, code, result])
    return found


def comparison(result):
    for pattern in (TEXT, PAIR, WORD, NUMBER, ENUMERATOR):
        match = pattern.match(result)
        if match:
            return {"null": "havrin_examples::absent", "empty": "havrin_examples::absent"}.get(match.group(1), match.group(1))
    return None


def statement(header, number, code, result):
    place = f'#line {number} "{header}"\n'
    if not result and TEXT.fullmatch(code.strip()):
        sys.exit(f"{header}:{number}: a result on a line of its own is indented by more than eight blanks")
    code = re.sub(r" \.\.\.$", " ;", code.replace("{ ... }", "{}"))
    if thrown := THROWS.match(result):
        return place + (f'havrin_examples::expectThrow<{thrown.group(1)}>("{header}:{number}", '
                        f'[&] {{ (void)({code.rstrip(";")}); }});\n')
    if result.startswith("does not compile"):
        return ""
    if code.endswith(";") or STATEMENT.match(code):
        return place + code + "\n"
    expected = comparison(result)
    if expected is None:
        return place + f"(void)({code});\n"
    return place + f'havrin_examples::expect("{header}:{number}", ({code}), {expected});\n'


def read_names(path):
    """The declarations of each header, and how far its examples are taken: "run", "compile" or "leave"."""
    declarations, includes, modes, header = {}, {}, {}, None
    for line in path.read_text().split("\n"):
        if line.startswith("  with "):
            name = line[7:] if line[7] in '<"' else f"<HavrinFoundation/{line[7:]}>"
            includes[header] += f"#include {name}\n"
        elif line.startswith("  "):
            declarations[header] += line + "\n"
        elif line and not line.startswith("#"):
            header, _, mode = line.partition(": ")
            declarations[header], includes[header], modes[header] = "", "", (mode.split(":")[0] or "run")
    return declarations, includes, modes


def source(header, found, declarations, includes, mode):
    name = re.sub(r"\W", "_", header)
    body = "".join(statement(header, *one) for one in found)
    run = "examples()" if mode == "run" else "(void)&examples"
    return (f"#include <HavrinFoundation/{header}>\n{includes}\n#include \"expect.h\"\n\nusing namespace havrin;\nusing namespace std::literals;\n\n"
            f"namespace {{\n\nvoid examples() {{\n{declarations}{body}}}\n\n}}  // namespace\n\n"
            f"void run_{name}() {{ {run}; }}\n")


def page_source(name, page):
    """A program part of a page's blocks of C++."""
    blocks = [(page[:match.start(1)].count("\n") + 1, match.group(1))
              for match in re.finditer(r"^```cpp\n(.*?)^```$", page, re.M | re.S)]
    (_, beginning), *rest = blocks
    source = beginning + '#include "expect.h"\n\nnamespace {\n\n'
    for number, (first, block) in enumerate(rest):
        body, code = "", ""
        for line, text in enumerate(block.splitlines(), first):
            written, _, result = text.partition("  // ")
            code += written + "\n"
            if depth(code) > 0 or not (result or written.rstrip().endswith((";", "}"))):
                continue
            begin = line - code.count("\n") + 1
            body += statement(name, begin, code.strip().removesuffix(";") if result else code.rstrip(), result)
            code = ""
        source += f"void block{number}() {{\n{body}}}\n\n"
    calls = "".join(f'  havrin_examples::guarded("{name}, block {number + 2}", block{number});\n'
                    for number in range(len(rest)))
    return f"{source}}}  // namespace\n\nvoid run_page_{pathlib.Path(name).stem}() {{\n{calls}}}\n"


def write(path, text):
    if not path.exists() or path.read_text() != text:
        path.write_text(text)


def main():
    names, output = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
    root = names.resolve().parents[2] / "HavrinFoundation"
    declarations, includes, modes = read_names(names)
    headers = sys.argv[4:]
    for unknown in sorted(set(modes) - set(headers)):
        sys.exit(f"{names}: {unknown} is not a public header")
    runs = []
    for page in map(pathlib.Path, sys.argv[3].split(":")):
        write(output / f"page_{page.stem}.cpp", page_source(page.name, page.read_text()))
        runs.append(f"run_page_{page.stem}")
    for header in headers:
        found = examples((root / header).read_text())
        mode = modes.get(header, "run")
        if not found or mode == "leave":
            write(output / (re.sub(r"\W", "_", header) + ".cpp"), "")
            continue
        name = re.sub(r"\W", "_", header)
        runs.append(f"run_{name}")
        write(output / f"{name}.cpp", source(header, found, declarations.get(header, ""), includes.get(header, ""), mode))
    write(output / "main.cpp", "#include \"expect.h\"\n\n" + "".join(f"void {run}();\n" for run in runs) +
          "\nint main() {\n" + "".join(f"  havrin_examples::guarded(\"{run}\", {run});\n" for run in runs) +
          "  return havrin_examples::failures() == 0 ? 0 : 1;\n}\n")


if __name__ == "__main__":
    main()
