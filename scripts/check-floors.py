#!/usr/bin/env python3
"""Checks that every #include in the library points down the floors of docs/architecture.md.

A file belongs to its folder (base, port/contract, port/<platform>, src/<subsystem>,
tools); a public header include/smarthome/X.h belongs to the folder that implements X
(src/*/X.cpp), or, for a header without a source file, to the folder HEADER_ONLY names.
An include may name a file of its own folder or of a folder on a lower floor; anything
else is reported as "file:line: <folder> includes <target> of <folder> (floor ...)".
Includes that resolve to no file of the project (the standard library, RapidJSON, ...)
are not checked. Exits 1 when a rule is broken or a public header has no owner.

Usage: scripts/check-floors.py [PROJECT_DIR]
"""
import os
import re
import sys

# Lowest first. Folders on one floor may not include each other.
FLOORS = [
    ["base"],
    ["port/contract"],
    ["port/*"],
    ["src/logging"],
    ["src/utils"],
    ["src/masking"],
    ["src/messaging", "src/connector", "src/storage"],
    ["src/metrics"],
    ["src/rules", "src/V3API", "src/network", "src/platform"],
    ["tools"],
]

# Public headers that have no source file of their own.
HEADER_ONLY = {
    "CancellationFlag": "src/messaging",
    "DelayedMessage": "src/messaging",
    "DelayedTask": "src/messaging",
    "Message": "src/messaging",
    "Task": "src/messaging",
    "ConnectorConstants": "src/connector",
    "IAsyncReqConnector": "src/connector",
    "IPubSubConnector": "src/connector",
    "ISyncReqConnector": "src/connector",
    "IThreadSafeSQLiteDatabase": "src/storage",
    "SynchronizedHashMap": "src/storage",
    "VantorDimensionType": "src/metrics",
    "VantorPredefinedKey": "src/metrics",
    "JsonTextWriter": "src/V3API",
    "CommissioneeTypes": "src/network",
    "TCP_IP": "src/V3API",
    "ZIGBEE": "src/V3API",
    "BLE": "src/V3API",
}

INCLUDE = re.compile(r'^\s*#\s*include\s*[<"]([^">]+)[">]')
SOURCE_SUFFIXES = (".h", ".hpp", ".cpp", ".cc", ".inc")


def floor_of(folder):
    for level, names in enumerate(FLOORS):
        for name in names:
            if name == folder or (name.endswith("/*") and folder.startswith(name[:-1])
                                  and folder != "port/contract"):
                return level
    return None


def folder_of(root, path, owners):
    parts = os.path.relpath(path, root).split(os.sep)
    if parts[0] == "base" or parts[0] == "tools":
        return parts[0]
    if parts[0] in ("src", "port") and len(parts) > 2:
        return parts[0] + "/" + parts[1]
    if parts[0] == "include":
        return owners.get(os.path.splitext(parts[-1])[0])
    return None


def main():
    root = os.path.abspath(sys.argv[1] if len(sys.argv) > 1 else ".")
    owners = dict(HEADER_ONLY)
    for sub in sorted(os.listdir(os.path.join(root, "src"))):
        for name in os.listdir(os.path.join(root, "src", sub)):
            if name.endswith(".cpp"):
                owners[os.path.splitext(name)[0]] = "src/" + sub

    # Include roots, with the folder every file found under them belongs to.
    roots = [(os.path.join(root, "include"), None), (root, None), (os.path.join(root, "src"), None)]
    for port in sorted(os.listdir(os.path.join(root, "port"))):
        for sub in ("include", "public"):
            path = os.path.join(root, "port", port, sub)
            if os.path.isdir(path):
                roots.append((path, "port/" + port))

    def resolve(target):
        for base, folder in roots:
            path = os.path.join(base, target)
            if os.path.isfile(path):
                return folder if folder else folder_of(root, path, owners)
        return None

    problems = []
    for top in ("base", "port", "src", "include", "tools"):
        for directory, _, names in os.walk(os.path.join(root, top)):
            for name in sorted(names):
                if not name.endswith(SOURCE_SUFFIXES):
                    continue
                path = os.path.join(directory, name)
                rel = os.path.relpath(path, root)
                folder = folder_of(root, path, owners)
                if folder is None:
                    problems.append(f"{rel}: no folder owns this public header "
                                    "(add its source file, or name it in HEADER_ONLY)")
                    continue
                level = floor_of(folder)
                if level is None:
                    problems.append(f"{rel}: folder {folder} is on no floor")
                    continue
                with open(path, errors="replace") as lines:
                    for number, line in enumerate(lines, 1):
                        match = INCLUDE.match(line)
                        if not match:
                            continue
                        target = resolve(match.group(1))
                        if target is None or target == folder:
                            continue
                        target_level = floor_of(target)
                        if target_level is None or target_level >= level:
                            problems.append(
                                f"{rel}:{number}: {folder} (floor {level}) includes "
                                f"{match.group(1)} of {target} (floor {target_level})")
    for problem in problems:
        print(problem)
    print(f"check-floors: {len(problems)} problem(s)")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
