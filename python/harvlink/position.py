"""Positions of control groups."""

import ctypes
import dataclasses
from typing import Sequence, Tuple

from . import _records
from ._library import exact
from .enums import AxisAngle, CoordinateType, FlipOrNoFlip, FrontOrBack, UpperOrLower

AXES = 8


@dataclasses.dataclass(frozen=True)
class Figure:
    """The arm configuration. It selects one of the joint positions that have the same Cartesian pose.

    Newer controllers do not report `l_angle`, `u_angle`, `b_angle`, `e_angle` and `w_angle` of live positions.
    """

    front_or_back: FrontOrBack = FrontOrBack.FRONT
    upper_or_lower: UpperOrLower = UpperOrLower.UPPER
    flip_or_no_flip: FlipOrNoFlip = FlipOrNoFlip.FLIP
    s_angle: AxisAngle = AxisAngle.LESS_THAN_180
    l_angle: AxisAngle = AxisAngle.LESS_THAN_180
    u_angle: AxisAngle = AxisAngle.LESS_THAN_180
    r_angle: AxisAngle = AxisAngle.LESS_THAN_180
    b_angle: AxisAngle = AxisAngle.LESS_THAN_180
    t_angle: AxisAngle = AxisAngle.LESS_THAN_180
    e_angle: AxisAngle = AxisAngle.LESS_THAN_180
    w_angle: AxisAngle = AxisAngle.LESS_THAN_180


@dataclasses.dataclass(frozen=True)
class Position:
    """A position of a control group. It always has eight axes; missing ones are 0.

    PULSE: pulses, cut to whole pulses. JOINT_ANGLE: degrees. Any other type: millimetres on the first three axes (X, Y,
    Z), degrees on the others (Rx, Ry, Rz, Re, Rw), rounded to 0.001 mm and 0.0001 degrees.
    `user_coordinate` is used with type USER.
    """

    kind: CoordinateType = CoordinateType.PULSE
    axes: Sequence[float] = ()
    tool: int = 0
    user_coordinate: int = 0
    figure: Figure = Figure()

    def __post_init__(self) -> None:
        object.__setattr__(self, "axes", eight(self.axes))

    def __str__(self) -> str:
        return f"{self.kind.name} " + " ".join(f"{axis:.10g}" for axis in self.axes)

    def shifted(self, *offsets: float) -> "Position":
        """The position with the offsets added to its axes, beginning with the first axis."""
        axes = tuple(axis + offset for axis, offset in zip(self.axes, eight(offsets)))
        return dataclasses.replace(self, axes=axes)


def eight(axes: Sequence[float]) -> Tuple[float, ...]:
    """The values, filled up with 0 to eight."""
    if len(axes) > AXES:
        raise ValueError(f"a position has at most {AXES} axes, not {len(axes)}")
    return tuple(float(axis) for axis in axes) + (0.0,) * (AXES - len(axes))


def to_record(position: Position) -> _records.PositionData:
    return _records.PositionData(
        position.kind,
        _records.Figure(*dataclasses.astuple(position.figure)),
        exact(ctypes.c_int32, position.tool),
        exact(ctypes.c_int32, position.user_coordinate),
        (ctypes.c_double * AXES)(*position.axes),
    )


def from_record(record: _records.PositionData) -> Position:
    kinds = [field.type for field in dataclasses.fields(Figure)]
    numbers = [getattr(record.figure, name) for name, _ in _records.Figure._fields_]
    return Position(
        CoordinateType(record.coordinateType),
        tuple(record.axes),
        record.toolNumber,
        record.userCoordinateNumber,
        Figure(*(kind(number) for kind, number in zip(kinds, numbers))),
    )
