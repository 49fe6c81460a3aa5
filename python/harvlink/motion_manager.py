"""Moving control groups through a queue of points. It moves a real machine. Newer controllers only."""

import ctypes
import dataclasses
import sys
import time
from typing import Optional, Sequence

from . import _records
from ._link import Link
from .control_group import ControlGroups
from .enums import Group, MoveType, group_number
from .errors import settle
from .position import AXES, Position, eight, to_record

_ADDERS = (
    "motion_manager_AddPointToTrajectory",
    "motion_manager_Add2PointsToTrajectory",
    "motion_manager_Add3PointsToTrajectory",
    "motion_manager_Add4PointsToTrajectory",
)
_LOOK_PERIOD = 0.02


@dataclasses.dataclass(frozen=True)
class Motion:
    """One point of a trajectory for one group.

    `speed`: per cent (0.01 to 100) for a JOINT move, mm/s (0.1 to 1500) for LINE and CIRCLE. `acceleration` and
    `deceleration`: per cent (20 to 100), None leaves what the controller has. `via`: the point, in the units of
    `position`, that a CIRCLE passes through.
    """

    group: Group
    position: Position
    speed: float
    kind: MoveType = MoveType.JOINT
    acceleration: Optional[float] = None
    deceleration: Optional[float] = None
    via: Optional[Sequence[float]] = None

    def __post_init__(self) -> None:
        if (self.kind == MoveType.CIRCLE) != (self.via is not None):
            raise ValueError("`via` is for a circle, and a circle needs it")


def _ratio(value: Optional[float]) -> float:
    return sys.float_info.max if value is None else value


def _record(motion: Motion) -> _records.CircularMotion:
    """Always with the place of a mid-point: the library reads it there for a circle, whether it exists or not."""
    plain = _records.Motion(
        group_number(motion.group),
        motion.speed,
        _ratio(motion.acceleration),
        _ratio(motion.deceleration),
        motion.kind,
        to_record(motion.position),
    )
    return _records.CircularMotion(plain, (ctypes.c_double * AXES)(*eight(motion.via or ())))


class MotionManager:
    """Points are queued by `add` and sent in order by a thread of the library once `start` was called.

    If the controller refuses one, the thread raises alarm 8015 on the pendant, writes HarvlinkLog.txt and drops the
    queue.
    """

    def __init__(self, link: Link) -> None:
        self._link = link
        self._groups = ControlGroups(link)

    def add(self, first: Motion, *others: Motion) -> None:
        """Queues a step of one to four groups, which start together. Only the first can be a circle. Does not wait."""
        if len(others) >= len(_ADDERS):
            raise ValueError(f"a step has at most {len(_ADDERS)} motions")
        if any(motion.kind == MoveType.CIRCLE for motion in others):
            raise ValueError("only the first motion of a step can be a circle")
        records = [_record(motion) for motion in (first, *others)]
        self._link.do(_ADDERS[len(others)], *(ctypes.byref(record.motion) for record in records))

    def start(self) -> None:
        """Lets the controller move to its targets, and starts sending the queue."""
        self._link.do("motion_manager_MotionStart")

    def stop(self, clear: bool = True) -> None:
        """Stops; with `clear` the queue and the controller's targets are dropped, otherwise sending goes on."""
        self._link.do("motion_manager_MotionStop", bool(clear))

    def clear(self) -> None:
        """Drops the queue and the controller's targets."""
        self._link.do("motion_manager_ClearAllTrajectory")

    def progress(self, group: Group = "R1") -> float:
        """How far a group has come, as the controller counts it."""
        status = _records.IStatusInfo()
        progress: float = self._link.call(
            "motion_manager_GetMotionTargetProgress", group_number(group), ctypes.byref(status)
        )
        settle(status)
        return progress

    def wait(self, motion: Motion, timeout: float = 60.0, tolerance: float = 1.0) -> Position:
        """Looks until the group is within `tolerance` (pulses or millimetres) of where the motion leads.

        Returns its position. Cartesian targets are compared by X, Y and Z. TimeoutError after `timeout` seconds.
        """
        target = motion.position
        compared = 3 if target.kind else AXES
        end = time.monotonic() + timeout
        while True:
            now = self._groups.position(
                motion.group, target.kind, user_coordinate=target.user_coordinate, tool=target.tool
            )
            if all(abs(a - b) <= tolerance for a, b in zip(now.axes[:compared], target.axes)):
                return now
            if time.monotonic() > end:
                raise TimeoutError(f"{motion.group} did not arrive within {timeout} s")
            time.sleep(_LOOK_PERIOD)
