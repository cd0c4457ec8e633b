#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Fails when an include crosses a wall between the rooms of this tree."""
import pathlib
import re
import sys

CONTRACT = "platform/contract/"
# Room: what it may include from this tree, as prefixes of the included path. The longest room
# that a file lies in counts.
WALLS = {
    "runner/": ["runner/", "parsers/", CONTRACT],
    "parsers/": ["parsers/", CONTRACT],
    CONTRACT: [CONTRACT],
    "platform/model/": ["platform/model/", CONTRACT],
    "platform/schema/": ["platform/schema/", CONTRACT],
    "platform/cmpi/": ["platform/cmpi/", "platform/model/", "platform/schema/", CONTRACT],
    "platform/cmpi/abi/": ["platform/cmpi/abi/"],
    "platform/cimxml/": ["platform/cimxml/", "platform/model/", "platform/schema/", CONTRACT],
    "platform/services/": ["platform/services/", CONTRACT],
    "platform/setup/": ["platform/"],
    "host/": ["host/", "runner/DiagsRunner.h", "platform/setup/", CONTRACT,
              "platform/services/TCoreLogger.h", "platform/cimxml/TServerOptions.h"],
    "providers/hardware/": ["providers/hardware/", "platform/cmpi/abi/"],
}
# Foreign headers that only the named rooms may see.
FOREIGN = {
    "expat.h": ["platform/services/", "platform/cimxml/"],
    "curl/": ["platform/cimxml/"],
    "spdlog/": ["platform/services/"],
    "fmt/": ["platform/services/"],
    "CLI/": ["host/"],
    "nlohmann/": ["host/", "providers/hardware/"],
    "boost/": ["runner/", "parsers/", "platform/", "host/"],
}
INCLUDE = re.compile(r'^\s*#\s*include\s*(["<])([^">]+)[">]')


def room_of(path):
    rooms = [room for room in WALLS if path.startswith(room)]
    return max(rooms, key=len) if rooms else None


def breach(path, quote, included):
    """The reason why `path` must not include `included`, or None."""
    room = room_of(path)
    if room is None:
        return None
    for prefix, allowed in FOREIGN.items():
        if included.startswith(prefix) and not any(path.startswith(a) for a in allowed):
            return f"{included} belongs to {', '.join(allowed)}"
    if quote == '"' and not any(included.startswith(prefix) for prefix in WALLS[room]):
        return f"{room} may not include {included}"
    return None


def scan(root):
    found, files = [], 0
    for path in sorted(root.rglob("*")):
        name = path.relative_to(root).as_posix()
        if path.suffix not in (".h", ".c", ".cpp") or room_of(name) is None:
            continue
        files += 1
        for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
            match = INCLUDE.match(line)
            reason = match and breach(name, match[1], match[2])
            if reason:
                found.append(f"{name}:{number}: {reason}")
    return found, files


def self_test():
    """The check itself must bite: planted breaches are found, allowed includes are not."""
    bad = [("runner/A.cpp", '"', "platform/model/TModelClass.h"),
           ("platform/contract/A.h", '"', "platform/services/TCoreLogger.h"),
           ("platform/cmpi/abi/cmpi.h", '"', "platform/contract/Export.h"),
           ("host/A.cpp", '"', "runner/Handles.h"),
           ("providers/hardware/A.cpp", '"', "platform/contract/TCIMValue.h"),
           ("providers/hardware/A.cpp", "<", "boost/shared_ptr.hpp"),
           ("parsers/A.cpp", "<", "expat.h"),
           ("platform/cimxml/A.cpp", '"', "platform/cmpi/TBroker.h"),
           ("host/A.cpp", "<", "curl/curl.h")]
    good = [("runner/A.cpp", '"', "parsers/ResultParser.h"),
            ("platform/cmpi/A.cpp", '"', "platform/cmpi/abi/cmpi.h"),
            ("host/A.cpp", '"', "runner/DiagsRunner.h"),
            ("platform/services/A.cpp", "<", "expat.h"),
            ("tests/A.cpp", '"', "runner/Handles.h")]
    return [f"self-test: {case} went unnoticed" for case in bad if not breach(*case)] + \
           [f"self-test: {case} was refused" for case in good if breach(*case)]


def main():
    found, files = scan(pathlib.Path(sys.argv[1]))
    found += self_test()
    print("\n".join(found) if found else f"{files} files keep to their rooms")
    return 1 if found or files == 0 else 0


sys.exit(main())
