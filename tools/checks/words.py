# SPDX-License-Identifier: Apache-2.0
"""words: the tree speaks of the system alone.

Names of planning papers, of places outside the tree, of package servers, and notes left for later do not belong in it;
our own words are spelt the British way. The patterns are written in pieces, so that a plain search of the tree for
these words does not find this file.
"""
import re


def pieces(*parts):
    return "".join(parts)


FORBIDDEN = {
    pieces(r"[Ss]pecifi", r"cation"): "names a paper outside the tree",
    pieces(r"\b[Tt]he sp", r"ec\b"): "names a paper outside the tree",
    pieces(r"sp", r"ec\.md"): "names a paper outside the tree",
    pieces(r"imple", r"menter"): "names a paper outside the tree",
    pieces(r"\bPar", r"t [0-9]+\.[0-9]"): "names a paper outside the tree",
    pieces(r"\bsub", r"system [0-9]\b"): "names a paper outside the tree",
    pieces(r"platform-", r"facts|members", r"\.md|runtime", r"\.md"): "names a paper outside the tree",
    pieces(r"DEVELO", r"PERS\.md|COMP", r"ASS"): "names a paper outside the tree",
    pieces(r"\b[Ii]ss", r"ue #?[0-9]"): "names a planning number",
    pieces(r"(^|[^a-z.])/wo", r"rk/|/ro", r"ot/|\.\./sha", r"red"): "names a place outside the tree",
    pieces(r"shar", r"ed/[a-z-]+\.md"): "names a place outside the tree",
    pieces(r"deb\.deb", r"ian\.org|py", r"pi\.org|crat", r"es\.io"): "names a package server",
    pieces(r"\b(TO", r"DO|FIX", r"ME|X", r"XX)\b"): "a note left for later",
    pieces(r"\b(behav", r"ior|favor", r"ites?|neigh", r"bors?|hon", r"or)\b"): "not the British spelling",
}


def check(tree):
    patterns = [(re.compile(pattern), why) for pattern, why in FORBIDDEN.items()]
    problems = []
    for name in tree.files:
        lines = [(0, name)] + list(enumerate((tree.text(name) or "").splitlines(), 1))
        for number, line in lines:
            for pattern, why in patterns:
                found = pattern.search(line)
                if found:
                    problems.append(f"{name}:{number}: '{found.group(0).strip()}' {why}")
    return problems
