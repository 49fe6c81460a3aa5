#!/usr/bin/env python3
"""What the gateway can't do, it can't do by mistake either: of all that the library exports, the program takes the fleet engine,
which sends nothing but reads, and no operation that opens a connection, writes, moves or transfers. What the knobs of --simulate
change, they change in the virtual controllers of the same process, without the library.

Usage: reads_only_test.py PROGRAM LIBRARY WRITER     WRITER: a program that does write, which must not pass
"""
import re
import subprocess
import sys

# Of the fleet: all. The rest are texts and codes, which reach no socket.
ALLOWED = re.compile(r"harvlink::(Fleet::|StatusInformation::|operator<<\()")


def symbols(file, *options):
    lines = subprocess.run(["nm", "--dynamic", *options, file], capture_output=True, text=True, check=True).stdout
    return {line.split()[-1].split("@")[0] for line in lines.splitlines()}


def readable(names):
    text = "\n".join(sorted(names))
    return subprocess.run(["c++filt"], input=text, capture_output=True, text=True, check=True).stdout.splitlines()


def forbidden(program, library):
    taken = symbols(program, "--undefined-only") & symbols(library, "--defined-only")
    if not taken:
        sys.exit(f"{program} takes nothing from {library}: this check looks at the wrong files")
    return [name for name in readable(taken) if not ALLOWED.match(name)]


def main():
    program, library, writer = sys.argv[1:]
    if found := forbidden(program, library):
        sys.exit(f"{program} takes what could change a controller:\n  " + "\n  ".join(found))
    if not forbidden(writer, library):
        sys.exit(f"{writer} passes, so this check finds nothing")


if __name__ == "__main__":
    main()
