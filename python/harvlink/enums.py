"""The numbers of the controller and of the library, by name."""

import enum
import operator
from typing import Optional, Union


class OpenEnum(enum.IntEnum):
    """Takes any number. A number without a name keeps its value, because a newer controller may have more of them."""

    @classmethod
    def _missing_(cls, value: object) -> Optional["OpenEnum"]:
        if not isinstance(value, int):
            return None
        member = int.__new__(cls, value)
        member._name_ = f"NUMBER_{value}"
        member._value_ = value
        return member


class ControlGroupId(OpenEnum):
    """A control group: a robot (R), a base axis that carries a robot (B) or a station (S)."""

    R1, R2, R3, R4, R5, R6, R7, R8 = range(1, 9)
    B1, B2, B3, B4, B5, B6, B7, B8 = range(11, 19)
    S1, S2, S3, S4, S5, S6, S7, S8, S9, S10, S11, S12 = range(21, 33)
    S13, S14, S15, S16, S17, S18, S19, S20, S21, S22, S23, S24 = range(33, 45)


Group = Union[ControlGroupId, int, str]
"""A control group by name, such as "R1", or by number."""


def group_number(group: Group) -> int:
    """The number of a group. Raises ValueError if no group has this name."""
    if not isinstance(group, str):
        return operator.index(group)
    try:
        return int(ControlGroupId[group.upper()])
    except KeyError:
        raise ValueError(f"{group!r} is not a control group such as R1, B1 or S12") from None


class CoordinateType(OpenEnum):
    """The meaning of the eight axes of a position."""

    PULSE = 0
    BASE = 16
    ROBOT = 17
    TOOL = 18
    USER = 19
    MASTER_TOOL = 20
    UNDEFINED = 55
    JOINT_ANGLE = 56


class FrontOrBack(OpenEnum):
    FRONT = 0
    BACK = 1


class UpperOrLower(OpenEnum):
    UPPER = 0
    LOWER = 1


class FlipOrNoFlip(OpenEnum):
    FLIP = 0
    NO_FLIP = 1


class AxisAngle(OpenEnum):
    LESS_THAN_180 = 0
    GREATER_THAN_180 = 1


class CycleMode(OpenEnum):
    STEP = 0
    CYCLE = 1
    AUTOMATIC = 2


class ControlMode(OpenEnum):
    TEACH = 0
    PLAY = 1
    REMOTE = 2


class SystemInfoId(OpenEnum):
    """The subject of system information."""

    ROBOT1, ROBOT2, ROBOT3, ROBOT4, ROBOT5, ROBOT6, ROBOT7, ROBOT8 = range(11, 19)
    STATION1, STATION2, STATION3 = range(21, 24)
    APPLICATION1, APPLICATION2, APPLICATION3, APPLICATION4 = range(101, 105)
    APPLICATION5, APPLICATION6, APPLICATION7, APPLICATION8 = range(105, 109)


class SystemParameterType(OpenEnum):
    """The family of a system parameter; S1C, S1E and S2E belong to a control group."""

    S1C = 0
    S2C = 1
    S3C = 2
    S4C = 3
    RS = 4
    S1E = 5
    S2E = 6
    MOTION_SLOT = 11


class TimeType(OpenEnum):
    """An operating time counter; ..._ROBOT needs a robot group, ..._STATION a station, the others need no group."""

    CONTROL_POWER = 1
    SERVO_POWER = 10
    SERVO_POWER_ROBOT = 11
    SERVO_POWER_STATION = 20
    PLAYBACK = 110
    PLAYBACK_ROBOT = 111
    PLAYBACK_STATION = 120
    MOVING = 210
    MOVING_ROBOT = 211
    MOVING_STATION = 221
    APPLICATION = 300


class AlarmCategory(OpenEnum):
    MAJOR = 0
    MINOR = 1000
    SYSTEM_USER = 2000
    USER = 3000
    OFFLINE = 4000


class FileType(OpenEnum):
    """Kinds of controller files, by extension. PRM, SYS and LOG files cannot be written."""

    JBI = 0
    DAT = 1
    CND = 2
    PRM = 3
    SYS = 4
    LST = 5
    LOG = 6


class IOType(OpenEnum):
    """A class of signals. Network inputs can be written; on newer controllers also general outputs and panel inputs."""

    GENERAL_INPUT = 0
    GENERAL_OUTPUT = 1
    EXTERNAL_INPUT = 2
    NETWORK_INPUT = 3
    EXTERNAL_OUTPUT = 4
    NETWORK_OUTPUT = 5
    SPECIFIC_INPUT = 6
    SPECIFIC_OUTPUT = 7
    INTERFACE_PANEL_INPUT = 8
    AUXILIARY_RELAY = 9
    ROBOT_CONTROL_STATUS = 10
    PSEUDO_INPUT = 11


class MoveType(OpenEnum):
    NO_MOVE = 0
    JOINT = 1
    LINE = 2
    CIRCLE = 3


class TrajectoryMonitorState(OpenEnum):
    """What the thread that sends queued steps is doing."""

    NOT_STARTED = 0
    IDLE = 1
    SENDING = 2
    HELD_BACK = 3
    FAILED = 4
    STOPPED = 5


class Conversion(OpenEnum):
    """The forms between which a position is converted."""

    JOINT_ANGLE_TO_CARTESIAN = 0
    PULSE_TO_JOINT_ANGLE = 1
    JOINT_ANGLE_TO_PULSE = 2
    PULSE_TO_CARTESIAN = 3
    CARTESIAN_TO_JOINT_ANGLE = 4
    CARTESIAN_TO_PULSE = 5


class KinematicType(OpenEnum):
    """How to choose between the arm configurations that reach a Cartesian position."""

    FROM_SYSTEM = 0
    DELTA = 1
    FIGURE = 2


class Access(OpenEnum):
    """What a connection may send."""

    OBSERVE = 0
    OPERATE = 1
    FULL = 2


RULES = (
    "SilenceIsTimeout",
    "KnownSender",
    "RepeatReads",
    "FittingAnswer",
    "Deadline",
    "NewPort",
    "WholeAnswer",
    "BlockOrder",
    "WholeStartUp",
    "IdleMonitor",
    "SentStep",
    "BoundedClose",
    "NoExceptions",
)
"""The rules of a strict connection, in the order of their bits. The text of a refusal ends with the name of its rule."""


class LinkState(OpenEnum):
    ONLINE = 0
    SILENT = 1


class ErrorCode(OpenEnum):
    """Codes that the library itself raises. All others come from the controller."""

    OPERATION_INTERRUPTED = 0xFFEF
    GENERAL_ERROR = 0xFFFF
    UNDEFINED_EXCEPTION = 0x10000
    COMMUNICATION_ERROR = 0x10001
    FILE_UPLOAD_ERROR = 0x10002
    SOCKET_OPEN_ERROR = 0x10003
    INVALID_BIT_VALUE = 0x10004
    CONTROLLER_OBJECT_CREATION_FAILED = 0x10007
    FILE_OPEN_OR_SAVE_ERROR = 0x20000
    INVALID_FILE_EXTENSION = 0x20001
    FILE_EXISTS_NO_OVERWRITE = 0x20002
    FILE_NOT_FOUND_ON_PC = 0x20003
    FILE_WRITE_OPEN_ERROR = 0x20004
    FILE_READ_OPEN_ERROR = 0x20005
    NO_FILES_WITH_EXTENSION = 0x20006
    INVALID_JOB_NAME_LENGTH = 0x20007
    FILE_TYPE_NOT_WRITABLE = 0x20008
    INVALID_IO_GROUP = 0x20009
    KINEMATIC_TYPE_MISSING = 0x20010
    DELTA_PREVIOUS_ANGLE_MISSING = 0x20011
    INVALID_SYSTEM_KINEMATIC_TYPE = 0x20012
    INVALID_CONVERSION_FROM_CARTESIAN = 0x20013
    INVALID_CONVERSION_TO_CARTESIAN = 0x20014
    INVALID_COORDINATE_TYPE = 0x20015
    ACTIVE_TOOL_ONLY = 0x20016
    JOINT_SPEED_OUT_OF_RANGE = 0x30001
    SPEED_OUT_OF_RANGE = 0x30002
    UNSUPPORTED_ON_THIS_CONTROLLER = 0x30005
    RESPONSE_TIMEOUT = 0x30006
    IO_ADDRESS_NOT_WRITABLE = 0x30007
    INVALID_VARIABLE_INDEX = 0x30008
    ACCELERATION_OUT_OF_RANGE = 0x30009
    DECELERATION_OUT_OF_RANGE = 0x30010
    INVALID_SYSTEM_PARAMETER = 0x30011
    SYSTEM_PARAMETER_NEEDS_GROUP = 0x30012
    VERSION_MISMATCH = 0x30013
    JOB_NAME_MISMATCH = 0x30014
    CONTROL_GROUP_NOT_ATTACHED = 0x30015
    INVALID_SYSTEM_PARAMETER_GROUP = 0x30016
    INVALID_ALARM_CATEGORY = 0x30017
    INVALID_CONNECT_OPTIONS = 0x50000
    ACCESS_DENIED = 0x50001
    CONTROLLER_NOT_LISTENING = 0x50002
    ANSWER_TOO_SHORT = 0x50003
    FILE_BLOCK_MISSING = 0x50004
    FILE_TOO_LARGE = 0x50005
    OUT_OF_MEMORY = 0x50006
    SYSTEM_FAILURE = 0x50007
    UNREADABLE_TIME = 0x50008
    STEP_WITHDRAWN = 0x50009
    WAIT_TIMED_OUT = 0x50010
    UNKNOWN_STEP = 0x50011
    NAME_NOT_RESOLVED = 0x50012
    INVALID_FLEET = 0x50013
    UNKNOWN_FLEET_CONTROLLER = 0x50014


class FleetItemKind(OpenEnum):
    """What a fleet reads; Fleet.h says what the index of each means."""

    STATE, JOB, ALARMS, POSITION, TORQUE, POSITION_ERROR = range(6)
    BYTE_VARIABLE, INTEGER_VARIABLE, DOUBLE_INT_VARIABLE, REAL_VARIABLE, STRING_VARIABLE = range(6, 11)
    ROBOT_POSITION_VARIABLE, BASE_POSITION_VARIABLE, STATION_POSITION_VARIABLE = range(11, 14)
    SIGNAL, SIGNAL_GROUP, REGISTER, OPERATING_TIME, SOFTWARE, TARGET_PROGRESS = range(14, 20)


class FleetState(OpenEnum):
    """What the link of a fleet to a controller is like."""

    CONNECTING, ONLINE, LATE, SILENT, REFUSED = range(5)


class FleetQuality(OpenEnum):
    """What a value is worth. Of a stale one the controller has fallen silent since."""

    GOOD, REFUSED, STALE, NEVER_READ = range(4)


class FleetEventKind(OpenEnum):
    """What happened to a controller of a fleet."""

    STATE_CHANGED, ALARM_RAISED, ALARM_CLEARED, SERVO_ON, SERVO_OFF, CONTROL_MODE_CHANGED = range(6)
    CYCLE_MODE_CHANGED, JOB_CHANGED, MODEL_CHANGED, SOFTWARE_CHANGED, ITEM_REFUSED, RAN_OVER = range(6, 12)
