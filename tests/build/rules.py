#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Fails when a message cites a rule that the rules for provider authors do not have, or when their
numbers have gaps."""
import pathlib
import re
import sys

CITED = re.compile(r'see rule "?\s*"?([RT]\d+)|"([RT]\d+)"')
WRITTEN = re.compile(r"^\*\*([RT]\d+)\.\*\*", re.MULTILINE)


def find_cited(root):
    """Rule: the first file that cites it."""
    cited = {}
    for folder in ("platform", "host"):
        for path in sorted((root / folder).rglob("*")):
            if path.suffix not in (".h", ".cpp"):
                continue
            for match in CITED.finditer(path.read_text(encoding="utf-8")):
                cited.setdefault(match[1] or match[2], path.relative_to(root).as_posix())
    return cited


def main():
    root = pathlib.Path(sys.argv[1])
    written = WRITTEN.findall((root / "docs/provider-rules.md").read_text(encoding="utf-8"))
    cited = find_cited(root)
    faults = [f"{path} cites {rule}, which is not written down"
              for rule, path in cited.items() if rule not in written]
    for kind in "RT":
        count = sum(rule[0] == kind for rule in written)
        faults += [f"{kind}{number} is missing or there twice" for number in range(1, count + 1)
                   if written.count(f"{kind}{number}") != 1]
    print("\n".join(faults) if faults else f"{len(cited)} of {len(written)} rules are cited")
    return 1 if faults or not cited else 0


sys.exit(main())
