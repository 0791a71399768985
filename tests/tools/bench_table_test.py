#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Gives tools/bench_table.py one made-up run and reads the table: medians, units, verdicts, names that did not run."""
import json
import pathlib
import subprocess
import sys
import tempfile

TOOL = pathlib.Path(__file__).resolve().parents[2] / "tools" / "bench_table.py"


def repetitions(name, *times, unit="ns", wall=1e9):
    """Runs of one benchmark by processor time; the wall clock tells something else."""
    return [{"name": name, "run_type": "iteration", "cpu_time": time, "real_time": wall, "time_unit": unit}
            for time in times]


RUNS = (repetitions("text/small/ours", 50, 10, 11) + repetitions("text/small/peer", 0.02, 0.02, 0.09, unit="us") +
        repetitions("text/large/ours", 9) + repetitions("text/large/peer", 10) + repetitions("text/large/bare", 3) +
        repetitions("text/large/level", 9.2) + repetitions("text/large/other", 6) +
        repetitions("lock/threads:2/ours/real_time", 1, wall=40) +
        repetitions("lock/threads:2/peer/real_time", 80, wall=20) +
        [{"name": "text/small/ours_median", "run_type": "aggregate", "cpu_time": 1, "time_unit": "ns"}])
TARGETS = ("# ours, peer, aim, note\n"
           "text/small/ours\ttext/small/peer\t0.6\tone allocation\n"
           "text/large/ours\ttext/large/peer\t0.5\t\n"
           "text/large/ours\ttext/large/bare\t-\twhich checks nothing\n"
           "lock/threads:2/ours\tlock/threads:2/peer\t1.0\t\n"
           "text/huge/ours\ttext/huge/peer\t1\t\n")
LINES = [
    ["text/small", "11.0 ns", "peer", "20.0 ns", "0.550", "0.6", "ahead", "one allocation"],
    ["text/large", "9.0 ns", "peer", "10.0 ns", "0.900", "0.5 missed", "ahead"],
    ["text/large", "9.0 ns", "bare", "3.0 ns", "3.000", "another job", "which checks nothing"],
    ["text/large", "9.0 ns", "level", "9.2 ns", "0.978", "level"],
]
BEHIND = [
    ["text/large", "9.0 ns", "other", "6.0 ns", "1.500", "behind"],  # in no list, and still compared
    ["lock/threads:2", "40.0 ns", "peer", "20.0 ns", "2.000", "1 missed", "behind"],
]
SUMMARY = "The same job: 2 ahead, 1 level (within 3%), 2 behind. Aims: 1 of 3 met. Another job: 1."


def cells(text):
    return [[cell.strip() for cell in line.split("  ") if cell.strip()] for line in text.splitlines()]


def main():
    with tempfile.TemporaryDirectory() as folder:
        pathlib.Path(folder, "run.json").write_text(json.dumps({"benchmarks": RUNS}))
        pathlib.Path(folder, "targets.tsv").write_text(TARGETS)
        page = pathlib.Path(folder, "page.md")
        page.write_text("# Speed\n<!-- bench: text/s -->\nold\n<!-- /bench -->\nend\n"
                        "<!-- bench: dates -->\nkept\n<!-- /bench -->\n")
        def run(*arguments):
            return subprocess.run([sys.executable, TOOL, "--targets", folder, *arguments, folder], text=True,
                                  capture_output=True)
        short, whole = run(), run("--all", "--write", page)
        written = page.read_text()
    wrong = [f"no line {line}" for line in LINES + BEHIND if line not in cells(whole.stdout)]
    wrong += [f"no short line {line}" for line in BEHIND if line not in cells(short.stdout)]
    wrong += [f"{line} is in the short list" for line in LINES if line in cells(short.stdout)]
    if SUMMARY not in short.stdout:
        wrong.append("the summary")
    if short.returncode != 1 or "text/huge/ours, which did not run" not in short.stderr:
        wrong.append("a target whose benchmark did not run is no error")
    if "| text/small | 11.0 ns | peer |" not in written or "old" in written or "kept" not in written:
        wrong.append("the page")
    print("\n".join(wrong + [short.stdout, short.stderr, whole.stdout, written]) if wrong
          else "the table says what it should")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
