#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Draws cost against size, from one run of ./bench growth/.

  tools/growth_plots.py build/bench/results docs/growth       one SVG a topic: docs/growth/select.svg, ...

A benchmark takes part under the name growth/TOPIC/SIZE/SIDE or growth/TOPIC/SIDE/size:SIZE. What is drawn is the cost of
one element, so a cost that is linear in the size is a level line; both axes are logarithmic. Prints, for each side, the
factor by which that cost grows from the smallest size of at least 100 to the largest.
"""
import argparse
import math
import pathlib
import re
import sys

from bench_table import read_results

NAME = re.compile(r"growth/(?P<topic>\w+)/(?:(?P<size>\d+)/(?P<side>\w+)|(?P<side2>\w+)/size:(?P<size2>\d+))$")
# The text of the axis, the title, and whether a benchmark of size n handles n elements or one among n.
TOPICS = {
    "select": ("elements of the array", "select: half of the elements, time per element", True),
    "hex": ("bytes", "hexadecimal text, time per byte", True),
    "archive": ("instances in the archive", "reading a keyed archive, time per instance", True),
    "decoding": ("stations in the document", "lenient decoding of JSON, time per station", True),
    "change": ("observers", "one change reported to all observers, time per observer", True),
    "debounce": ("keys in turn", "debounce, time per call", False),
}
WIDTH, HEIGHT = 640, 400
LEFT, RIGHT, TOP, BOTTOM = 70, 150, 36, 50
COLOURS = ["#0b62c4", "#d1495b", "#2e8b57", "#8a5a00"]  # ours first


def read_curves(times):
    """{topic: {side: [(size, nanoseconds an element)]}}, ours first, sizes in order."""
    curves = {}
    for name, time in times.items():
        if found := NAME.match(name):
            side, size = found["side"] or found["side2"], int(found["size"] or found["size2"])
            topic = found["topic"]
            if topic not in TOPICS:
                sys.exit(f"growth_plots: TOPICS has no {topic}")
            each = time / size if TOPICS[topic][2] else time
            curves.setdefault(topic, {}).setdefault(side, []).append((size, each))
    return {topic: {side: sorted(sides[side]) for side in sorted(sides, key=lambda side: (side != "ours", side))}
            for topic, sides in curves.items()}


def element(tag, text="", **attributes):
    written = "".join(f' {name.replace("_", "-")}="{value}"' for name, value in attributes.items())
    return f"<{tag}{written}>{text}</{tag}>" if text else f"<{tag}{written}/>"


def shown_size(size):
    return f"{size // 10**6} M" if size >= 10**6 else f"{size // 1000} k" if size >= 1000 else str(size)


def svg(topic, sides):
    across, title, _ = TOPICS[topic]
    points = [point for curve in sides.values() for point in curve]
    sizes = [math.log10(size) for size, _ in points]
    costs = [math.log10(time) for _, time in points]
    low, high = math.floor(min(costs)), math.ceil(max(costs))

    def x(size):
        return LEFT + (math.log10(size) - min(sizes)) / (max(sizes) - min(sizes)) * (WIDTH - LEFT - RIGHT)

    def y(time):
        return HEIGHT - BOTTOM - (math.log10(time) - low) / (high - low) * (HEIGHT - TOP - BOTTOM)

    lines = [element("rect", width=WIDTH, height=HEIGHT, fill="white"),
             element("text", title, x=LEFT, y=22, font_size=15)]
    for power in range(low, high + 1):
        at = f"{y(10.0**power):.1f}"
        lines += [element("line", x1=LEFT, x2=WIDTH - RIGHT, y1=at, y2=at, stroke="#ddd"),
                  element("text", f"{10.0**power:g} ns", x=LEFT - 6, y=at, text_anchor="end",
                          dominant_baseline="middle")]
    for size in sorted({size for size, _ in points}):
        at = f"{x(size):.1f}"
        lines += [element("line", x1=at, x2=at, y1=TOP, y2=HEIGHT - BOTTOM, stroke="#eee"),
                  element("text", shown_size(size), x=at, y=HEIGHT - BOTTOM + 18, text_anchor="middle")]
    lines.append(element("text", across, x=(LEFT + WIDTH - RIGHT) / 2, y=HEIGHT - 12, text_anchor="middle"))
    ends = []
    for colour, (side, curve) in zip(COLOURS, sides.items()):
        path = " ".join(f"{x(size):.1f},{y(time):.1f}" for size, time in curve)
        lines.append(element("polyline", points=path, fill="none", stroke=colour, stroke_width=2))
        lines += [element("circle", cx=f"{x(size):.1f}", cy=f"{y(time):.1f}", r=3, fill=colour) for size, time in curve]
        ends.append([y(curve[-1][1]), colour, side])
    ends.sort()
    for i in range(1, len(ends)):  # labels that would overlap move down
        ends[i][0] = max(ends[i][0], ends[i - 1][0] + 15)
    lines += [element("text", side, x=WIDTH - RIGHT + 8, y=f"{at:.1f}", fill=colour, dominant_baseline="middle")
              for at, colour, side in ends]
    return (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {HEIGHT}" width="{WIDTH}" height="{HEIGHT}"'
            ' font-family="sans-serif" font-size="12">\n' + "\n".join(lines) + "\n</svg>\n")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("results", type=pathlib.Path)
    parser.add_argument("folder", type=pathlib.Path)
    arguments = parser.parse_args()
    curves = read_curves(read_results(arguments.results))
    if absent := TOPICS.keys() - curves.keys():
        sys.exit(f"growth_plots: no benchmark ran for {', '.join(sorted(absent))}")
    arguments.folder.mkdir(parents=True, exist_ok=True)
    for topic, sides in curves.items():
        (arguments.folder / f"{topic}.svg").write_text(svg(topic, sides))
        for side, curve in sides.items():
            small, first = next(point for point in curve if point[0] >= 100)
            large, last = curve[-1]
            print(f"{topic:10} {side:18} {first:8.1f} ns at {small}, {last / first:.2f} of it at {large}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
