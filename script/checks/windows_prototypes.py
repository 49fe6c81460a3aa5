#!/usr/bin/env python3
"""Looks whether the Python package could call the library on Windows, as no interpreter for it is to be had here: whether all of
its functions are exported, and whether records, arguments and results have the sizes that a compiler for Windows gives them.

Usage: script/checks/windows_prototypes.py LAYOUT EXPORTS     what the program of `tools/generate_bindings --layout` prints there,
                                                              and what objdump -p prints of the library"""

import ctypes
import pathlib
import re
import sys

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "python"))
# As ctypes has them there, before the package takes them: long is as short as int, and a wide character has two bytes.
ctypes.c_long, ctypes.c_ulong, ctypes.c_wchar = ctypes.c_int32, ctypes.c_uint32, ctypes.c_uint16

from harvlink._prototypes import PROTOTYPES  # noqa: E402
from tests.layout import place_of  # noqa: E402


def main() -> int:
    if len(sys.argv) != 3:
        print((__doc__ or "").strip(), file=sys.stderr)
        return 2
    layout, exports = (pathlib.Path(each).read_text(encoding="utf-8") for each in sys.argv[1:])
    theirs = {name: int(number) for name, number in map(str.split, layout.splitlines())}
    exported = set(re.findall(r"^\s*\[ *\d+\].* (\w+)$", exports, re.MULTILINE))
    faults = [f"{name} is not exported" for name in PROTOTYPES if name not in exported]
    faults += [f"{name}: {place_of(name)} in Python, {there} in C" for name, there in theirs.items() if place_of(name) != there]
    faults += [f"{name} is not in the layout" for name in PROTOTYPES if len(PROTOTYPES[name]) > 1 and f"{name}.1" not in theirs]
    for fault in faults:
        print(f"windows_prototypes: {fault}", file=sys.stderr)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
