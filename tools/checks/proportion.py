# SPDX-License-Identifier: Apache-2.0
"""proportion: the tests are at most a limited share of the lines of tests and library together.

Counts the lines that are neither blank nor only a comment, in the sources and build lists under tests/ and
HavrinFoundation/: .h, .cpp, .py, .cmake and CMakeLists.txt. Prints the count.
"""
import re

COUNTED = re.compile(r"(tests|HavrinFoundation)/(?:.*/)?(?:CMakeLists\.txt|[^/]+\.(?:h|cpp|py|cmake))$")
COMMENT = re.compile(r"\s*(?://|$)")
SCRIPT_COMMENT = re.compile(r"\s*(?:#|$)")
LIMIT = 0.33


def check(tree):
    lines = {"tests": 0, "HavrinFoundation": 0}
    for name in tree.files:
        counted = COUNTED.match(name)
        if counted:
            blank = COMMENT if name.endswith((".h", ".cpp")) else SCRIPT_COMMENT
            lines[counted[1]] += sum(not blank.match(line) for line in (tree.text(name) or "").split("\n"))
    share = lines["tests"] / max(1, sum(lines.values()))
    print(f"proportion: {lines['tests']} lines of tests beside {lines['HavrinFoundation']} of the library, {share:.1%}; "
          f"the limit is {LIMIT:.0%}")
    if share <= LIMIT:
        return []
    return [f"tests: expected at most {LIMIT:.0%} of the lines of tests and library, got {share:.1%}; make rows of repeated "
            "cases, and drop those that another test covers"]
