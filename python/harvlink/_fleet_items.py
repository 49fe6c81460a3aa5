"""What a fleet is to read, in the words of `Fleet.add`, and its values back."""

import datetime
from typing import Any, Dict, Iterator, List, Tuple

from ._records import HarvlinkFleetItem, HarvlinkFleetSample
from .controller_state import OperatingTime, State, SystemInformation, local_time
from .enums import ControlMode, CoordinateType, CycleMode, FleetItemKind, TimeType, group_number
from .fault import Alarm
from .job import Job
from .position import from_record

_INDEXED = {
    "b": FleetItemKind.BYTE_VARIABLE,
    "i": FleetItemKind.INTEGER_VARIABLE,
    "d": FleetItemKind.DOUBLE_INT_VARIABLE,
    "r": FleetItemKind.REAL_VARIABLE,
    "s": FleetItemKind.STRING_VARIABLE,
    "p": FleetItemKind.ROBOT_POSITION_VARIABLE,
    "bp": FleetItemKind.BASE_POSITION_VARIABLE,
    "ex": FleetItemKind.STATION_POSITION_VARIABLE,
    "signal": FleetItemKind.SIGNAL,
    "signal_group": FleetItemKind.SIGNAL_GROUP,
    "register": FleetItemKind.REGISTER,
    "progress": FleetItemKind.TARGET_PROGRESS,
    "job": FleetItemKind.JOB,
    "software": FleetItemKind.SOFTWARE,
}
_GROUPED = {
    "position": FleetItemKind.POSITION,
    "torque": FleetItemKind.TORQUE,
    "position_error": FleetItemKind.POSITION_ERROR,
}
_PLAIN = {"state": FleetItemKind.STATE, "alarms": FleetItemKind.ALARMS}
_DEFAULT_INDEX = {"job": 0, "software": 11, "progress": 0}
_NAMES = {int(kind): name for names in (_INDEXED, _GROUPED, _PLAIN) for name, kind in names.items()}
_NAMES[int(FleetItemKind.OPERATING_TIME)] = "operating_time"
_COORDINATES = {"pulse": CoordinateType.PULSE, "base": CoordinateType.BASE, "robot": CoordinateType.ROBOT}


def items(name: str, wanted: Any) -> Iterator[Tuple[float, HarvlinkFleetItem]]:
    """The items that one argument of `Fleet.add` asks for, each with its period in seconds."""
    if isinstance(wanted, list):
        for one in wanted:
            yield from items(name, one)
        return
    *place, period = wanted if isinstance(wanted, tuple) else (wanted,)
    yield float(period), _item(name, place)


def _item(name: str, place: List[Any]) -> HarvlinkFleetItem:
    item = HarvlinkFleetItem(count=1, group=1, axis=-1)
    if name in _PLAIN and not place:
        item.kind = _PLAIN[name]
    elif name in _GROUPED and place:
        item.kind = _GROUPED[name]
        _set_group(item, name, place)
    elif name in _INDEXED and (len(place) == 1 or (not place and name in _DEFAULT_INDEX)):
        item.kind = _INDEXED[name]
        _set_index(item, place[0] if place else _DEFAULT_INDEX[name])
    elif name == "operating_time" and 1 <= len(place) <= 2:
        item.kind, item.index = FleetItemKind.OPERATING_TIME, int(TimeType(place[0]))
        item.group = group_number(place[1]) if len(place) == 2 else 1
    else:
        known = ", ".join(sorted((*_PLAIN, *_GROUPED, *_INDEXED, "operating_time")))
        raise ValueError(f"a fleet can't read {name} with {tuple(place)!r}; there are: {known}")
    return item


def _set_group(item: HarvlinkFleetItem, name: str, place: List[Any]) -> None:
    item.group = group_number(place[0])
    for further in place[1:]:
        if isinstance(further, str) and name == "position" and further in _COORDINATES:
            item.coordinate = _COORDINATES[further]
        elif isinstance(further, CoordinateType) and name == "position":
            item.coordinate = further
        elif isinstance(further, int) and not isinstance(further, bool):
            item.axis = further
        else:
            raise ValueError(f"{name} takes a group, a coordinate type and an axis, not {further!r}")


def _set_index(item: HarvlinkFleetItem, index: Any) -> None:
    if isinstance(index, range):
        if index.step != 1 or not index:
            raise ValueError(f"{index!r} is not one number after the other")
        item.index, item.count = index.start, len(index)
    elif isinstance(index, int) and index >= 0:
        item.index = index
    else:
        raise ValueError(f"{index!r} is neither a number from 0 up nor a range")


def name_of(item: HarvlinkFleetItem) -> str:
    """A short name, such as "state", "b5", "signal 10010" or "position R1 axis 2"."""
    name = _NAMES.get(item.kind, f"kind {item.kind}")
    if item.kind in (FleetItemKind.STATE, FleetItemKind.ALARMS):
        return name
    if name in _GROUPED:
        axis = f" axis {item.axis}" if item.axis >= 0 else ""
        type_ = f" {CoordinateType(item.coordinate).name.lower()}" if name == "position" else ""
        return f"{name} {_group_name(item.group)}{type_}{axis}"
    return f"{name}{item.index}" if len(name) <= 2 else f"{name} {item.index}"


def _group_name(number: int) -> str:
    return ("R", "B", "S")[min((number - 1) // 10, 2)] + str(number - 10 * min((number - 1) // 10, 2))


def value_of(sample: HarvlinkFleetSample) -> Any:
    """The value as the methods of a connection return it."""
    kind = FleetItemKind(sample.item.kind)
    if kind in _READERS:
        return _READERS[kind](sample)
    if kind == FleetItemKind.POSITION and sample.item.axis >= 0:
        return sample.real
    if kind.name.endswith("POSITION_VARIABLE") or kind == FleetItemKind.POSITION:
        return from_record(sample.position)
    if kind in (FleetItemKind.TORQUE, FleetItemKind.POSITION_ERROR):
        return sample.integer if sample.item.axis >= 0 else tuple(sample.axes)
    return sample.integer


def _text(raw: bytes) -> str:
    return raw.decode("latin-1")


def _state(sample: HarvlinkFleetSample) -> State:
    state = sample.state
    return State(
        CycleMode(state.cycleMode),
        state.isRunning,
        ControlMode(state.controlMode),
        state.isProgramPendantHold,
        state.isAlarming,
        state.isErroring,
        state.isServoOn,
    )


def _alarms(sample: HarvlinkFleetSample) -> List[Alarm]:
    return [
        Alarm(alarm.code, alarm.subcode, _text(alarm.time), _text(alarm.name)) for alarm in sample.alarms if alarm.code
    ]


def _operating_time(sample: HarvlinkFleetSample) -> OperatingTime:
    elapsed = sample.elapsedTime
    return OperatingTime(
        local_time(sample.integer),
        datetime.timedelta(hours=elapsed.hours, minutes=elapsed.minutes, seconds=elapsed.seconds),
    )


_READERS: Dict[int, Any] = {
    FleetItemKind.STATE: _state,
    FleetItemKind.JOB: lambda s: Job(_text(s.text), s.line, s.step, s.real),
    FleetItemKind.ALARMS: _alarms,
    FleetItemKind.REAL_VARIABLE: lambda s: s.real,
    FleetItemKind.TARGET_PROGRESS: lambda s: s.real,
    FleetItemKind.STRING_VARIABLE: lambda s: _text(s.text),
    FleetItemKind.SIGNAL: lambda s: s.integer != 0,
    FleetItemKind.OPERATING_TIME: _operating_time,
    FleetItemKind.SOFTWARE: lambda s: SystemInformation(_text(s.software), _text(s.text)),
}
