#!/usr/bin/env python3
"""Fails on an include that points up: each folder may see only what this table names."""

import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]

FLOORS = ["status", "wire", "position"]
DEVICES = ["variables", "io", "controller", "files", "motion", "kinematics"]
ALLOWED = {
    "status": ["status"],
    "wire": ["wire", "status"],
    "position": FLOORS,
    **{device: [device, *FLOORS] for device in DEVICES},
    "connection": ["connection", *DEVICES, *FLOORS],
    "binding": ["binding"],
}
SINGLE_DOORS = {("io", "variables/VariableFunctions.h")}
WIRE_FORMATS = re.compile(
    r"wire/(Packets|CommandNumber|WireInteger|GroupAddress|\w+Message)\.h$"
    r"|position/\w+\.h$"
    r"|(variables|io|controller|files|motion|kinematics)/\w+Messages\.h$"
)
PUBLIC_ONLY = ["cli", "examples", "soak"]
INCLUDE = re.compile(r'^\s*#\s*include\s*(["<])([^">]+)[">]', re.MULTILINE)


def reached_by(path, target):
    """The file of ours that an include reaches, as a path below the root; None for a header of somebody else."""
    for folder in (path.parent, ROOT / "include", ROOT / "src", ROOT):
        file = (folder / target).resolve()
        if file.is_file() and file.is_relative_to(ROOT):
            return file.relative_to(ROOT)
    return None


def includes(folder):
    """Each include of a header of ours: file, target as it is written, and the file that it reaches."""
    for path in sorted((ROOT / folder).rglob("*")):
        if path.suffix in (".h", ".cpp", ".c"):
            for match in INCLUDE.finditer(path.read_text(encoding="utf-8")):
                quote, target = match.groups()
                reached = reached_by(path, target)
                if reached is not None:
                    yield path, target, reached.parts
                elif quote == '"' and folder in ("include", "src"):
                    yield path, target, ("nowhere",)


def faults():
    for path, target, reached in includes("include"):
        if reached[0] != "include":
            yield path, target, "a public header includes public headers only"
    for path, target, reached in includes("src"):
        folder = path.relative_to(ROOT / "src").parts[0]
        allowed = ALLOWED.get(folder, [])
        below = reached[0] == "src" and (reached[1] in allowed or (folder, "/".join(reached[1:])) in SINGLE_DOORS)
        if reached[0] != "include" and not below:
            yield path, target, f"{folder}/ may include include/ and {', '.join(allowed)}"
    for path, target, reached in includes("simulator"):
        if reached[0] == "src" and not WIRE_FORMATS.match("/".join(reached[1:])):
            yield path, target, "the virtual controller shares wire formats with the library, nothing else"
    for folder in PUBLIC_ONLY:
        for path, target, reached in includes(folder):
            if reached[0] in ("src", "simulator"):
                yield path, target, f"{folder}/ sees include/ only"


def unknown_folders():
    return sorted(p.name for p in (ROOT / "src").iterdir() if p.is_dir() and p.name not in ALLOWED)


def main():
    found = [f'{path.relative_to(ROOT)}: "{target}": {reason}' for path, target, reason in faults()]
    found += [f"src/{name}/: no layer is known for this folder" for name in unknown_folders()]
    print("\n".join(found), end="\n" if found else "", file=sys.stderr)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
