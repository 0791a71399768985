#!/usr/bin/env python3
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
        repetitions("text/large/ours", 9) + repetitions("text/large/peer", 10) + repetitions("text/large/other", 6) +
        repetitions("lock/threads:2/ours/real_time", 1, wall=40) +
        repetitions("lock/threads:2/peer/real_time", 80, wall=20) +
        [{"name": "text/small/ours_median", "run_type": "aggregate", "cpu_time": 1, "time_unit": "ns"}])
TARGETS = ("# ours, peer, target, note\n"
           "text/small/ours\ttext/small/peer\t0.6\tone allocation\n"
           "text/large/ours\ttext/large/peer\t0.5\t\n"
           "lock/threads:2/ours\tlock/threads:2/peer\t1.0\t\n"
           "text/huge/ours\ttext/huge/peer\t1\t\n")
LINES = [
    ["text/small", "11.0 ns", "peer", "20.0 ns", "0.550", "0.6", "met", "one allocation"],
    ["text/large", "9.0 ns", "peer", "10.0 ns", "0.900", "0.5", "OVER"],
    ["text/large", "9.0 ns", "other", "6.0 ns", "1.500", "slower"],  # no target, and still to be seen
    ["lock/threads:2", "40.0 ns", "peer", "20.0 ns", "2.000", "1", "OVER, slower"],
]


def main():
    with tempfile.TemporaryDirectory() as folder:
        pathlib.Path(folder, "run.json").write_text(json.dumps({"benchmarks": RUNS}))
        pathlib.Path(folder, "targets.tsv").write_text(TARGETS)
        run = subprocess.run([sys.executable, TOOL, "--targets", folder, folder], text=True, capture_output=True)
    shown = [[cell.strip() for cell in line.split("  ") if cell.strip()] for line in run.stdout.splitlines()]
    wrong = [f"no line {line}" for line in LINES if line not in shown]
    if "1 of 3 targets met" not in run.stdout:
        wrong.append("the count of targets met")
    if run.returncode != 1 or "text/huge/ours, which did not run" not in run.stderr:
        wrong.append("a target whose benchmark did not run is no error")
    print("\n".join(wrong + [run.stdout, run.stderr]) if wrong else "the table says what it should")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
