"""Active alarms and their history."""

import ctypes
import dataclasses
from typing import Any, List

from . import _records
from ._link import Link
from .enums import AlarmCategory


@dataclasses.dataclass(frozen=True)
class Alarm:
    """`time` is the controller's text, by the controller's clock."""

    code: int
    subcode: int
    time: str
    name: str


class Alarms:
    """Each alarm is read by an exchange of its own: alarms can come and go while a list is read."""

    def __init__(self, link: Link) -> None:
        self._link = link

    def active(self) -> List[Alarm]:
        """The active alarms, at most four."""
        record = _records.IActiveAlarms()
        status = self._link.call("fault_interface_get_active_alarms", ctypes.byref(record))
        alarms = self._take(record.alarms)
        self._link.settle(status)
        return alarms

    def history(self, category: AlarmCategory, most: int = 100) -> List[Alarm]:
        """The newest alarms of a category, newest first, at most 100."""
        record = _records.IAlarmHistory()
        status = self._link.call("fault_interface_get_alarm_history", category, most, ctypes.byref(record))
        alarms = self._take(record.alarms)
        self._link.settle(status)
        return alarms

    def _take(self, places: Any) -> List[Alarm]:
        """Releases the texts of all places and returns the alarms. A place without an alarm has code 0."""
        text = self._link.text
        alarms = [Alarm(place.code, place.subcode, text(place.time), text(place.name)) for place in places]
        return [alarm for alarm in alarms if alarm.code != 0]

    def clear(self) -> None:
        """Cancels the error and resets the alarms."""
        self._link.do("fault_interface_clear_all_faults")
