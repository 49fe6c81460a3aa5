"""The controller as a whole: state, model and version, operating times, system parameters."""

import ctypes
import dataclasses
import datetime
from typing import Optional

from . import _records
from ._link import Link
from .enums import ControlMode, CycleMode, Group, SystemInfoId, SystemParameterType, TimeType, group_number


@dataclasses.dataclass(frozen=True)
class State:
    """The state at the moment of the read. `is_hold` covers holds by the pendant, an external signal and a command."""

    cycle_mode: CycleMode
    is_running: bool
    control_mode: ControlMode
    is_hold: bool
    is_alarming: bool
    is_erroring: bool
    is_servo_on: bool


@dataclasses.dataclass(frozen=True)
class SystemInformation:
    software_version: str
    model_name: str


@dataclasses.dataclass(frozen=True)
class OperatingTime:
    """`start` is the time at which the counter began, by the controller's clock; `elapsed` is in whole seconds."""

    start: datetime.datetime
    elapsed: datetime.timedelta


def local_time(seconds: int) -> datetime.datetime:
    """The time by the clock of this computer; in UTC where the system knows no local time, as Windows before 1970."""
    try:
        return datetime.datetime.fromtimestamp(seconds)
    except OSError:
        return datetime.datetime(1970, 1, 1) + datetime.timedelta(seconds=seconds)


class ControllerState:
    def __init__(self, link: Link) -> None:
        self._link = link

    def state(self) -> State:
        record = _records.ControllerStateData()
        self._link.do("controller_state_interface_read_state", ctypes.byref(record))
        return State(
            CycleMode(record.cycleMode),
            record.isRunning,
            ControlMode(record.controlMode),
            record.isProgramPendantHold,
            record.isAlarming,
            record.isErroring,
            record.isServoOn,
        )

    def system_information(self, about: int = SystemInfoId.ROBOT1) -> SystemInformation:
        """Software version and model name of a robot, station or application."""
        record = _records.ISystemInfoData()
        status = self._link.call("controller_state_interface_read_system_information", about, ctypes.byref(record))
        information = SystemInformation(self._link.text(record.softwareVersion), self._link.text(record.modelName))
        self._link.settle(status)
        return information

    def operating_time(self, counter: TimeType, group: Group = "R1", application: int = 0) -> OperatingTime:
        """One counter. Counters of a robot or station use `group`, APPLICATION uses `application` (1 to 8)."""
        record = _records.TimeData()
        self._link.do(
            "controller_state_interface_read_operating_times",
            group_number(group),
            counter,
            ctypes.byref(record),
            application,
        )
        elapsed = record.elapsedTime
        return OperatingTime(
            local_time(record.startTimeEpoch),
            datetime.timedelta(hours=elapsed.hours, minutes=elapsed.minutes, seconds=elapsed.seconds),
        )

    def system_parameter(self, family: SystemParameterType, number: int, group: Optional[int] = None) -> int:
        """A system parameter. Families S1C, S1E and S2E need the number of a group: robots from 1, bases from 9,
        stations from 17."""
        value = ctypes.c_int()
        if group is None:
            self._link.do("controller_state_read_system_param", family, number, ctypes.byref(value))
        else:
            self._link.do("controller_state_group_read_system_param", family, number, group, ctypes.byref(value))
        return value.value
