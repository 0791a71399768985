#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Draws the running board as SVG, in its colours, for a light and a dark page.

  tools/board_picture.py PROGRAM [FOLDER]       writes FOLDER/board-light.svg and board-dark.svg (docs/)

The board runs in a pseudo terminal; what it writes there is shown by a small terminal and drawn cell by cell.
"""
import html, itertools, os, pathlib, pty, re, select, struct, sys, time

import fcntl, termios

ROOT = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "examples/radio"))
from virtual_terminal import Screen

WIDTH, HEIGHT = 100, 24
KEYS = ":WX\r+"  # goes to a station, and marks it
CELL, LINE, MARGIN = 8.4, 18, 12
THEMES = {"light": {"ink": "#24292f", "faint": "#6e7781", "ground": "#ffffff", "frame": "#d0d7de"},
          "dark": {"ink": "#e6edf3", "faint": "#8b949e", "ground": "#0d1117", "frame": "#30363d"}}
PALETTE = {16: "#000000", 231: "#ffffff"}  # the two of the 256 colours that the board writes with


def recorded(program):
    """The screen of the board after it was given the keys."""
    process, terminal = pty.fork()
    if process == 0:
        os.execve(program, [program, "--no-state", "--keys", KEYS],
                  {"TERM": "xterm-256color", "COLORTERM": "truecolor", "LANG": "C.UTF-8", "IS_EXECUTING_TEST": "1"})
    fcntl.ioctl(terminal, termios.TIOCSWINSZ, struct.pack("HHHH", HEIGHT, WIDTH, 0, 0))
    screen = Screen(WIDTH, HEIGHT)
    end = time.monotonic() + 30
    is_drawn = re.compile(r"is a favourite now.*Havrin/Version", re.S)
    while not is_drawn.search(screen.text()):
        if not select.select([terminal], [], [], max(0, end - time.monotonic()))[0]:
            sys.exit("the board has not been drawn:\n" + screen.text())
        screen.feed(os.read(terminal, 65536).decode(errors="replace"))
    os.write(terminal, b"q")
    while select.select([terminal], [], [], 5)[0]:
        try:
            os.read(terminal, 65536)
        except OSError:  # the board has ended
            break
    os.waitpid(process, 0)
    return screen


def style_of(sgr, theme):
    """Ink, ground (none: the page's) and further attributes of an SGR sequence."""
    codes = [int(code) for code in sgr.split(";") if code]
    ink, ground, attributes = theme["ink"], None, ""
    while codes:
        code = codes.pop(0)
        if code in (38, 48):
            if codes.pop(0) == 5:
                colour = PALETTE[codes.pop(0)]
            else:
                colour = "#%02x%02x%02x" % tuple(codes[:3])
                del codes[:3]
            ink, ground = (colour, ground) if code == 38 else (ink, colour)
        elif code == 1:
            attributes += ' font-weight="bold"'
        elif code == 2:
            ink = theme["faint"]
        elif code == 4:
            attributes += ' text-decoration="underline"'
        elif code == 7:
            ink, ground = theme["ground"], ink
    return ink, ground, attributes


def row_of(cells, y, theme):
    """Rectangles and texts of one row: a text for each run of one style, words apart, so that columns stay straight."""
    for sgr, run in itertools.groupby(enumerate(cells), key=lambda item: item[1][1]):
        run = list(run)
        ink, ground, attributes = style_of(sgr, theme)
        left = MARGIN + run[0][0] * CELL
        if ground:
            yield f'<rect x="{left:.1f}" y="{y}" width="{len(run) * CELL:.1f}" height="{LINE}" fill="{ground}"/>'
        for isBlank, word in itertools.groupby(run, key=lambda item: item[1][0] == " "):
            word = list(word)
            if isBlank:
                continue
            x, width = MARGIN + word[0][0] * CELL, len(word) * CELL
            text = html.escape("".join(character for _, (character, _) in word))
            yield (f'<text x="{x:.1f}" y="{y + 13}" textLength="{width:.1f}" lengthAdjust="spacingAndGlyphs" '
                   f'fill="{ink}"{attributes}>{text}</text>')


def picture(screen, theme):
    width, height = 2 * MARGIN + WIDTH * CELL, 2 * MARGIN + HEIGHT * LINE
    yield (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width:.0f} {height}" width="{width:.0f}" '
           f'height="{height}" font-family="ui-monospace, Menlo, Consolas, \'DejaVu Sans Mono\', monospace" '
           'font-size="14">')
    yield "<title>The board of radio stations in a terminal</title>"
    yield (f'<rect x="0.5" y="0.5" width="{width - 1:.0f}" height="{height - 1}" rx="8" fill="{theme["ground"]}" '
           f'stroke="{theme["frame"]}"/>')
    for number, cells in enumerate(screen.cells):
        yield from row_of(cells, MARGIN + number * LINE, theme)
    yield "</svg>"


def main():
    folder = pathlib.Path(sys.argv[2] if len(sys.argv) > 2 else ROOT / "docs")
    screen = recorded(sys.argv[1])
    for name, theme in THEMES.items():
        (folder / f"board-{name}.svg").write_text("\n".join(picture(screen, theme)) + "\n", encoding="utf-8")


main()
