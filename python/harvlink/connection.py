"""Opens a connection. Its object gives access to everything else."""

import warnings
from types import TracebackType
from typing import Any, Dict, Optional, Type, Union

from ._connect_options import RuleSet, checked_address, connect_options
from ._library import load
from ._link import Link
from ._reading import Items, Scalar, read_items
from ._settings import Cell, find_cell
from ._text import Encoding
from .control_commands import ControlCommands
from .control_group import ControlGroups
from .controller_state import ControllerState, State
from .enums import Access, CoordinateType, Group, LinkState
from .fault import Alarms
from .file import Files
from .io import IO
from .job import Jobs
from .kinematics import Kinematics
from .motion_manager import MotionManager
from .position import Position
from .statistics import Statistics, read_statistics
from .variables import Variables


_TIMEOUT = 0.5
_RETRIES = 3
_ENCODING = "utf-8"


def connect(
    address: Optional[str] = None,
    timeout: Optional[float] = None,
    retries: Optional[int] = None,
    access: Union[Access, str] = "full",
    rules: RuleSet = "strict",
    audit: bool = False,
    largest_file: Optional[int] = None,
    *,
    cell: Optional[str] = None,
    encoding: Optional[str] = None,
    clear_targets: bool = True,
) -> "Robot":
    """Opens a connection to the controller at an IPv4 address in dotted form, or at the name of a host.

    An exchange waits at most (1 + retries) x timeout (seconds; 3 retries and 0.5 s unless given) for its answer, and so does
    the lookup of a name. What writes or moves is never sent twice.

    `cell` in place of the address names a section such as [cell.press1] of the tool's configuration file. What is not given
    here comes from the section, then from the environment (HARVLINK_TIMEOUT, HARVLINK_RETRIES, HARVLINK_ENCODING), then
    from the lines before the first section. With a `generation` it refuses a controller of another one.

    `encoding` is that of the controller's texts: "utf-8" unless given, "latin-1", "cp1252", "cp932", "gbk" and others. A byte
    that is not part of it appears as an escape such as "\\xE9", and writing that gives the byte back.

    `access` is what the connection may send. "observe": reads only. "operate": all but motion by targets. "full": all,
    and opening clears the motion targets of newer controllers, those of other programs too, unless `clear_targets` is
    False. What is beyond the access raises Error with ErrorCode.ACCESS_DENIED, and nothing is sent.

    `rules` names the rules of a strict connection that hold, out of RULES: "strict" for all, "designed" for none, or
    several names. With `audit` they only count what they would have refused, see `Robot.statistics`. `largest_file` is
    the size in bytes above which a file is not received, 256 MiB unless given.

    Raises NameNotResolved for a name that the system does not know, and ValueError for an unknown cell and for what can't be
    an address. Ctrl-C ends the wait at once; the exchange that waits for an answer is then left to itself.
    """
    if (address is None) == (cell is None):
        raise TypeError("connect takes an address or a cell")
    found = find_cell(cell) if cell is not None else Cell(checked_address(address))
    chosen = Encoding(_first(encoding, found.encoding, _ENCODING))
    library = load()
    options = connect_options(
        *(library, found.host, _first(timeout, found.timeout, _TIMEOUT), _first(retries, found.retries, _RETRIES)),
        *(access, rules, audit, largest_file, clear_targets),
    )
    robot = Robot(Link(library, options, chosen))
    _refuse_other_than(found.generation, robot)
    return robot


def _first(*values: Any) -> Any:
    return next(value for value in values if value is not None)


def _refuse_other_than(generation: Optional[str], robot: "Robot") -> None:
    """The first letters of a controller's software version name its generation."""
    if generation is None:
        return
    try:
        version = robot.controller.system_information().software_version
        if not version.startswith(generation.upper()):
            raise ValueError(
                f"the controller's software version is {version!r}, not of generation {generation.upper()}; "
                "only the connection was opened"
            )
    except BaseException:
        robot.close()
        raise


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

    def read(self, items: Items) -> Dict[str, Scalar]:
        """Reads many things and returns their values by name; `pandas.DataFrame([robot.read(...), ...])` takes them.

        Items: "B5" and "B0..B9" (also I, D, R, S, P, BP, EX), "M5" for a register, 10010 or "10010..10017" for signals,
        "state", "job", "position.R1" in pulses, "position.R1.base", "torque.R1", "position_error.R1". What has several
        values has several names, such as "state.is_running" and "position.R1.1". One exchange after the other: the values
        are not of the same moment. Raises ValueError for an unknown item, before anything is sent.
        """
        return read_items(self, items)

    def statistics(self) -> Statistics:
        """What this connection has seen of its link, and how often each rule has refused something. Sends nothing."""
        return read_statistics(self._link)

    @property
    def link(self) -> LinkState:
        """Whether the controller answers: SILENT after three exchanges in a row without an answer. Sends nothing."""
        return self.statistics().link

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
