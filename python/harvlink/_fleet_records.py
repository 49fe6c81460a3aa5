"""The records of fleets in harvlink_c.h, with the same fields in the same order."""

import ctypes
from ctypes import c_char, c_char_p, c_double, c_int32, c_int64, c_uint32, c_uint64

from ._records import ControllerStateData, ElapsedTime, PositionData


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
