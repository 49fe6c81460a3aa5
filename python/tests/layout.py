"""What ctypes thinks of the records and functions, by the names that `tools/generate_bindings --layout` prints."""

import ctypes

from harvlink import _prototypes, _records


def place_of(name: str) -> int:
    """The size of a record, the place of a field, or the size of an argument; 0 is the result."""
    whole, _, part = name.partition(".")
    if whole in _prototypes.PROTOTYPES:
        return ctypes.sizeof(_prototypes.PROTOTYPES[whole][int(part)])
    record = getattr(_records, whole)
    return getattr(record, part).offset if part else ctypes.sizeof(record)
