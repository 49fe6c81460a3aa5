"""Alarms: what is wrong now, and what was."""

import ctypes
import dataclasses
from typing import Any, List

from . import _records
from ._link import Link
from ._target_count import TargetCount
from .enums import AlarmCategory
from .errors import settle


@dataclasses.dataclass(frozen=True)
class Alarm:
    """`time` is as the controller writes it, by its own clock."""

    code: int
    subcode: int
    time: str
    name: str


def _take(places: Any) -> List[Alarm]:
    """Every place has texts to take over; those without an alarm have code 0."""
    alarms = [Alarm(place.code, place.subcode, place.time.take(), place.name.take()) for place in places]
    return [alarm for alarm in alarms if alarm.code != 0]


class Alarms:
    """Each alarm is an exchange of its own, so a list is no atomic view of the controller."""

    def __init__(self, link: Link, targets: TargetCount) -> None:
        self._link = link
        self._targets = targets

    def active(self) -> List[Alarm]:
        """The alarms that are active, at most four."""
        record = _records.IActiveAlarms()
        status = self._link.call("fault_interface_get_active_alarms", ctypes.byref(record))
        alarms = _take(record.alarms)
        settle(status)
        return alarms

    def history(self, category: AlarmCategory, most: int = 100) -> List[Alarm]:
        """The newest alarms of a category, newest first, at most 100."""
        record = _records.IAlarmHistory()
        status = self._link.call("fault_interface_get_alarm_history", category, most, ctypes.byref(record))
        alarms = _take(record.alarms)
        settle(status)
        return alarms

    def clear(self) -> None:
        """Cancels the error and resets the alarms."""
        # The alarm may have been that of a refused point, with which the library clears the controller's targets.
        self._targets.forget()
        self._link.do("fault_interface_clear_all_faults")
