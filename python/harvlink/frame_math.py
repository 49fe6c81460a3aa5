"""Arithmetic on frames and vectors, without a connection. Lengths keep the unit of the inputs."""

import ctypes
import dataclasses
from typing import Any

from . import _records
from ._library import load


def _result(function: str, record: Any, *inputs: Any, after: Any = ()) -> Any:
    """Calls a function whose arguments are its inputs, then the result, then the values in `after`."""
    out = record()
    load().call(function, *(ctypes.byref(value) for value in inputs), ctypes.byref(out), *after)
    return out


@dataclasses.dataclass(frozen=True)
class Vector:
    x: float = 0.0
    y: float = 0.0
    z: float = 0.0

    def dot(self, other: "Vector") -> float:
        return float(_result("vector_math_inner_product", ctypes.c_double, self._record(), other._record()).value)

    def cross(self, other: "Vector") -> "Vector":
        out = _result("vector_math_cross_product", _records.XyzVector, self._record(), other._record())
        return Vector(out.x, out.y, out.z)

    def _record(self) -> _records.XyzVector:
        return _records.XyzVector(self.x, self.y, self.z)


@dataclasses.dataclass(frozen=True)
class Pose:
    """A position and the rotation Rz(rz) Ry(ry) Rx(rx), in degrees."""

    x: float = 0.0
    y: float = 0.0
    z: float = 0.0
    rx: float = 0.0
    ry: float = 0.0
    rz: float = 0.0

    def frame(self) -> "Frame":
        record = _records.ZyxEulerPose(*dataclasses.astuple(self))
        return Frame._from(_result("frame_math_zyx_euler_to_frame", _records.EulerMatrix, record))


@dataclasses.dataclass(frozen=True)
class Frame:
    """A homogeneous frame: the columns n, o and a of the rotation, then the position p. The default is the identity."""

    n: Vector = Vector(1.0, 0.0, 0.0)
    o: Vector = Vector(0.0, 1.0, 0.0)
    a: Vector = Vector(0.0, 0.0, 1.0)
    p: Vector = Vector()

    @staticmethod
    def identity() -> "Frame":
        return Frame._from(_result("frame_math_set_identity_matrix_in_frame", _records.EulerMatrix))

    def __matmul__(self, other: "Frame") -> "Frame":
        """The product of this frame and another one."""
        return self._through("frame_math_multiply_frames", other._record())

    def inverse(self) -> "Frame":
        """The inverse of a rigid frame."""
        return self._through("frame_math_invert_frame")

    def rotated(self, axis: Vector, angle: float) -> "Frame":
        """The frame turned by `angle` degrees, right-handed, about an axis of unit length through its own origin."""
        return self._through("frame_math_rotate_frame", axis._record(), after=(angle,))

    def pose(self) -> Pose:
        """rx and rz from -180 to 180 degrees, ry from -90 to 90."""
        out = _result("frame_math_frame_to_zyx_euler", _records.ZyxEulerPose, self._record())
        return Pose(out.x, out.y, out.z, out.rx, out.ry, out.rz)

    def _through(self, function: str, *others: Any, after: Any = ()) -> "Frame":
        return Frame._from(_result(function, _records.EulerMatrix, self._record(), *others, after=after))

    def _record(self) -> _records.EulerMatrix:
        return _records.EulerMatrix(*(value for column in dataclasses.astuple(self) for value in column))

    @staticmethod
    def _from(record: _records.EulerMatrix) -> "Frame":
        columns = ([getattr(record, column + row) for row in "xyz"] for column in "noap")
        return Frame(*(Vector(*column) for column in columns))
