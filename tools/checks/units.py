# SPDX-License-Identifier: Apache-2.0
"""units: the sources of each library as one unit, in which two file-local names of the same spelling clash.

Builds of large units put neighbours together, and which files are neighbours changes with every file that is added.
"""
import json
import re
import shlex
import subprocess

FOLDER = "build/units"
ERROR = re.compile(r"^(\S+?):(\d+):\d+: (?:fatal )?error: (.*)")
MOST = 20  # of one unit: a clash may set off more errors than anybody reads


def check(tree):
    folder = tree.root / FOLDER
    run = subprocess.run(["cmake", "--preset", "dev", "-B", FOLDER, "-DHAVRIN_BUILD_TESTS=OFF", "-DCMAKE_UNITY_BUILD=ON",
                          "-DCMAKE_UNITY_BUILD_BATCH_SIZE=0"], cwd=tree.root, text=True, capture_output=True)
    if run.returncode:
        return [run.stderr.strip()]
    problems = []
    units = [entry for entry in json.loads((folder / "compile_commands.json").read_text())
             if "/Unity/unity_" in entry["file"] and "/HavrinFoundation/" in entry["file"]]
    if not units:
        return [f"{FOLDER} has no unit"]
    for unit in units:
        run = subprocess.run([*shlex.split(unit["command"]), "-fsyntax-only"], cwd=unit["directory"], text=True,
                             capture_output=True)
        if run.returncode:
            found = [f"{line[1]}:{line[2]}: {line[3]}".replace(f"{tree.root}/", "")
                     for line in map(ERROR.match, run.stderr.splitlines()) if line]
            problems += found[:MOST] or [run.stderr.strip()]
    return problems
