# SPDX-License-Identifier: Apache-2.0
"""The dev build, for the checks that need something built."""
import os
import subprocess

FOLDER = "build/dev"


def ninja(tree, *targets):
    """Builds the targets; answers what went wrong."""
    if not (tree.root / FOLDER / "build.ninja").exists():
        run = subprocess.run(["cmake", "--preset", "dev"], cwd=tree.root, text=True, capture_output=True)
        if run.returncode:
            return [run.stderr.strip()]
    run = subprocess.run(["ninja", "-C", FOLDER, f"-j{os.cpu_count()}", "-k0", *targets], cwd=tree.root, text=True,
                         stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    return [] if run.returncode == 0 else [run.stdout.strip()]
