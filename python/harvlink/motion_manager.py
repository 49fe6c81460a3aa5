"""Moves control groups through a queue of points. This moves a real machine. Newer controllers only."""

import ctypes
import dataclasses
import math
import sys
import time
from typing import NoReturn, Optional, Sequence

from . import _records
from ._library import switch
from ._link import Link
from ._target_count import TargetCount
from .control_group import ControlGroups
from .controller_state import ControllerState, State
from .enums import ErrorCode, Group, MoveType, group_number
from .errors import Error, settle
from .fault import Alarms
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
    `deceleration`: per cent (20 to 100), None keeps the controller's value. `via`: the point that a CIRCLE passes
    through, in the units of `position`.
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
            raise ValueError("a circle needs `via`, and no other kind of move takes it")
        ratios = (self.acceleration or 0, self.deceleration or 0)
        if not all(map(math.isfinite, (self.speed, *ratios, *self.position.axes, *(self.via or ())))):
            raise ValueError("speed, ratios and axes of a motion must be finite numbers")


def _ratio(value: Optional[float]) -> float:
    return sys.float_info.max if value is None else value


def _record(motion: Motion) -> _records.CircularMotion:
    """Always has room for a mid-point: the library reads it after the motion of a circle, without a check."""
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
    """`add` queues points. After `start`, a thread of the library sends them in order.

    If the controller refuses a point, the thread raises alarm 8015 on the pendant, writes HarvlinkLog.txt and drops the
    queue; `wait` then raises harvlink.Error.
    """

    def __init__(self, link: Link, targets: TargetCount) -> None:
        self._link = link
        self._targets = targets
        self._groups = ControlGroups(link)
        self._controller = ControllerState(link)
        self._alarms = Alarms(link, targets)

    def add(self, first: Motion, *others: Motion) -> None:
        """Queues a step of one to four groups that start together. Only the first can be a circle. Does not wait."""
        if len(others) >= len(_ADDERS):
            raise ValueError(f"a step has at most {len(_ADDERS)} motions")
        if any(motion.kind == MoveType.CIRCLE for motion in others):
            raise ValueError("only the first motion of a step can be a circle")
        motions = (first, *others)
        records = [_record(motion) for motion in motions]
        with self._targets.lock:
            self._link.do(_ADDERS[len(others)], *(ctypes.byref(record.motion) for record in records))
            self._targets.add((group_number(m.group), m) for m in motions if m.kind != MoveType.NO_MOVE)

    def start(self) -> None:
        """Starts to send the queue, and lets the controller move to its targets."""
        self._link.do("motion_manager_MotionStart")

    def stop(self, clear: bool = True) -> None:
        """Stops the motion. `clear` also drops the queue and the controller's targets; without it, sending goes on."""
        if switch("clear", clear):
            self._targets.forget()
        self._link.do("motion_manager_MotionStop", clear)
        if clear:
            self._targets.clear()

    def clear(self) -> None:
        """Drops the queue and the controller's targets."""
        self._targets.forget()
        self._link.do("motion_manager_ClearAllTrajectory")
        self._targets.clear()

    def progress(self, group: Group = "R1") -> float:
        """The number of targets that a group has reached, as the controller counts them, plus the part of the next."""
        status = _records.IStatusInfo()
        progress: float = self._link.call(
            "motion_manager_GetMotionTargetProgress", group_number(group), ctypes.byref(status)
        )
        settle(status)
        return progress

    def wait(self, motion: Motion, timeout: float = 60.0, tolerance: float = 1.0) -> Position:
        """Waits until the group has arrived at the target of the motion, and returns its position then.

        The group has arrived when the controller counts the point as reached, and the group is within `tolerance` of it
        (pulses or millimetres; X, Y and Z of a Cartesian target) or has gone on to points that were queued after it.

        The count is unknown for a motion that was not added since the last clear, that lies more than 1024 points back,
        or that was queued before an alarm. Then only the position decides: a group that passes the target, or already
        stands there, has arrived. If another program has cleared the controller's targets, call `clear` before you add
        points.

        Raises harvlink.Error as soon as the controller has an alarm or error, with the code of the alarm, such as 8015
        for a refused point. Raises TimeoutError after `timeout` seconds, for example after a stop, during a hold or
        without a `start`.
        """
        end = time.monotonic() + timeout
        while True:
            position = self._arrival(motion, tolerance)
            if position is not None:
                return position
            state = self._controller.state()
            if state.is_alarming or state.is_erroring:
                self._fail(motion, state)
            if time.monotonic() > end:
                raise TimeoutError(f"{motion.group} did not arrive within {timeout} s: {state}")
            time.sleep(_LOOK_PERIOD)

    def _arrival(self, motion: Motion, tolerance: float) -> Optional[Position]:
        """The position of the group if it has arrived."""
        is_gone_on = False
        number = self._targets.number(motion)
        if number is not None:
            progress = self.progress(motion.group)
            self._targets.see(group_number(motion.group), progress)
            if progress < number:
                return None
            is_gone_on = self._targets.is_followed(group_number(motion.group), number)
        target = motion.position
        compared = 3 if target.kind else AXES
        now = self._groups.position(
            motion.group, target.kind, user_coordinate=target.user_coordinate, tool=target.tool
        )
        is_there = all(abs(a - b) <= tolerance for a, b in zip(now.axes[:compared], target.axes))
        return now if is_there or is_gone_on else None

    def _fail(self, motion: Motion, state: State) -> NoReturn:
        # A refused point has cleared the controller's targets.
        self._targets.forget()
        alarms = self._alarms.active()
        if not alarms:
            raise Error(ErrorCode.GENERAL_ERROR, f"{motion.group} did not arrive: {state}")
        texts = ", ".join(f"alarm {alarm.code}-{alarm.subcode} {alarm.name}" for alarm in alarms)
        raise Error(alarms[0].code, f"{motion.group} did not arrive: {texts}")
