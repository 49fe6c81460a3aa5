#!/usr/bin/env python3
"""alone.py BUILD [SOURCE...]: compiles each source of the project, or those named, by itself, as far as its meaning, so
that a missing include shows.

BUILD is a folder that was configured without merged sources and without precompiled headers. Nothing is written: no code
is made, which is most of what a debug build costs after its headers.
"""

import concurrent.futures
import json
import os
import pathlib
import shlex
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]


def commands(build):
    """One command for each source of ours: several targets may share a source."""
    found = {}
    for entry in json.loads((build / "compile_commands.json").read_text(encoding="utf-8")):
        file = pathlib.Path(entry["file"]).resolve()
        if not file.is_relative_to(build):
            words = shlex.split(entry["command"])
            words = words[:words.index("-o")] + ["-fsyntax-only", str(file)]
            found[file] = (entry["directory"], words)
    return found


def compile_one(item):
    file, (directory, words) = item
    result = subprocess.run(words, cwd=directory, stderr=subprocess.PIPE, text=True, check=False)
    return file, result.returncode, result.stderr


def main():
    build = pathlib.Path(sys.argv[1]).resolve()
    failed = []
    # The largest first, so that the processors are done at about the same time.
    wanted = [pathlib.Path(name).resolve() for name in sys.argv[2:]]
    chosen = {file: how for file, how in commands(build).items() if not wanted or file in wanted}
    items = sorted(chosen.items(), key=lambda item: item[0].stat().st_size, reverse=True)
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for file, code, messages in pool.map(compile_one, items):
            if code != 0:
                failed.append(file)
                print(messages, end="", file=sys.stderr)
    for file in sorted(failed):
        print(f"{file.relative_to(ROOT)}: does not compile by itself", file=sys.stderr)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
