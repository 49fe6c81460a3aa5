"""Harvlink: reads from and commands an industrial robot controller over Ethernet.

    import harvlink

    with harvlink.connect("127.0.0.1", access="operate") as robot:
        print(robot.state(), robot.position("R1"))
        robot.variables.b[5] = 12
"""

from .connection import Robot, connect
from .controller_state import OperatingTime, State, SystemInformation
from .enums import (
    RULES,
    Access,
    AlarmCategory,
    AxisAngle,
    ControlGroupId,
    ControlMode,
    Conversion,
    CoordinateType,
    CycleMode,
    ErrorCode,
    FileType,
    FleetEventKind,
    FleetItemKind,
    FleetQuality,
    FleetState,
    FlipOrNoFlip,
    FrontOrBack,
    IOType,
    KinematicType,
    LinkState,
    MoveType,
    SystemInfoId,
    SystemParameterType,
    TimeType,
    TrajectoryMonitorState,
    UpperOrLower,
)
from .errors import Error, NameNotResolved, Note
from .fault import Alarm
from .fleet import Event, Fleet, FleetPlan, FleetStatistics, Sample
from .frame_math import Frame, Pose, Vector
from .job import Job
from .motion_manager import Motion, TrajectoryFailure, TrajectoryState
from .position import Figure, Position
from .recording import Recording
from .statistics import RoundTrip, Statistics

__version__ = "1.1.3"

__all__ = [
    "Access",
    "Alarm",
    "AlarmCategory",
    "AxisAngle",
    "ControlGroupId",
    "ControlMode",
    "Conversion",
    "CoordinateType",
    "CycleMode",
    "Error",
    "ErrorCode",
    "Event",
    "Figure",
    "FileType",
    "Fleet",
    "FleetEventKind",
    "FleetItemKind",
    "FleetPlan",
    "FleetQuality",
    "FleetState",
    "FleetStatistics",
    "FlipOrNoFlip",
    "Frame",
    "FrontOrBack",
    "IOType",
    "Job",
    "KinematicType",
    "LinkState",
    "Motion",
    "MoveType",
    "NameNotResolved",
    "Note",
    "OperatingTime",
    "Pose",
    "Position",
    "RULES",
    "Recording",
    "Robot",
    "RoundTrip",
    "Sample",
    "State",
    "Statistics",
    "SystemInfoId",
    "SystemInformation",
    "SystemParameterType",
    "TimeType",
    "TrajectoryFailure",
    "TrajectoryMonitorState",
    "TrajectoryState",
    "UpperOrLower",
    "Vector",
    "connect",
]
