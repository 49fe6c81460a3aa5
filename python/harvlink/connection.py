"""Opens a connection. Its object gives access to everything else."""

import ipaddress
import warnings
from types import TracebackType
from typing import Optional, Type

from ._library import load
from ._link import Link
from .control_commands import ControlCommands
from .control_group import ControlGroups
from .controller_state import ControllerState, State
from .enums import CoordinateType, Group
from .fault import Alarms
from .file import Files
from .io import IO
from .job import Jobs
from .kinematics import Kinematics
from .motion_manager import MotionManager
from .position import Position
from .variables import Variables


def connect(address: str, timeout: float = 0.5, retries: int = 3) -> "Robot":
    """Opens a connection to the controller at an IPv4 address in dotted form.

    An exchange waits at most (1 + retries) x timeout (seconds) for its answer; a request is never sent twice. Opening a
    connection changes nothing on the controller, except that newer controllers drop motion targets that they have not
    played yet. Raises ValueError for a host name: names are not looked up.
    """
    _check_address(address)
    return Robot(Link(load(), address, timeout, retries))


def _check_address(address: str) -> None:
    if not isinstance(address, str):
        raise TypeError(f"address takes a text such as '192.168.255.1', not {address!r}")
    try:
        ipaddress.IPv4Address(address)
    except ValueError:
        raise ValueError(f"{address!r} is not an IPv4 address such as 192.168.255.1; names are not looked up") from None


class Robot:
    """A connection to one controller, closed at the end of a `with` block. May be used by several threads at once.

    A failed operation raises harvlink.Error. An operation that succeeds only in part, for example by cutting a text,
    warns with harvlink.Note. After `close` every operation raises ValueError.
    """

    def __init__(self, link: Link) -> None:
        self._link = link
        self.controller = ControllerState(link)
        self.groups = ControlGroups(link)
        self.variables = Variables(link)
        self.alarms = Alarms(link)
        self.jobs = Jobs(link)
        self.files = Files(link)
        self.io = IO(link)
        self.control = ControlCommands(link)
        self.motion = MotionManager(link)
        self.kinematics = Kinematics(link)

    def state(self) -> State:
        """Mode, running, hold, alarm and servo state at this moment."""
        return self.controller.state()

    def position(
        self,
        group: Group = "R1",
        kind: CoordinateType = CoordinateType.PULSE,
        *,
        user_coordinate: int = 0,
        tool: int = 0,
    ) -> Position:
        """The current position of a group; see ControlGroups.position."""
        return self.groups.position(group, kind, user_coordinate=user_coordinate, tool=tool)

    def close(self) -> None:
        """Closes the connection; a second call does nothing. It sends nothing, so a moving robot does not stop.

        With the rule BoundedClose it drops queued points and takes two exchanges at most. Otherwise it waits until they
        are all sent, without limit while the controller's buffer is full; `motion.stop(clear=True)` ends this wait.
        """
        self._link.close()

    def __enter__(self) -> "Robot":
        return self

    def __exit__(
        self, kind: Optional[Type[BaseException]], error: Optional[BaseException], traceback: Optional[TracebackType]
    ) -> None:
        self.close()

    def __del__(self) -> None:
        if self._link.is_open:
            warnings.warn("a connection was never closed", ResourceWarning, source=self)
            self.close()
