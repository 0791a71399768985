# SPDX-License-Identifier: Apache-2.0
"""The checks behind tools/check: each module has check(source_tree), which answers a list of problems."""
