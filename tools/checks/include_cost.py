# SPDX-License-Identifier: Apache-2.0
"""include-cost: what a file pays for an include: processor time of a syntax check against that of <string> alone.

Prints the five heaviest of the umbrella header and the rooms' headers. Times vary from run to run by a third, which the
limits leave room for; a header that seems beyond its limit is measured again, beside <string>, before it counts.
"""
import os
import subprocess

from checks.layers import ROOMS
from checks.source_tree import LIBRARY

UMBRELLA = LIBRARY + "HavrinFoundation.h"
MOST_UMBRELLA = 6.5  # takes about 4.8
MOST = 4.2  # the heaviest of the rooms' headers take about 3.3


TIMES = 3


def seconds(root, include):
    """The processor time of g++ for a file that only includes this."""
    before = os.times()
    subprocess.run(["g++", "-std=c++20", "-fsyntax-only", "-I", root, "-x", "c++", "-"], check=True, text=True,
                   input=f"#include <{include}>\n")
    after = os.times()
    return after.children_user + after.children_system - before.children_user - before.children_system


def least(root, include):
    return min(seconds(root, include) for _ in range(TIMES))


def check(tree):
    headers = [UMBRELLA, *tree.under(*(f"{LIBRARY}{room}/" for room in ROOMS), suffixes=(".h",))]
    unit = least(tree.root, "string")
    measured = {header: seconds(tree.root, header) / unit for header in headers}
    for header, ratio in measured.items():
        if ratio > most(header):
            measured[header] = min(ratio, least(tree.root, header) / least(tree.root, "string"))
    ratios = sorted(((ratio, header) for header, ratio in measured.items()), reverse=True)
    for ratio, header in ratios[:5]:
        print(f"  {ratio:4.1f} of <string>  {header}")
    return [f"{header}: costs {ratio:.1f} times what <string> does; at most {most(header):g} is allowed"
            for ratio, header in ratios if ratio > most(header)]


def most(header):
    return MOST_UMBRELLA if header == UMBRELLA else MOST
