# SPDX-License-Identifier: Apache-2.0
"""tidy: clang-tidy 14 over the changed sources of the library and the examples (.clang-tidy: what is asked, and why).

Changed means: since --since, else since the branch left origin/main, else, on main itself, in its last ten commits.
A changed header is read through the first source of ours that includes it. The tests and benchmarks are left to the
compilers: what their frameworks' macros expand to drowns everything else.
"""
import concurrent.futures
import json
import os
import subprocess

from checks import build

RECENT = 10
# The commands are g++'s, some of whose warnings clang does not know.
OPTIONS = ["--extra-arg=-Wno-unknown-warning-option"]
FOLDERS = ("HavrinFoundation/", "examples/")


def base(tree):
    if tree.since:
        return tree.since
    if tree.git("for-each-ref", "refs/remotes/origin/main"):
        left = tree.git("merge-base", "HEAD", "origin/main").strip()
        if left != tree.git("rev-parse", "HEAD").strip():
            return left
    commits = tree.git("rev-list", "--first-parent", f"--max-count={RECENT + 1}", "HEAD").split()
    return commits[-1]


def changed(tree):
    names = set(tree.git("diff", "--name-only", base(tree)).split())
    names |= set(tree.git("ls-files", "--others", "--exclude-standard").split())
    return names


def sources_of(tree, names, compiled):
    """The compiled files through which clang-tidy sees the names."""
    sources = names & compiled
    for header in sorted(name for name in names if name.endswith(".h")):
        if not any(header in tree.reached(source) for source in sources):
            sources |= set([source for source in sorted(compiled) if header in tree.reached(source)][:1])
    return sorted(sources)


def check(tree):
    database = tree.root / build.FOLDER / "compile_commands.json"
    if not database.exists():
        problems = build.ninja(tree, "build.ninja")
        if problems:
            return problems
    compiled = {os.path.relpath(entry["file"], tree.root) for entry in json.loads(database.read_text())}
    compiled = {name for name in compiled if name.startswith(FOLDERS)}

    def read(name):
        return subprocess.run(["clang-tidy-14", "--quiet", "-p", build.FOLDER, *OPTIONS, name], cwd=tree.root, text=True,
                              capture_output=True)

    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        runs = list(pool.map(read, sources_of(tree, changed(tree), compiled)))
    return [run.stdout.strip() or run.stderr.strip() for run in runs if run.returncode]
