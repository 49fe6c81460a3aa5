"""The controller's numbered variables."""

import ctypes
from typing import Any

from . import _records
from ._indexed import Indexed, Value
from ._library import exact
from ._link import Link
from ._owned_text import StringToWrite
from .position import Position, from_record, to_record


class _Kind(Indexed[Value]):
    """The variables of one kind. Each read or write of `kind[5]` is one exchange; indexes go from 0 to 2048."""

    def __init__(self, link: Link, label: str, name: str, record: Any) -> None:
        self._link = link
        self._label = label
        self._name = name
        self._record = record

    def _read(self, index: int) -> Any:
        record = self._record()
        self._link.do(f"{self._name}_variable_interface_read", index, ctypes.byref(record))
        return record

    def _write(self, record: Any) -> None:
        self._link.do(f"{self._name}_variable_interface_write", record)


class Integers(_Kind[int]):
    """Whole numbers. A number that does not fit into the kind raises OverflowError."""

    def _get(self, index: int) -> int:
        return int(self._read(index).value)

    def _set(self, index: int, value: int) -> None:
        held = dict(self._record._fields_)["value"]
        self._write(self._record(exact(held, value), exact(ctypes.c_uint16, index)))


class Reals(_Kind[float]):
    """Numbers in single precision."""

    def _get(self, index: int) -> float:
        return float(self._read(index).value)

    def _set(self, index: int, value: float) -> None:
        self._write(self._record(value, exact(ctypes.c_uint16, index)))


class Texts(_Kind[str]):
    """Texts of at most 32 bytes; a longer one is cut, with a warning."""

    def _get(self, index: int) -> str:
        record = self._record()
        status = self._link.call(f"{self._name}_variable_interface_read", index, ctypes.byref(record))
        text: str = self._link.text(record.value)
        self._link.settle(status)
        return text

    def _set(self, index: int, text: str) -> None:
        record = StringToWrite(self._link.encoded(text), exact(ctypes.c_uint16, index))
        self._write(ctypes.cast(ctypes.byref(record), ctypes.POINTER(self._record)))


class Positions(_Kind[Position]):
    """Positions of the kind's groups."""

    def _get(self, index: int) -> Position:
        return from_record(self._read(index).positionData)

    def _set(self, index: int, position: Position) -> None:
        self._write(ctypes.byref(self._record(to_record(position), exact(ctypes.c_uint16, index))))


class Variables:
    """The kinds, by the letters of the controller.

    b: 0 to 255. i: 16 bits, signed. d: 32 bits, signed. r: single precision. s: texts of at most 32 bytes.
    p: positions of a robot. bp: positions of a base axis, always written in millimetres, even for type PULSE.
    ex: positions of a station, always written in pulses.
    """

    def __init__(self, link: Link) -> None:
        self.b = Integers(link, "B", "byte", _records.ByteVariableData)
        self.i = Integers(link, "I", "integer", _records.IntegerVariableData)
        self.d = Integers(link, "D", "double_int", _records.DoubleIntVariableData)
        self.r = Reals(link, "R", "real", _records.RealVariableData)
        self.s = Texts(link, "S", "string", _records.IStringVariableData)
        self.p = Positions(link, "P", "robot_position", _records.RobotPositionVariableData)
        self.bp = Positions(link, "BP", "base_position", _records.BaseAxisPositionVariableData)
        self.ex = Positions(link, "EX", "station_position", _records.StationPositionVariableData)
