#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Gives tools/bench_table.py one made-up run and compares what it prints and what it writes into a page."""
import json
import pathlib
import subprocess
import sys
import tempfile

TOOL = pathlib.Path(__file__).resolve().parents[2] / "tools" / "bench_table.py"
# (name, unit, processor times of the repetitions); the wall clock shows 40 ns.
RUNS = [("text/small/ours", "ns", (50, 10, 11)), ("text/small/peer", "us", (0.02, 0.02, 0.09)),
        ("text/large/ours", "ns", (9,)), ("text/large/peer", "ns", (10,)), ("text/large/bare", "ns", (3,)),
        ("text/large/level", "ns", (9.2,)), ("text/large/other", "ns", (6,)), ("lock/threads:2/ours/real_time", "ns", (1,))]
TARGETS = ("text/small/ours\ttext/small/peer\t0.6\tone allocation\n"
           "text/large/ours\ttext/large/peer\t0.5\t\n"
           "text/large/ours\ttext/large/bare\t-\twhich checks nothing\n"
           "lock/threads:2/ours\ttext/large/other\t1\t\n"
           "text/huge/ours\ttext/huge/peer\t1\t\n")
LINES = [
    "text/small 11.0 ns peer 20.0 ns 0.550 0.6 ahead one allocation",
    "text/large 9.0 ns peer 10.0 ns 0.900 0.5 missed ahead",
    "text/large 9.0 ns bare 3.0 ns 3.000 another job which checks nothing",
    "text/large 9.0 ns level 9.2 ns 0.978 level",
    "text/large 9.0 ns other 6.0 ns 1.500 behind",  # in no list of targets, and still compared
    "lock/threads:2 40.0 ns text/large/other 6.0 ns 6.667 1 missed behind",
    "The same job: 2 ahead, 1 level (within 3%), 2 behind. Aims: 1 of 3 met. Another job: 1.",
]


def main():
    with tempfile.TemporaryDirectory() as folder:
        runs = [{"name": name, "run_type": "iteration", "cpu_time": time, "real_time": 40, "time_unit": unit}
                for name, unit, times in RUNS for time in times]
        pathlib.Path(folder, "run.json").write_text(json.dumps({"benchmarks": runs}))
        pathlib.Path(folder, "targets.tsv").write_text(TARGETS)
        page = pathlib.Path(folder, "page.md")
        page.write_text("<!-- bench: text/s -->\nold\n<!-- /bench -->\n")
        ran = subprocess.run([sys.executable, TOOL, "--targets", folder, "--all", "--write", page, folder], text=True,
                             capture_output=True)
        written = page.read_text()
    printed = [" ".join(line.split()) for line in ran.stdout.splitlines()]
    wrong = [f"no line: {line}" for line in LINES if line not in printed]
    if ran.returncode != 1 or "text/huge/ours, which did not run" not in ran.stderr:
        wrong.append("a target whose benchmark did not run is not an error")
    if "| text/small | 11.0 ns | peer |" not in written or "old" in written:
        wrong.append("the page")
    print("\n".join(wrong + [ran.stdout, ran.stderr, written]) if wrong else "the table is as expected")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
