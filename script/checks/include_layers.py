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
PUBLIC_ONLY = ["cli", "examples"]
INCLUDE = re.compile(r'^\s*#\s*include\s*"([^"]+)"', re.MULTILINE)


def includes(folder):
    for path in sorted(folder.rglob("*")):
        if path.suffix in (".h", ".cpp", ".c"):
            for match in INCLUDE.finditer(path.read_text(encoding="utf-8")):
                yield path, match.group(1)


def target_folder(path, target):
    """The folder of src/ that an include reaches, or None if it stays in include/ or beside the including file."""
    if target.startswith("harvlink/") or (path.parent / target).exists():
        return None
    return target.split("/")[0] if (ROOT / "src" / target).exists() else None


def faults():
    for path, target in includes(ROOT / "include"):
        if not (ROOT / "include" / target).exists():
            yield path, target, "a public header includes public headers only"
    for folder, allowed in ALLOWED.items():
        for path, target in includes(ROOT / "src" / folder):
            reached = target_folder(path, target) or (path.parent / target).resolve().parent.name
            if target.startswith("harvlink/") or reached in allowed or (folder, target) in SINGLE_DOORS:
                continue
            yield path, target, f"{folder}/ may include include/ and {', '.join(allowed)}"
    for path, target in includes(ROOT / "simulator"):
        if target_folder(path, target) and not WIRE_FORMATS.match(target):
            yield path, target, "the virtual controller shares wire formats with the library, nothing else"
    for folder in PUBLIC_ONLY:
        for path, target in includes(ROOT / folder):
            if target_folder(path, target):
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
