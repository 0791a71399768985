#!/usr/bin/env python3
"""Prints the ratio of every benchmark to its peer, from one run of ./bench, against the targets.

  tools/bench_table.py [--filter REGEX] build/bench/results

The results are google-benchmark's JSON files with every repetition in them; the targets stand in
benchmarks/**/targets.tsv, one row each: our benchmark, the peer's, the ratio that is aimed at, a note.
Exit status 1: a row of the targets names a benchmark that did not run.
"""
import argparse
import json
import pathlib
import re
import statistics
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
UNITS = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}
# What google-benchmark appends to a name to say how it was run.
RUN_SUFFIX = re.compile(r"/(?:real_time|manual_time|process_time|min_time:[^/]*|min_warmup_time:[^/]*|iterations:\d+"
                        r"|repeats:\d+)(?=/|$)")


def plain_name(name):
    return RUN_SUFFIX.sub("", name)


def read_results(folder):
    """The median time in nanoseconds of each benchmark, by its name without the suffixes of RUN_SUFFIX."""
    times = {}
    for path in sorted(folder.glob("*.json")):
        for run in json.loads(path.read_text())["benchmarks"]:
            if run["run_type"] != "iteration":
                continue
            if run.get("error_occurred"):
                sys.exit(f"{path.name}: {run['name']}: {run['error_message']}")
            # Processor time moves less on a shared machine; several threads are only seen on the wall clock.
            on_the_wall = re.search(r"/(real|manual)_time|/threads:", run["name"])
            time = run["real_time" if on_the_wall else "cpu_time"] * UNITS[run["time_unit"]]
            times.setdefault(plain_name(run["name"]), []).append(time)
    return {name: statistics.median(values) for name, values in times.items()}


def read_targets(folder):
    """The rows (ours, peer, target, note) of every list of targets."""
    rows = []
    for path in sorted(folder.rglob("targets.tsv")):
        for number, line in enumerate(path.read_text().splitlines(), 1):
            if not line.strip() or line.startswith("#"):
                continue
            cells = line.split("\t")
            try:
                ours, peer, target = cells[0], cells[1], float(cells[2])
            except (IndexError, ValueError):
                sys.exit(f"{path.relative_to(ROOT)}:{number}: not 'ours<tab>peer<tab>ratio<tab>note': {line}")
            rows.append((plain_name(ours), plain_name(peer), target, cells[3] if len(cells) > 3 else ""))
    return rows


def rows_without_target(times, targets):
    """A row for each peer of a benchmark of ours that no list of targets names."""
    known = {(ours, peer) for ours, peer, _, _ in targets}
    rows = []
    for ours in times:
        if re.search(r"/ours(?=/|$)", ours):
            pattern = re.compile(re.sub(r"/ours(?=/|$)", "/[^/]+", re.escape(ours)) + "$")
            rows += [(ours, peer, None, "") for peer in times
                     if peer != ours and pattern.match(peer) and (ours, peer) not in known]
    return rows


def shown_time(nanoseconds):
    for unit, size in (("s", 1e9), ("ms", 1e6), ("us", 1e3)):
        if nanoseconds >= 10 * size:
            return f"{nanoseconds / size:.1f} {unit}"
    return f"{nanoseconds:.1f} ns"


def verdict(ratio, target):
    if target is None:
        return "" if ratio <= 1 else "slower"
    if ratio <= target:
        return "met"
    return "OVER" if ratio <= 1 else "OVER, slower"


def table(times, targets):
    """The lines of the table, how many targets were met, and the names that did not run."""
    lines, met, compared, absent = [], 0, 0, []
    for ours, peer, target, note in sorted(targets + rows_without_target(times, targets), key=lambda row: row[:2]):
        missing = [name for name in (ours, peer) if name not in times]
        if missing:
            absent += missing
            continue
        ratio = times[ours] / times[peer]
        word = verdict(ratio, target)
        met += word == "met"
        compared += target is not None
        shown_peer = peer if peer.rsplit("/", 1)[0] != ours.rsplit("/", 1)[0] else peer.rsplit("/", 1)[1]
        aim = "" if target is None else f"{target:g}"
        lines.append((re.sub(r"/ours$", "", ours), shown_time(times[ours]), shown_peer, shown_time(times[peer]),
                      f"{ratio:.3f}", aim, word, note))
    return lines, met, compared, absent


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--filter", default=".", help="only rows whose benchmark of ours matches")
    parser.add_argument("--targets", type=pathlib.Path, default=ROOT / "benchmarks")
    parser.add_argument("results", type=pathlib.Path)
    arguments = parser.parse_args()

    wanted = re.compile(arguments.filter)
    times = read_results(arguments.results)
    targets = [row for row in read_targets(arguments.targets) if wanted.search(row[0]) and wanted.search(row[1])]
    lines, met, compared, absent = table(times, targets)
    if not lines and not absent:
        print("No benchmark ran.")
        return 0

    heads = ("benchmark", "ours", "peer", "its time", "ratio", "target", "verdict", "note")
    widths = [max(len(line[column]) for line in [heads, *lines]) for column in range(len(heads))]
    right = {1, 3, 4, 5}
    for line in [heads, *lines]:
        cells = (cell.rjust(width) if column in right else cell.ljust(width)
                 for column, (cell, width) in enumerate(zip(line, widths)))
        print("  ".join(cells).rstrip())
    print(f"\n{met} of {compared} targets met. Ratio: our time divided by the peer's, medians of one run; lower is better.")
    for name in sorted(set(absent)):
        print(f"bench: a list of targets names {name}, which did not run", file=sys.stderr)
    return 1 if absent else 0


if __name__ == "__main__":
    sys.exit(main())
