#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Fails when a source that the MOF reader includes is not among those that its build is named after:
a cache of the build before would be taken then. ROOT, and the sources that are."""
import pathlib
import re
import sys

INCLUDE = re.compile(r'^\s*#\s*include\s*"([^"]+)"', re.MULTILINE)


def collect(root, start):
    """The files, those that they include, and the sources of these."""
    found, pending = set(), list(start)
    while pending:
        file = pending.pop()
        if file in found or not file.exists():
            continue
        found.add(file)
        pending += [root / name for name in INCLUDE.findall(file.read_text(encoding="utf-8"))]
        pending.append(file.with_suffix(".cpp"))
    return found


def main():
    root = pathlib.Path(sys.argv[1]).resolve()
    named = {pathlib.Path(name).resolve() for name in sys.argv[2:]}
    needed = collect(root, sorted((root / "platform/schema").glob("*.cpp")))
    faults = sorted(file.relative_to(root).as_posix() for file in needed - named)
    print("\n".join(f"{file} has no part in the build number" for file in faults)
          or f"{len(needed)} sources have a part in the build number")
    return 1 if faults or not needed else 0


sys.exit(main())
