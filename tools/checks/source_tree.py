# SPDX-License-Identifier: Apache-2.0
"""The files that the checks read: what git tracks and what it would track, by paths from the root."""
import functools
import pathlib
import re
import subprocess

INCLUDE = re.compile(r'^\s*#\s*include\s*[<"]([^>"]+)[>"]', re.MULTILINE)
LIBRARY = "HavrinFoundation/"


class SourceTree:
    def __init__(self, root, since=None):
        self.root = pathlib.Path(root).resolve()
        self.since = since
        listed = self.git("ls-files", "-z", "--cached", "--others", "--exclude-standard").split("\0")
        self.files = sorted(name for name in listed if name and (self.root / name).is_file())
        self.known = frozenset(self.files)

    def git(self, *arguments):
        # The tree may belong to whoever cloned it.
        return subprocess.run(["git", "-c", "safe.directory=*", "-C", self.root, *arguments], check=True, text=True,
                              capture_output=True).stdout

    @functools.cache
    def text(self, name):
        """The file's text, or None where it is not text."""
        try:
            return (self.root / name).read_text(encoding="utf-8")
        except UnicodeDecodeError:
            return None

    def under(self, *folders, suffixes=(".h", ".cpp")):
        return [name for name in self.files if name.startswith(folders) and name.endswith(suffixes)]

    @functools.cache
    def includes(self, name):
        """What the file includes, in its order: paths from the root for our own files, else as written."""
        return INCLUDE.findall(self.text(name) or "")

    @functools.cache
    def reached(self, name):
        """Every file of ours that including `name` brings in, itself among them."""
        seen, waiting = set(), [name]
        while waiting:
            current = waiting.pop()
            if current not in seen and current in self.known:
                seen.add(current)
                waiting += [path for path in self.includes(current) if path.startswith(LIBRARY)]
        return seen
