"""format: every C++ file is as clang-format 14 writes it (.clang-format)."""
import concurrent.futures
import os
import subprocess


def check(tree):
    # The texts are compared, since --dry-run also reports replacements that change nothing.
    def wrong(name):
        return tree.text(name) != subprocess.run(["clang-format-14", name], cwd=tree.root, check=True, text=True,
                                                 capture_output=True).stdout

    files = tree.under("HavrinFoundation/", "examples/", "tests/", "benchmarks/", "fuzz/")
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        return [f"{name}: run clang-format-14 -i {name}" for name, bad in zip(files, pool.map(wrong, files)) if bad]
