#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Compares what a shared library exports with the list kept in the tree.

symbols.py LIBRARY LIST           fails and shows the difference
symbols.py LIBRARY LIST --update  writes the list
"""
import pathlib
import subprocess
import sys


def exported(library):
    output = subprocess.run(["nm", "-D", "-C", "--defined-only", library], check=True,
                            capture_output=True, text=True).stdout
    return sorted({line.split(" ", 2)[2] for line in output.splitlines()})


def main():
    library, path = sys.argv[1], pathlib.Path(sys.argv[2])
    symbols = exported(library)
    if "--update" in sys.argv:
        path.write_text("\n".join(symbols) + "\n", encoding="utf-8")
        return 0
    listed = path.read_text(encoding="utf-8").splitlines()
    for name in sorted(set(symbols) - set(listed)):
        print(f"exported, not listed: {name}")
    for name in sorted(set(listed) - set(symbols)):
        print(f"listed, not exported: {name}")
    print(f"{library}: {len(symbols)} symbols, {path}: {len(listed)}")
    return 0 if symbols == listed and symbols else 1


sys.exit(main())
