"""The records of harvlink_c.h, with the same fields in the same order."""

import ctypes
from ctypes import c_bool, c_char_p, c_double, c_float, c_int16, c_int32, c_int64, c_uint8, c_uint16, c_uint32, c_uint64

_free = ctypes.CDLL(None).free
_free.argtypes = [ctypes.c_void_p]
_free.restype = None


class OwnedText(ctypes.c_void_p):
    """A text that the library allocated for us."""

    def take(self) -> str:
        """The text, one character for each byte. Call it only once."""
        return self.take_bytes().decode("latin-1")

    def take_bytes(self) -> bytes:
        """Returns the bytes of the text and releases its memory. Call it only once."""
        address, self.value = self.value, None
        if address is None:
            raise MemoryError("the library could not allocate a text")
        try:
            return ctypes.string_at(address)
        finally:
            _free(address)


class IStatusInfo(ctypes.Structure):
    _fields_ = [("StatusCode", c_int32), ("Message", OwnedText)]


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
    _fields_ = [("softwareVersion", OwnedText), ("modelName", OwnedText)]


class ElapsedTime(ctypes.Structure):
    _fields_ = [("seconds", c_uint32), ("minutes", c_uint32), ("hours", c_uint32)]


class TimeData(ctypes.Structure):
    _fields_ = [("startTimeEpoch", c_int64), ("elapsedTime", ElapsedTime)]


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
    _fields_ = [("axes", c_int32 * 8)]


class TorqueData(ctypes.Structure):
    _fields_ = [("controlGroup", c_int32), ("axes", c_int32 * 8)]


class ByteVariableData(ctypes.Structure):
    _fields_ = [("value", c_uint8), ("variableIndex", c_uint16)]


class IntegerVariableData(ctypes.Structure):
    _fields_ = [("value", c_int16), ("variableIndex", c_uint16)]


class DoubleIntVariableData(ctypes.Structure):
    _fields_ = [("value", c_int32), ("variableIndex", c_uint16)]


class RealVariableData(ctypes.Structure):
    _fields_ = [("value", c_float), ("variableIndex", c_uint16)]


class IStringVariableData(ctypes.Structure):
    """The record that a read fills. A write takes StringToWrite, which has the same layout and owns no memory."""

    _fields_ = [("value", OwnedText), ("variableIndex", c_uint16)]


class StringToWrite(ctypes.Structure):
    _fields_ = [("value", c_char_p), ("variableIndex", c_uint16)]


class RobotPositionVariableData(ctypes.Structure):
    _fields_ = [("positionData", PositionData), ("variableIndex", c_uint16)]


class BaseAxisPositionVariableData(ctypes.Structure):
    _fields_ = [("positionData", PositionData), ("variableIndex", c_uint16)]


class StationPositionVariableData(ctypes.Structure):
    _fields_ = [("positionData", PositionData), ("variableIndex", c_uint16)]


class IAlarmData(ctypes.Structure):
    _fields_ = [("code", c_uint32), ("subcode", c_uint32), ("time", OwnedText), ("name", OwnedText)]


class IActiveAlarms(ctypes.Structure):
    _fields_ = [("numberOfAlarms", c_uint32), ("alarms", IAlarmData * 4)]


class IAlarmHistory(ctypes.Structure):
    _fields_ = [("numberOfAlarms", c_uint32), ("alarms", IAlarmData * 100)]


class IJobData(ctypes.Structure):
    _fields_ = [("name", OwnedText), ("line", c_uint32), ("stepNumber", c_uint32), ("speedOverride", c_double)]


class IJobStack(ctypes.Structure):
    _fields_ = [(f"job{place}", OwnedText) for place in range(12)]


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
    _fields_ = [("motion", Motion), ("auxiliaryAxes", c_double * 8)]


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
    _fields_ = [(name, c_double) for name in ("x", "y", "z")]


class EulerMatrix(ctypes.Structure):
    _fields_ = [(column + row, c_double) for column in "noap" for row in "xyz"]


class ZyxEulerPose(ctypes.Structure):
    _fields_ = [(name, c_double) for name in ("x", "y", "z", "rx", "ry", "rz")]


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
