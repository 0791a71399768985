# SPDX-License-Identifier: Apache-2.0
"""format: every C++ file is as clang-format 14 writes it (.clang-format)."""
import subprocess

AT_ONCE = 32


def wrong(tree, files):
    """Those of the files that clang-format writes otherwise."""
    # The texts are compared, since --dry-run also reports replacements that change nothing.
    written = subprocess.run(["clang-format-14", *files], cwd=tree.root, check=True, text=True,
                             capture_output=True).stdout
    if written == "".join(tree.text(name) for name in files):
        return []
    return files if len(files) == 1 else [name for file in files for name in wrong(tree, [file])]


def check(tree):
    files = tree.under("HavrinFoundation/", "examples/", "tests/", "benchmarks/", "fuzz/")
    return [f"{name}: run clang-format-14 -i {name}" for start in range(0, len(files), AT_ONCE)
            for name in wrong(tree, files[start:start + AT_ONCE])]
