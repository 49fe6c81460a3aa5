"""Moves control groups through a queue of points. This moves a real machine. Newer controllers only."""

import collections
import ctypes
import dataclasses
import datetime
import math
import sys
import threading
import time
from typing import Deque, Optional, Sequence, Tuple, Union

from . import _records
from ._library import switch
from ._link import Link
from .control_group import ControlGroups
from .enums import ControlGroupId, ErrorCode, Group, MoveType, TrajectoryMonitorState, group_number
from .errors import Error
from .position import AXES, Position, eight, to_record

_MOST_MOTIONS = 4
# The library remembers as many.
_REMEMBERED = 1024
# The library waits so long at a time, so that the interpreter can handle signals, and others can close the connection.
_WAIT_PERIOD = 0.1


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


@dataclasses.dataclass(frozen=True)
class TrajectoryFailure:
    """The last step that failed. `group` is the one whose setting was refused, or the first of the step."""

    step: int
    group: Group
    code: int
    text: str


@dataclasses.dataclass(frozen=True)
class TrajectoryState:
    """What has become of the steps of a connection; what is neither sent, refused nor withdrawn still waits."""

    queued: int
    sent: int
    refused: int
    withdrawn: int
    monitor: TrajectoryMonitorState
    held_back_since: Optional[datetime.datetime]
    last_failure: Optional[TrajectoryFailure]


class MotionManager:
    """`add` queues points. After `start`, a thread of the library sends them in order.

    If the controller refuses a point, the thread raises alarm 8015 on the pendant, writes HarvlinkLog.txt and drops the
    queue; `wait` then raises harvlink.Error, and `state` shows which step it was.
    """

    def __init__(self, link: Link) -> None:
        self._link = link
        self._groups = ControlGroups(link)
        self._lock = threading.Lock()
        self._added: Deque[Tuple[int, Sequence[Motion]]] = collections.deque(maxlen=_REMEMBERED)

    def add(self, first: Motion, *others: Motion) -> int:
        """Queues a step of one to four groups that start together. Only the first can be a circle. Does not wait.

        Returns the number of the step: 1 for the first of the connection, then 2, and so on.
        """
        motions = (first, *others)
        if len(motions) > _MOST_MOTIONS:
            raise ValueError(f"a step has at most {_MOST_MOTIONS} motions")
        if any(motion.kind == MoveType.CIRCLE for motion in others):
            raise ValueError("only the first motion of a step can be a circle")
        records = [_record(motion) for motion in motions]
        places = [ctypes.byref(record.motion) for record in records]
        number = ctypes.c_uint64()
        with self._lock:
            self._link.do(
                "harvlink_motion_add", ctypes.byref(number), *places, *[None] * (_MOST_MOTIONS - len(places))
            )
            self._added.append((number.value, motions))
        return number.value

    def start(self) -> None:
        """Starts to send the queue, and lets the controller move to its targets."""
        self._link.do("motion_manager_MotionStart")

    def stop(self, clear: bool = True) -> None:
        """Stops the motion. `clear` also drops the queue and the controller's targets. Without it the queue stays: with
        the rule BoundedClose it is sent from the next `start` on, otherwise it goes on being sent.
        """
        self._link.do("motion_manager_MotionStop", switch("clear", clear))

    def clear(self) -> None:
        """Drops the queue and the controller's targets."""
        self._link.do("motion_manager_ClearAllTrajectory")

    def progress(self, group: Group = "R1") -> float:
        """The number of targets that a group has reached, as the controller counts them, plus the part of the next."""
        status = _records.IStatusInfo()
        progress: float = self._link.call(
            "motion_manager_GetMotionTargetProgress", group_number(group), ctypes.byref(status)
        )
        self._link.settle(status)
        return progress

    def state(self) -> TrajectoryState:
        """How many steps were queued, sent, refused and withdrawn, what the thread does, and the last failure."""
        record = _records.HarvlinkTrajectoryState(size=ctypes.sizeof(_records.HarvlinkTrajectoryState))
        status = self._link.call("harvlink_motion_get_state", ctypes.byref(record))
        text = self._link.text(record.failureMessage)
        self._link.settle(status)
        since = datetime.datetime.fromtimestamp(record.heldBackSince / 1000) if record.heldBackSince else None
        group = ControlGroupId(record.failedGroup)
        failure = TrajectoryFailure(record.failedStep, group, record.failureCode, text)
        return TrajectoryState(
            *(record.queued, record.sent, record.refused, record.withdrawn),
            TrajectoryMonitorState(record.monitor),
            since,
            failure if record.failureCode else None,
        )

    def wait(self, what: Union[int, Motion], timeout: float = 60.0, tolerance: float = 1.0) -> Position:
        """Waits until a step has arrived, and returns the position of its group then; of the first group, or of that of
        the motion. `what` is the number of the step, or a motion that was added, the last time if more than once.

        The step has arrived when the controller counts it as reached, and each of its groups is within `tolerance` of
        its target (pulses or millimetres; X, Y and Z of a Cartesian target) or was sent on to another.

        If another program has cleared the controller's targets, only the position decides until the next `clear`.

        Raises harvlink.Error as soon as the controller has an alarm or error, with the code of the alarm, such as 8015
        for a refused point, and with ErrorCode.STEP_WITHDRAWN for a step that a stop, a clear or a failure has dropped.
        Raises TimeoutError after `timeout` seconds, for example during a hold or without a `start`. Raises ValueError
        for a motion that was not among the last 1024 steps.
        """
        number, motion = self._find(what)
        self._wait_for("harvlink_motion_wait_for_target", number, timeout, "arrive", ctypes.c_double(tolerance))
        target = motion.position
        return self._groups.position(
            motion.group, target.kind, user_coordinate=target.user_coordinate, tool=max(target.tool, 0)
        )

    def wait_until_sent(self, what: Union[int, Motion], timeout: float = 60.0) -> None:
        """Waits until the controller has taken a step into its buffer. Raises as `wait` does."""
        number, _ = self._find(what)
        self._wait_for("harvlink_motion_wait_until_sent", number, timeout, "leave")

    def _find(self, what: Union[int, Motion]) -> Tuple[int, Motion]:
        """The number of a step, and the motion of it that is asked for."""
        with self._lock:
            for number, motions in reversed(self._added):
                if number == what and not isinstance(what, Motion):
                    return number, motions[0]
                for motion in motions:
                    if motion is what:
                        return number, motion
        raise ValueError(f"{what} was not added, or lies more than {_REMEMBERED} steps back")

    def _wait_for(self, function: str, number: int, timeout: float, verb: str, *more: object) -> None:
        end = time.monotonic() + timeout
        while True:
            left = max(0.0, min(_WAIT_PERIOD, end - time.monotonic()))
            try:
                return self._link.do(function, number, round(left * 1000), *more)
            except Error as error:
                if error.code != ErrorCode.WAIT_TIMED_OUT:
                    raise
            if time.monotonic() >= end:
                raise TimeoutError(f"step {number} did not {verb} within {timeout} s: {self.state().monitor.name}")
