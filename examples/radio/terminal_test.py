# SPDX-License-Identifier: Apache-2.0
"""Drives the board in a pseudo terminal, through a shell, and compares screens.

  terminal_test.py PROGRAM FOLDER        the board, and a folder of the test's own

Nothing waits for a time: each step waits until the screen shows what is expected, for at most a minute.
"""
import fcntl, json, os, pty, re, select, shutil, signal, struct, subprocess, sys, termios, time

from virtual_terminal import Screen

LIMIT_SECONDS = 60
PROMPT = "ready> "


class Shell:
    """A shell in a pseudo terminal that the board is started from."""

    def __init__(self, width, height):
        environment = {"PATH": os.environ["PATH"], "HOME": os.environ.get("HOME", "/"), "TERM": "xterm-256color",
                       "LANG": "C.UTF-8", "PS1": PROMPT, "HISTFILE": "/dev/null"}
        self.process, self.terminal = pty.fork()
        if self.process == 0:
            os.execvpe("bash", ["bash", "--norc", "--noprofile", "--noediting", "-i"], environment)
        self.screen = Screen(width, height)
        self.written = ""  # all that has come
        self.resize(width, height)
        self.wait("a prompt", lambda screen: PROMPT.strip() in screen.text())

    def resize(self, width, height):
        alternate = self.screen.alternate
        self.screen.resize(width, height)
        self.screen.alternate = alternate
        fcntl.ioctl(self.terminal, termios.TIOCSWINSZ, struct.pack("HHHH", height, width, 0, 0))

    def type(self, keys):
        os.write(self.terminal, keys.encode())

    def wait(self, what, holds):
        end = time.monotonic() + LIMIT_SECONDS
        while not holds(self.screen):
            left = end - time.monotonic()
            if left <= 0 or not select.select([self.terminal], [], [], left)[0]:
                sys.exit(f"no {what} on the screen:\n{self.screen.text()}")
            text = os.read(self.terminal, 65536).decode(errors="replace")
            self.written += text
            self.screen.feed(text)

    def shows(self, pattern):
        self.wait(pattern, lambda screen: re.search(pattern, screen.text(), re.M))

    def says(self, text):
        """As shows, of plain text that the terminal may break at any place."""
        def squeezed(text):
            return re.sub(r"\s", "", text)
        self.wait(text, lambda screen: squeezed(text) in squeezed(screen.text()))

    def ended(self, status):
        """The board has ended: the shell is back, on its own screen, and nothing of what was typed is in it."""
        self.wait("shell", lambda screen: not screen.alternate and screen.text().rstrip().endswith(PROMPT.strip()))
        self.type("echo status $?\n")
        self.shows(rf"^status {status}$")

    def signal(self, number):
        """Sends a signal to the board, the shell's only child."""
        children = subprocess.run(["ps", "-o", "pid=", "--ppid", str(self.process)], capture_output=True, text=True)
        os.kill(int(children.stdout.split()[0]), number)

    def close(self):
        os.kill(self.process, signal.SIGHUP)
        os.close(self.terminal)
        os.waitpid(self.process, 0)


def selected(screen):
    return next((line for line in screen.lines() if line.startswith("▸")), "")


def test_keys(board, state):
    shell = Shell(100, 30)
    shell.type(f"{board} --state {state}\n")
    shell.shows("288 of 288 stations")
    shell.wait("first station", lambda screen: "Quartz Eins" in selected(screen))
    shell.type("\x1b[B")
    shell.wait("second station", lambda screen: "Маяк Свет" in selected(screen))
    shell.type("\x1b[F")
    shell.wait("last station", lambda screen: selected(screen) and "Quartz Eins" not in screen.text())
    shell.type("\x1b[5~\x1b[H")
    shell.wait("first station", lambda screen: "Quartz Eins" in selected(screen))
    shell.type("\x1b[6~")
    shell.wait("next page", lambda screen: selected(screen) and "Quartz Eins" not in selected(screen))
    shell.type("?")
    shell.shows("Ctrl-Z +suspends")
    shell.type("\x1b")
    shell.shows("Station +Genre")
    shell.type("/quartz")
    shell.shows("^search: quartz_")
    shell.shows(r"^HAVRIN RADIO +\d+ of 288 stations")
    shell.type("\x1b")
    shell.shows("^/ to search")
    shell.type("/jazz\r")
    shell.shows("^HAVRIN RADIO +20 of 288")
    shell.type("\x1b[H\r")
    shell.shows("^campaign +board")
    shell.type("\x1b+")
    shell.shows("is a favourite now")
    for width in (200, 40, 80):
        shell.resize(width, 30)
        shell.wait(f"board of {width} columns",
                   lambda screen: "Lantern Radio" in selected(screen) and "Playing" in screen.text() and
                   ("campaign" in screen.text()) == (width == 200))
    shell.type("\x1a")
    shell.wait("stopped board", lambda screen: not screen.alternate and "Stopped" in screen.text()
               and screen.text().rstrip().endswith(PROMPT.strip()))
    shell.type("fg\n")
    shell.wait("board", lambda screen: screen.alternate and "20 of 288" in screen.text())
    shell.type("q")
    shell.ended(0)
    shell.close()


def test_state(board, state, folder):
    shell = Shell(100, 30)
    # Each ending saves: the mark of one run is there in the next.
    for mark, keys, end, status in (("WX", "", lambda: shell.type("\x03"), 130),
                                    ("WX", ":TU\r+", lambda: shell.signal(signal.SIGHUP), 129),
                                    ("TU", "", lambda: shell.type("q"), 0)):
        shell.type(f"clear; {board} --state {state}\n")
        shell.shows(f"★ {mark} ")
        shell.type(keys)
        shell.shows("★ TU " if keys else f"★ {mark} ")
        end()
        shell.ended(status)
    with open(state, "wb") as file:
        file.write(b"no archive")
    shell.type(f"{board} --state {state}\n")
    shell.shows("Starting fresh")
    shell.type("q")
    shell.ended(0)
    # No file may grow: as on a disk that is full.
    shell.type(f"(trap '' XFSZ; ulimit -f 0; {board} --state {folder}/full/board.state)\n")
    shell.shows("288 of 288 stations")
    shell.type("q")
    shell.says("File too large")
    shell.ended(1)
    shell.close()


def test_two_boards(board, folder):
    """Two boards on one state file, of which one is ended by a signal: both people's marks are there afterwards."""
    state = f"{folder}/shared.state"
    first, second = Shell(100, 30), Shell(100, 30)
    for shell, keys, mark in ((first, ":WX\\n+", "★ WX"), (second, ":TU\\n+", "★ TU")):
        shell.type(f"{board} --state {state} --keys $'{keys}' & echo; fg\n")
        shell.shows(mark)
    first.type("q")
    first.ended(0)
    second.signal(signal.SIGTERM)
    second.says("marks and colours of both are kept")
    second.ended(143)
    first.type(f"clear; {board} --state {state}\n")
    first.shows("★ TU")
    first.shows("★ WX")
    first.type("q")
    first.ended(0)
    first.close()
    second.close()


def test_reload(board, folder):
    """The stations file changes while its board is open."""
    with open(os.path.join(os.path.dirname(board), "stations.json")) as file:
        stations = json.load(file)["stations"]
    path = f"{folder}/stations.jsonl"
    shell = Shell(100, 30)
    for count in (3, 5):
        with open(f"{path}.new", "w") as file:
            file.writelines(json.dumps(station) + "\n" for station in stations[:count])
        os.rename(f"{path}.new", path)
        if count == 3:
            shell.type(f"{board} --no-state --keys $'\\x1b[B' {path}\n")
        shell.shows(f"{count} of {count} stations")
        shell.wait("selected station", lambda screen: "Маяк Свет" in selected(screen))
    with open(path, "w") as file:
        file.write("[")
    shell.shows("0 of 0 stations.*\n.*1 entry skipped")
    os.remove(path)
    shell.shows("^The stations stay as they were:")  # the path may begin a line of its own
    shell.type("q")
    shell.ended(0)
    shell.close()


def test_slow_file(board, folder):
    """A file that takes its time: what has been read so far is shown, then the stations."""
    path = f"{folder}/slow.jsonl"
    os.mkfifo(path)
    shell = Shell(100, 30)
    shell.type(f"{board} --no-state {path}\n")
    shell.shows("^radio: reading stations, 0 so far, 1 s")
    with open(os.path.join(os.path.dirname(board), "stations.json")) as file, open(path, "w") as pipe:
        pipe.writelines(json.dumps(station) + "\n" for station in json.load(file)["stations"][:3])
    shell.shows("3 of 3 stations")
    if "reading stations" in shell.screen.text():
        sys.exit("the line about reading stays on the screen")
    shell.type("q")
    shell.ended(0)
    shell.close()


def test_terminals(board):
    """Colours and characters as the terminal has them, and no more written than what has changed."""
    truecolour, palette = r"\x1b\[48;2;175;76;123;38;5;231m chanson", r"\x1b\[48;5;132;38;5;231m chanson"
    shell = Shell(100, 30)
    for environment, cursor, wanted, unwanted in (("COLORTERM=truecolor", "▸", truecolour, "48;5"),
                                                  ("TERM=xterm-256color", "▸", palette, "48;2"),
                                                  ("TERM=vt220", "▸", r"\x1b\[1m", "48;"),
                                                  ("NO_COLOR=1", "▸", "chanson", r"\x1b\[[0-9;]*m"),
                                                  ("LC_ALL=C", ">", r"\?\?\?\?\?\? FM|155", "[^\\x00-\x7f]")):
        shell.type("clear\n")
        shell.wait("clear screen", lambda screen: screen.text().strip() == PROMPT.strip())
        shell.written = ""
        shell.type(f"IS_EXECUTING_TEST=1 {environment} {board} --no-state\n")
        shell.shows(f"^{cursor}  ST(.*\n)+Havrin/Version")
        if not re.search(wanted, shell.written) or re.search(unwanted, shell.written):
            sys.exit(f"{environment}: wanted {wanted}, and not {unwanted}, in\n{shell.written!r}")
        shell.written = ""
        shell.type("\x1b[B")
        shell.shows(f"^{cursor}  TU")
        if len(re.findall(r"\x1b\[\d+;1H", shell.written)) > 3:  # two rows, and the clock
            sys.exit(f"more is written than two rows: {shell.written!r}")
        shell.type("q")
        shell.ended(0)
    shell.type(f"clear; TERM=dumb {board} --no-state\n")
    shell.ended(0)
    shell.shows("^Date: ")
    shell.close()


def main():
    board, folder = sys.argv[1:]
    shutil.rmtree(folder, ignore_errors=True)
    os.makedirs(folder)
    state = f"{folder}/board.state"
    test_keys(board, state)
    test_state(board, state, folder)
    test_two_boards(board, folder)
    test_reload(board, folder)
    test_slow_file(board, folder)
    test_terminals(board)


main()
