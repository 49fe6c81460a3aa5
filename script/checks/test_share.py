#!/usr/bin/env python3
"""Prints how many lines of tests there are for each line of code, and fails above a third.

What is tested twice goes once, and repeated bodies become tables: a test costs as much to read as the code does."""
import subprocess
import sys
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[2]
TESTS = ("tests/", "fuzz/", "python/tests/", "csharp/tests/", "page/tests/")
KINDS = {".h", ".hpp", ".c", ".cpp", ".py", ".cs", ".ts", ".mjs", ".lua", ".cmake"}
LIMIT = 0.33


def is_code(path):
    if path.suffix in KINDS or path.name == "CMakeLists.txt":
        return path.is_file()
    return not path.suffix and path.is_file() and path.open("rb").read(2) == b"#!"


def main():
    files = subprocess.run(["git", "ls-files", "-z"], cwd=PROJECT, capture_output=True, text=True, check=True).stdout
    lines = {True: 0, False: 0}
    for name in filter(None, files.split("\0")):
        path = PROJECT / name
        if is_code(path):
            lines[name.startswith(TESTS)] += path.read_bytes().count(b"\n")
    share = lines[True] / lines[False]
    print(f"tests: {lines[True]:,} lines for {lines[False]:,} lines of code, {share:.3f} (at most {LIMIT})")
    return 0 if share <= LIMIT else 1


if __name__ == "__main__":
    sys.exit(main())
