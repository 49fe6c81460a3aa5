"""Live values of the control groups."""

import ctypes
from typing import Any, Tuple

from . import _records
from ._link import Link
from .enums import CoordinateType, Group, group_number
from .position import AXES, Position, from_record


class ControlGroups:
    def __init__(self, link: Link) -> None:
        self._link = link

    def position(
        self, group: Group, kind: CoordinateType = CoordinateType.PULSE, *, user_coordinate: int = 0, tool: int = 0
    ) -> Position:
        """The position of a group. Kinds are PULSE, BASE and, on newer controllers, ROBOT and USER; `tool` and
        `user_coordinate` (1 to 63) are ignored for PULSE. With BASE and ROBOT a tool that does not exist gives zeros.
        """
        record = _records.PositionData()
        self._read("position_data", group, kind, user_coordinate, tool, ctypes.byref(record))
        return from_record(record)

    def axis_letters(self, group: Group) -> str:
        """The letters of the group's axes, such as "SLURBT"."""
        letters = ctypes.create_string_buffer(AXES)
        self._read("axis_configuration", group, letters)
        return letters.raw.replace(b"\0", b"").decode("latin-1")

    def position_error(self, group: Group) -> Tuple[int, ...]:
        """Commanded minus actual position of the eight axes, in pulses."""
        record = _records.PositionErrorData()
        self._read("position_error", group, ctypes.byref(record))
        return tuple(record.axes)

    def torque(self, group: Group) -> Tuple[int, ...]:
        """Torque of the eight axes, in the controller's unit."""
        record = _records.TorqueData()
        self._read("torque_data", group, ctypes.byref(record))
        return tuple(record.axes)

    def _read(self, what: str, group: Group, *arguments: Any) -> None:
        self._link.do(f"control_group_interface_read_{what}", group_number(group), *arguments)
