# SPDX-License-Identifier: Apache-2.0
"""headers: every public header compiles alone (CMake's own targets over the header sets)."""
from checks import build


def check(tree):
    return build.ninja(tree, "all_verify_interface_header_sets")
