"""What ctypes thinks of the records and functions, by the names that `tools/generate_bindings --layout` prints.

Usage: python3 -m tests.layout FILE     what it printed for this system: says what lies otherwise here"""

import ctypes
import pathlib
import sys
from typing import List

from harvlink import _prototypes, _records


def place_of(name: str) -> int:
    """The size of a record, the place of a field, or the size of an argument; 0 is the result."""
    whole, _, part = name.partition(".")
    if whole in _prototypes.PROTOTYPES:
        return ctypes.sizeof(_prototypes.PROTOTYPES[whole][int(part)])
    record = getattr(_records, whole)
    return getattr(record, part).offset if part else ctypes.sizeof(record)


def differences(printed: str) -> List[str]:
    theirs = {name: int(number) for name, number in map(str.split, printed.splitlines())}
    missing = [name for name, types in _prototypes.PROTOTYPES.items() if len(types) > 1 and f"{name}.1" not in theirs]
    return [f"{name} is not in it" for name in missing] + [
        f"{name}: {place_of(name)} here, {there} in C" for name, there in theirs.items() if place_of(name) != there
    ]


if __name__ == "__main__":
    sys.exit("\n".join(differences(pathlib.Path(sys.argv[1]).read_text(encoding="utf-8"))) or None)
