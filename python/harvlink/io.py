"""Signals and registers.

Eight signals form a group of one byte. The address of a signal is the number of its group times ten plus its bit, 0 to
7. The address of a byte or word is that of its first signal. Within a class, groups count from 1.
"""

import ctypes
from typing import Any, Tuple, Union

from . import _records
from ._library import switch
from ._link import Link
from .enums import IOType

BitPlace = Union[int, Tuple[IOType, int, int]]
"""A signal: its address, or its class, group and bit."""

GroupPlace = Union[int, Tuple[IOType, int]]
"""A byte or word: the address of its first signal, or its class and group."""


class _Places:
    def __init__(self, link: Link, read: str, write: str, value: Any) -> None:
        self._link = link
        self._names = {"Read": read, "Write": write}
        self._value = value

    def _call(self, direction: str, place: Any, value: Any) -> None:
        by, numbers = ("type", place) if isinstance(place, tuple) else ("address", (place,))
        self._link.do(self._names[direction].format(by), *numbers, value)

    def _read(self, place: Any) -> int:
        value = self._value()
        self._call("Read", place, ctypes.byref(value))
        return int(value.value)


class Groups(_Places):
    """Bytes or words; a word is two groups in a row, the first in its low byte."""

    def __getitem__(self, place: GroupPlace) -> int:
        return self._read(place)

    def __setitem__(self, place: GroupPlace, value: int) -> None:
        self._call("Write", place, value)


class Registers:
    """Registers of 16 bits, by index."""

    def __init__(self, link: Link) -> None:
        self._link = link

    def __getitem__(self, index: int) -> int:
        value = ctypes.c_ushort()
        self._link.do("io_interface_ReadRegister", index, ctypes.byref(value))
        return value.value

    def __setitem__(self, index: int, value: int) -> None:
        self._link.do("io_interface_WriteRegister", index, value)


class IO(_Places):
    """Signals as booleans: `io[10010]` or `io[IOType.GENERAL_OUTPUT, 1, 0]`. `bytes` and `words` access several signals
    at once, `registers` the registers. IOType says which signals can be written. A write of several is not atomic."""

    def __init__(self, link: Link) -> None:
        super().__init__(link, "io_interface_{}_ReadBit", "io_interface_{}_WriteBit", ctypes.c_int)
        # Reads use the wide forms, which count the groups of all classes in the same way. Writes use the narrow forms,
        # which refuse a value that does not fit.
        self.bytes = Groups(link, "io_interface_{}_ReadByte", "io_interface_uint8_{}_WriteByte", ctypes.c_uint)
        self.words = Groups(link, "io_interface_{}_ReadWord", "io_interface_uint16_{}_WriteWord", ctypes.c_uint)
        self.registers = Registers(link)

    def __getitem__(self, place: BitPlace) -> bool:
        return self._read(place) != 0

    def __setitem__(self, place: BitPlace, value: bool) -> None:
        # Programs write bits as 0 and 1 as often as False and True; any other number is a mistake.
        on = value == 1 if isinstance(value, int) and value in (0, 1) else switch("a signal", value)
        self._call("Write", place, on)

    def address(self, kind: IOType, group: int, bit: int) -> int:
        """The address of a signal. Sends nothing."""
        status = _records.IStatusInfo()
        address: int = self._link.call(
            "io_interface_ConvertIOGroupToBitAddress", kind, group, bit, ctypes.byref(status)
        )
        self._link.settle(status)
        return address
