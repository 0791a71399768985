#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Compares every benchmark with its peers, from one run of ./bench.

  tools/bench_table.py build/bench/results                       how many peers we are ahead of, and those we are not
  tools/bench_table.py --all build/bench/results                 every row
  tools/bench_table.py --write docs/performance.md build/...     puts the rows into the page's tables

The results are google-benchmark's JSON files with every repetition in them. benchmarks/**/targets.tsv has one row per
pair: our benchmark, the peer's, the ratio aimed at, a note. "-" in place of the ratio says that the peer does another
job; the note then says what differs, and the row is information. A pair that is in no list does the same job, without
an aim; benchmarks under growth/ have no rows, tools/growth_plots.py draws them. A table of a page is what is between
"<!-- bench: REGEX -->" and "<!-- /bench -->".
Exit status 1: a row of the targets names a benchmark that did not run.
"""
import argparse
import json
import pathlib
import re
import statistics
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
LEVEL = 0.03  # a ratio this near to 1 is noise
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
    """The rows (ours, peer, aim, whether the peer does the same job, note) of every list of targets."""
    rows = []
    for path in sorted(folder.rglob("targets.tsv")):
        for number, line in enumerate(path.read_text().splitlines(), 1):
            if not line.strip() or line.startswith("#"):
                continue
            cells = line.split("\t")
            note = cells[3] if len(cells) > 3 else ""
            try:
                ours, peer, same_job = cells[0], cells[1], cells[2] != "-"
                aim = float(cells[2]) if same_job else None
            except (IndexError, ValueError):
                sys.exit(f"{path}:{number}: not 'ours<tab>peer<tab>ratio or -<tab>note': {line}")
            if not same_job and not note:
                sys.exit(f"{path}:{number}: a peer with another job needs a note that says what differs")
            rows.append((plain_name(ours), plain_name(peer), aim, same_job, note))
    return rows


def unlisted_rows(times, targets):
    """A row for each peer of a benchmark of ours that no list of targets names."""
    known = {row[:2] for row in targets}
    rows = []
    for ours in times:
        if re.search(r"/ours(?=/|$)", ours) and not ours.startswith("growth/"):
            pattern = re.compile(re.sub(r"/ours(?=/|$)", "/[^/]+", re.escape(ours)) + "$")
            rows += [(ours, peer, None, True, "") for peer in times
                     if peer != ours and pattern.match(peer) and (ours, peer) not in known]
    return rows


def shown_time(nanoseconds):
    for unit, size in (("s", 1e9), ("ms", 1e6), ("us", 1e3)):
        if nanoseconds >= 10 * size:
            return f"{nanoseconds / size:.1f} {unit}"
    return f"{nanoseconds:.1f} ns"


def verdict(ratio, same_job):
    if not same_job:
        return "another job"
    if abs(ratio - 1) <= LEVEL:
        return "level"
    return "ahead" if ratio < 1 else "behind"


class Row:
    def __init__(self, times, ours, peer, aim, same_job, note):
        self.name = re.sub(r"/ours$", "", ours)
        self.ratio = times[ours] / times[peer]
        self.verdict = verdict(self.ratio, same_job)
        self.aim = aim
        shown_peer = peer if peer.rsplit("/", 1)[0] != ours.rsplit("/", 1)[0] else peer.rsplit("/", 1)[1]
        missed = aim is not None and self.ratio > aim
        self.cells = (self.name, shown_time(times[ours]), shown_peer, shown_time(times[peer]), f"{self.ratio:.3f}",
                      "" if aim is None else f"{aim:g}{' missed' if missed else ''}", self.verdict, note)


HEADS = ("benchmark", "ours", "peer", "its time", "ratio", "aim", "verdict", "note")
RIGHT = {1, 3, 4}


def rows_of(times, targets):
    """The rows, and the names that did not run."""
    rows, absent = [], set()
    for row in sorted(targets + unlisted_rows(times, targets), key=lambda row: row[:2]):
        missing = {name for name in row[:2] if name not in times}
        absent |= missing
        if not missing:
            rows.append(Row(times, *row))
    return rows, sorted(absent)


def print_table(rows):
    lines = [HEADS] + [row.cells for row in rows]
    widths = [max(len(line[column]) for line in lines) for column in range(len(HEADS))]
    for line in lines:
        cells = (cell.rjust(width) if column in RIGHT else cell.ljust(width)
                 for column, (cell, width) in enumerate(zip(line, widths)))
        print("  ".join(cells).rstrip())


def summary(rows):
    count = {word: sum(row.verdict == word for row in rows) for word in ("ahead", "level", "behind", "another job")}
    aims = [row for row in rows if row.aim is not None]
    met = sum(row.ratio <= row.aim for row in aims)
    return (f"The same job: {count['ahead']} ahead, {count['level']} level (within {LEVEL:.0%}), {count['behind']} behind. "
            f"Aims: {met} of {len(aims)} met. Another job: {count['another job']}.")


def markdown(rows):
    lines = [HEADS, ["---:" if column in RIGHT else "---" for column in range(len(HEADS))]] + [row.cells for row in rows]
    return "".join("| " + " | ".join(line) + " |\n" for line in lines)


def write(page, rows):
    """Replaces the tables of a page; a table whose benchmarks did not run stays as it is."""
    def table(found):
        chosen = [row for row in rows if re.match(found[2], row.name)]
        return found[1] + "\n" + markdown(chosen) + found[4] if chosen else found[0]
    text = page.read_text()
    page.write_text(re.sub(r"(<!-- bench: (.*?) -->)\n(.*?)(<!-- /bench -->)", table, text, flags=re.DOTALL))


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--all", action="store_true", help="every row, not only those that are behind")
    parser.add_argument("--filter", default=".", help="only rows whose benchmark of ours matches")
    parser.add_argument("--targets", type=pathlib.Path, default=ROOT / "benchmarks")
    parser.add_argument("--write", type=pathlib.Path, metavar="PAGE", help="put the rows into the tables of this page")
    parser.add_argument("results", type=pathlib.Path)
    arguments = parser.parse_args()

    wanted = re.compile(arguments.filter)
    times = read_results(arguments.results)
    targets = [row for row in read_targets(arguments.targets) if wanted.search(row[0]) and wanted.search(row[1])]
    rows, absent = rows_of(times, targets)
    if not rows and not absent:
        print("No benchmark ran.")
        return 0
    if arguments.write:
        write(arguments.write, rows)

    print(summary(rows))
    shown = rows if arguments.all else [row for row in rows if row.verdict == "behind"]
    if shown:
        print()
        print_table(shown)
    print("\nRatio: our time divided by the peer's, medians of one run; lower is better." +
          ("" if arguments.all else f" Every row: tools/bench_table.py --all {arguments.results}"))
    for name in absent:
        print(f"bench: a list of targets names {name}, which did not run", file=sys.stderr)
    return 1 if absent else 0


if __name__ == "__main__":
    sys.exit(main())
