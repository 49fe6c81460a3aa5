"""Signals and registers.

Eight signals form a group of one byte. The address of a signal is the number of its group times ten plus its bit, 0 to
7. The address of a byte or word is that of its first signal. Within a class, groups count from 1.
"""

import ctypes
from typing import Any, Iterable, Tuple, Union

from . import _records
from ._indexed import Indexed, Value
from ._library import switch
from ._link import Link
from .enums import IOType

BitPlace = Union[int, Tuple[IOType, int, int]]
"""A signal: its address, or its class, group and bit."""

GroupPlace = Union[int, Tuple[IOType, int]]
"""A byte or word: the address of its first signal, or its class and group."""


class _Places(Indexed[Value]):
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


class Groups(_Places[int]):
    """Bytes or words; a word is two groups in a row, the first in its low byte. A range of addresses means each byte or
    word that begins in it: `bytes[10010:10050]` are four bytes, or two words."""

    _label = "address "

    def __init__(self, link: Link, read: str, write: str, groups: int) -> None:
        super().__init__(link, read, write, ctypes.c_uint)
        self._step = 10 * groups

    def _places(self, numbers: range) -> Iterable[int]:
        return range(numbers.start, numbers.stop, max(self._step, numbers.step))

    def _get(self, place: GroupPlace) -> int:
        return self._read(place)

    def _set(self, place: GroupPlace, value: int) -> None:
        self._call("Write", place, value)


class Registers(Indexed[int]):
    """Registers of 16 bits, by index."""

    _label = "register "

    def __init__(self, link: Link) -> None:
        self._link = link

    def _get(self, index: int) -> int:
        value = ctypes.c_ushort()
        self._link.do("io_interface_ReadRegister", index, ctypes.byref(value))
        return value.value

    def _set(self, index: int, value: int) -> None:
        self._link.do("io_interface_WriteRegister", index, value)


class IO(_Places[bool]):
    """Signals as booleans: `io[10010]` or `io[IOType.GENERAL_OUTPUT, 1, 0]`. `bytes` and `words` access several signals
    at once, `registers` the registers. IOType says which signals can be written. A write of several is not atomic.
    `io[10010:10030]` is a list of those addresses that can be of a signal: their last digit is 0 to 7."""

    _label = "signal "

    def __init__(self, link: Link) -> None:
        super().__init__(link, "io_interface_{}_ReadBit", "io_interface_{}_WriteBit", ctypes.c_int)
        # Reads use the wide forms, which count the groups of all classes in the same way. Writes use the narrow forms,
        # which refuse a value that does not fit.
        self.bytes = Groups(link, "io_interface_{}_ReadByte", "io_interface_uint8_{}_WriteByte", 1)
        self.words = Groups(link, "io_interface_{}_ReadWord", "io_interface_uint16_{}_WriteWord", 2)
        self.registers = Registers(link)

    def _get(self, place: BitPlace) -> bool:
        return self._read(place) != 0

    def _set(self, place: BitPlace, value: bool) -> None:
        # Programs write bits as 0 and 1 as often as False and True; any other number is a mistake.
        on = value == 1 if isinstance(value, int) and value in (0, 1) else switch("a signal", value)
        self._call("Write", place, on)

    def _places(self, numbers: range) -> Iterable[int]:
        return (number for number in numbers if number % 10 < 8)

    def address(self, kind: IOType, group: int, bit: int) -> int:
        """The address of a signal. Sends nothing."""
        status = _records.IStatusInfo()
        address: int = self._link.call(
            "io_interface_ConvertIOGroupToBitAddress", kind, group, bit, ctypes.byref(status)
        )
        self._link.settle(status)
        return address
