"""The controller converts positions. Nothing moves. Newer controllers only."""

import ctypes
from typing import Sequence

from . import _records
from ._link import Link
from .enums import Conversion, Group, KinematicType, group_number
from .position import AXES, Position, eight, from_record, to_record

_FROM_CARTESIAN = (Conversion.CARTESIAN_TO_JOINT_ANGLE, Conversion.CARTESIAN_TO_PULSE)


class Kinematics:
    def __init__(self, link: Link) -> None:
        self._link = link

    def convert(
        self,
        position: Position,
        conversion: Conversion,
        group: Group = "R1",
        kinematics: KinematicType = KinematicType.FROM_SYSTEM,
        previous_angles: Sequence[float] = (),
    ) -> Position:
        """The same position in another form; joint angles are in degrees. For a Cartesian position, `kinematics`
        chooses the arm configuration; DELTA needs `previous_angles`, in the controller's unit."""
        source, result = to_record(position), _records.PositionData()
        number = group_number(group)
        if conversion in _FROM_CARTESIAN:
            self._link.do(
                "kinematics_interface_ConvertPositionFromCartesian",
                number,
                ctypes.byref(source),
                conversion,
                kinematics,
                (ctypes.c_double * AXES)(*eight(previous_angles)),
                ctypes.byref(result),
            )
        else:
            self._link.do(
                "kinematics_interface_ConvertPosition", number, ctypes.byref(source), conversion, ctypes.byref(result)
            )
        return from_record(result)
