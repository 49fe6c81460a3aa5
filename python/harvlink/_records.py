"""The records of harvlink_c.h, with the same fields in the same order.

Made from include/harvlink/harvlink_c.h by tools/generate_bindings: change that file, and run it again."""

import ctypes
from ctypes import (
    c_bool,
    c_char,
    c_char_p,
    c_double,
    c_float,
    c_int16,
    c_int32,
    c_int64,
    c_uint16,
    c_uint32,
    c_uint64,
    c_uint8,
)

from ._owned_text import OwnedText


class HarvlinkConnectOptions(ctypes.Structure):
    _fields_ = [
        ("size", c_uint32),
        ("timeout", c_uint32),
        ("address", c_char_p),
        ("retries", c_uint32),
        ("logging", c_int32),
        ("access", c_int32),
        ("rules", c_uint32),
        ("audit", c_int32),
        ("reserved", c_uint32),
        ("largestFile", c_uint64),
        ("clearTargets", c_int32),
        ("reserved2", c_uint32),
    ]


class HarvlinkConnectionStatistics(ctypes.Structure):
    _fields_ = [
        ("size", c_uint32),
        ("linkState", c_int32),
        ("linkStateSince", c_int64),
        ("exchanges", c_uint64),
        ("timeouts", c_uint64),
        ("lateAnswers", c_uint64),
        ("doubledAnswers", c_uint64),
        ("foreignAnswers", c_uint64),
        ("malformedAnswers", c_uint64),
        ("repeatedRequests", c_uint64),
        ("startUpRetries", c_uint64),
        ("blocksReceived", c_uint64),
        ("blocksSent", c_uint64),
        ("bytesReceived", c_uint64),
        ("bytesSent", c_uint64),
        ("roundTripCount", c_uint32),
        ("leastMicroseconds", c_uint32),
        ("medianMicroseconds", c_uint32),
        ("percentile95Microseconds", c_uint32),
        ("mostMicroseconds", c_uint32),
        ("reserved", c_uint32),
        ("ruleCounts", c_uint64 * 13),
    ]


class IStatusInfo(ctypes.Structure):
    _fields_ = [
        ("StatusCode", c_int32),
        ("Message", OwnedText),
    ]


class ControllerStateData(ctypes.Structure):
    _fields_ = [
        ("cycleMode", c_int32),
        ("isRunning", c_bool),
        ("controlMode", c_int32),
        ("isProgramPendantHold", c_bool),
        ("isAlarming", c_bool),
        ("isErroring", c_bool),
        ("isServoOn", c_bool),
    ]


class ISystemInfoData(ctypes.Structure):
    _fields_ = [
        ("softwareVersion", OwnedText),
        ("modelName", OwnedText),
    ]


class ElapsedTime(ctypes.Structure):
    _fields_ = [
        ("seconds", c_uint32),
        ("minutes", c_uint32),
        ("hours", c_uint32),
    ]


class TimeData(ctypes.Structure):
    _fields_ = [
        ("startTimeEpoch", c_int64),
        ("elapsedTime", ElapsedTime),
    ]


class Figure(ctypes.Structure):
    _fields_ = [
        ("frontOrBack", c_int32),
        ("upperOrLower", c_int32),
        ("flipOrNoFlip", c_int32),
        ("sAngle", c_int32),
        ("lAngle", c_int32),
        ("uAngle", c_int32),
        ("rAngle", c_int32),
        ("bAngle", c_int32),
        ("tAngle", c_int32),
        ("eAngle", c_int32),
        ("wAngle", c_int32),
    ]


class PositionData(ctypes.Structure):
    _fields_ = [
        ("coordinateType", c_int32),
        ("figure", Figure),
        ("toolNumber", c_int32),
        ("userCoordinateNumber", c_int32),
        ("axes", c_double * 8),
    ]


class PositionErrorData(ctypes.Structure):
    _fields_ = [
        ("axes", c_int32 * 8),
    ]


class TorqueData(ctypes.Structure):
    _fields_ = [
        ("controlGroup", c_int32),
        ("axes", c_int32 * 8),
    ]


class ByteVariableData(ctypes.Structure):
    _fields_ = [
        ("value", c_uint8),
        ("variableIndex", c_uint16),
    ]


class IntegerVariableData(ctypes.Structure):
    _fields_ = [
        ("value", c_int16),
        ("variableIndex", c_uint16),
    ]


class DoubleIntVariableData(ctypes.Structure):
    _fields_ = [
        ("value", c_int32),
        ("variableIndex", c_uint16),
    ]


class RealVariableData(ctypes.Structure):
    _fields_ = [
        ("value", c_float),
        ("variableIndex", c_uint16),
    ]


class IStringVariableData(ctypes.Structure):
    _fields_ = [
        ("value", OwnedText),
        ("variableIndex", c_uint16),
    ]


class RobotPositionVariableData(ctypes.Structure):
    _fields_ = [
        ("positionData", PositionData),
        ("variableIndex", c_uint16),
    ]


class BaseAxisPositionVariableData(ctypes.Structure):
    _fields_ = [
        ("positionData", PositionData),
        ("variableIndex", c_uint16),
    ]


class StationPositionVariableData(ctypes.Structure):
    _fields_ = [
        ("positionData", PositionData),
        ("variableIndex", c_uint16),
    ]


class IAlarmData(ctypes.Structure):
    _fields_ = [
        ("code", c_uint32),
        ("subcode", c_uint32),
        ("time", OwnedText),
        ("name", OwnedText),
    ]


class IActiveAlarms(ctypes.Structure):
    _fields_ = [
        ("numberOfAlarms", c_uint32),
        ("alarms", IAlarmData * 4),
    ]


class IAlarmHistory(ctypes.Structure):
    _fields_ = [
        ("numberOfAlarms", c_uint32),
        ("alarms", IAlarmData * 100),
    ]


class IJobData(ctypes.Structure):
    _fields_ = [
        ("name", OwnedText),
        ("line", c_uint32),
        ("stepNumber", c_uint32),
        ("speedOverride", c_double),
    ]


class IJobStack(ctypes.Structure):
    _fields_ = [
        ("job0", OwnedText),
        ("job1", OwnedText),
        ("job2", OwnedText),
        ("job3", OwnedText),
        ("job4", OwnedText),
        ("job5", OwnedText),
        ("job6", OwnedText),
        ("job7", OwnedText),
        ("job8", OwnedText),
        ("job9", OwnedText),
        ("job10", OwnedText),
        ("job11", OwnedText),
    ]


class Motion(ctypes.Structure):
    _fields_ = [
        ("controlGroup", c_int32),
        ("speed", c_double),
        ("accelerationRatio", c_double),
        ("decelerationRatio", c_double),
        ("moveType", c_int32),
        ("position", PositionData),
    ]


class CircularMotion(ctypes.Structure):
    _fields_ = [
        ("motion", Motion),
        ("auxiliaryAxes", c_double * 8),
    ]


class HarvlinkTrajectoryState(ctypes.Structure):
    _fields_ = [
        ("size", c_uint32),
        ("monitor", c_int32),
        ("queued", c_uint64),
        ("sent", c_uint64),
        ("refused", c_uint64),
        ("withdrawn", c_uint64),
        ("heldBackSince", c_int64),
        ("failedStep", c_uint64),
        ("failedGroup", c_int32),
        ("failureCode", c_int32),
        ("failureMessage", OwnedText),
    ]


class XyzVector(ctypes.Structure):
    _fields_ = [
        ("x", c_double),
        ("y", c_double),
        ("z", c_double),
    ]


class EulerMatrix(ctypes.Structure):
    _fields_ = [
        ("nx", c_double),
        ("ny", c_double),
        ("nz", c_double),
        ("ox", c_double),
        ("oy", c_double),
        ("oz", c_double),
        ("ax", c_double),
        ("ay", c_double),
        ("az", c_double),
        ("px", c_double),
        ("py", c_double),
        ("pz", c_double),
    ]


class ZyxEulerPose(ctypes.Structure):
    _fields_ = [
        ("x", c_double),
        ("y", c_double),
        ("z", c_double),
        ("rx", c_double),
        ("ry", c_double),
        ("rz", c_double),
    ]


class HarvlinkFleetItem(ctypes.Structure):
    _fields_ = [
        ("kind", c_int32),
        ("index", c_uint32),
        ("count", c_uint32),
        ("group", c_int32),
        ("coordinate", c_int32),
        ("toolNumber", c_int32),
        ("userCoordinateNumber", c_int32),
        ("axis", c_int32),
        ("detail", c_int32),
        ("reserved", c_uint32),
        ("deadBand", c_double),
    ]


class HarvlinkFleetGroup(ctypes.Structure):
    _fields_ = [
        ("period", c_int64),
        ("items", ctypes.POINTER(HarvlinkFleetItem)),
        ("itemCount", c_uint32),
        ("onChange", c_int32),
        ("longestSilence", c_int64),
    ]


class HarvlinkFleetOptions(ctypes.Structure):
    _fields_ = [
        ("size", c_uint32),
        ("timeout", c_uint32),
        ("address", c_char_p),
        ("retries", c_uint32),
        ("lanes", c_uint32),
        ("gap", c_uint32),
        ("generation", c_int32),
        ("mostRequestsPerSecond", c_double),
    ]


class HarvlinkFleetAlarm(ctypes.Structure):
    _fields_ = [
        ("code", c_uint32),
        ("subcode", c_uint32),
        ("time", c_char * 20),
        ("name", c_char * 36),
    ]


class HarvlinkFleetSample(ctypes.Structure):
    _fields_ = [
        ("controller", c_char * 64),
        ("item", HarvlinkFleetItem),
        ("group", c_uint32),
        ("quality", c_int32),
        ("code", c_int32),
        ("textLength", c_uint32),
        ("requestTime", c_int64),
        ("answerTime", c_int64),
        ("integer", c_int64),
        ("real", c_double),
        ("state", ControllerStateData),
        ("axes", c_int32 * 8),
        ("position", PositionData),
        ("elapsedTime", ElapsedTime),
        ("line", c_uint32),
        ("step", c_uint32),
        ("text", c_char * 36),
        ("software", c_char * 28),
        ("alarms", HarvlinkFleetAlarm * 4),
    ]


class HarvlinkFleetEvent(ctypes.Structure):
    _fields_ = [
        ("controller", c_char * 64),
        ("kind", c_int32),
        ("code", c_int32),
        ("time", c_int64),
        ("before", c_int64),
        ("after", c_int64),
        ("text", c_char * 48),
    ]


class HarvlinkFleetPlan(ctypes.Structure):
    _fields_ = [
        ("controller", c_char * 64),
        ("exchangesPerSecond", c_double),
        ("longestRoundTrip", c_int64),
    ]


class HarvlinkFleetStatistics(ctypes.Structure):
    _fields_ = [
        ("controller", c_char * 64),
        ("state", c_int32),
        ("groups", c_uint32),
        ("stateSince", c_int64),
        ("exchanges", c_uint64),
        ("timeouts", c_uint64),
        ("repeatedRequests", c_uint64),
        ("lateAnswers", c_uint64),
        ("malformedAnswers", c_uint64),
        ("refusals", c_uint64),
        ("startUps", c_uint64),
        ("rounds", c_uint64 * 16),
        ("overruns", c_uint64 * 16),
        ("effectiveRates", c_double * 16),
    ]
