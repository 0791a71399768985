# SPDX-License-Identifier: Apache-2.0
"""A small terminal: what the board's control sequences show."""
import re, unicodedata

BLANK = (" ", "")


class Screen:
    """What a terminal shows: the main screen and the alternate one. Each cell is a character, empty behind a wide one,
    and its style, the parameters of the last SGR sequence."""

    def __init__(self, width, height):
        self.resize(width, height)
        self.rest = ""

    def resize(self, width, height):
        self.width, self.height = width, height
        self.alternate = False
        self.cells = [[BLANK] * width for _ in range(height)]
        self.row = self.column = 0
        self.style = ""

    def feed(self, text):
        text = self.rest + text
        self.rest = ""
        at = 0
        while at < len(text):
            if text[at] == "\x1b":
                match = re.compile(r"\x1b(\[[?0-9;]*[@-~]|\][^\x07]*\x07|[^\[\]])").match(text, at)
                if not match:
                    self.rest = text[at:]
                    return
                self.control(match.group())
                at = match.end()
            else:
                self.put(text[at])
                at += 1

    def control(self, sequence):
        numbers = [int(number or 0) for number in re.findall(r"\d+", sequence)]
        kind = sequence[-1]
        if kind == "H":
            self.row, self.column = (numbers + [1, 1])[0] - 1, (numbers + [1, 1])[1] - 1
        elif kind == "K":
            self.cells[self.row][self.column:] = [BLANK] * (self.width - self.column)
        elif kind == "J":
            for row in range(self.row, self.height):
                self.cells[row] = [BLANK] * self.width
        elif kind == "m":
            self.style = "" if numbers in ([], [0]) else sequence[2:-1]
        elif kind in "hl" and 1049 in numbers:
            self.alternate = kind == "h"
            self.cells = [[BLANK] * self.width for _ in range(self.height)]
            self.row = self.column = 0

    def put(self, character):
        if character == "\r":
            self.column = 0
        elif character == "\n":
            self.row += 1
            if self.row == self.height:
                self.cells = self.cells[1:] + [[BLANK] * self.width]
                self.row -= 1
        elif character == "\b":
            self.column = max(0, self.column - 1)
        elif character >= " ":
            wide = unicodedata.east_asian_width(character) in "WF"
            if unicodedata.combining(character):
                return
            if self.column + 1 + wide > self.width and not self.alternate:
                self.put("\r")
                self.put("\n")
            if self.column + 1 + wide <= self.width and self.row < self.height:
                self.cells[self.row][self.column] = (character, self.style)
                if wide:
                    self.cells[self.row][self.column + 1] = ("", self.style)
                self.column += 1 + wide

    def lines(self):
        return ["".join(character for character, _ in row).rstrip() for row in self.cells]

    def text(self):
        return "\n".join(self.lines())
