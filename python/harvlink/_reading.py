"""Many things in one call, by names, with results that go into a table."""

import dataclasses
import enum
import re
from typing import TYPE_CHECKING, Any, Dict, Iterable, Iterator, Tuple, Union

from .enums import CoordinateType, group_number
from .position import Position

if TYPE_CHECKING:
    from .connection import Robot

Scalar = Union[bool, int, float, str]
Items = Union[str, int, Iterable[Union[str, int]]]

_RANGE = re.compile(r"(?P<kind>[A-Za-z]*)(?P<first>\d+)(?:\.\.(?P=kind)(?P<last>\d+))?")
_VARIABLES = ("b", "i", "d", "r", "s", "p", "bp", "ex")
_OF_GROUPS = ("position", "torque", "position_error")


def read_items(robot: "Robot", items: Items) -> Dict[str, Scalar]:
    items = [items] if isinstance(items, (str, int)) else list(items)
    readers = [(str(item), _reader(robot, str(item))) for item in items]  # names are checked before anything is sent
    return {name: value for item, read in readers for name, value in read()}


def _reader(robot: "Robot", item: str) -> Any:
    """A function that reads the item and returns its columns."""
    found = _RANGE.fullmatch(item)
    if found:
        return _range_reader(robot, item, found)
    word, _, rest = item.partition(".")
    if item == "state":
        return lambda: _columns("state", robot.state())
    if item == "job":
        return lambda: _columns("job", robot.jobs.executing())
    if word in _OF_GROUPS and rest:
        group, _, kind = rest.partition(".")
        if kind and (word != "position" or kind.upper() not in CoordinateType.__members__):
            raise ValueError(f"{item!r}: {kind!r} is none of {', '.join(CoordinateType.__members__).lower()}")
        group_number(group)  # raises for a group that there is not
        arguments = (group, CoordinateType[kind.upper()]) if kind else (group,)
        return lambda: _columns(item, getattr(robot.groups, word)(*arguments))
    raise ValueError(
        f"{item!r} can't be read. There are: B5 or B0..B9 (also I, D, R, S, P, BP, EX), M5 for a register, 10010 for a signal, "
        'state, job, position.R1 or position.R1.base, torque.R1, position_error.R1'
    )


def _range_reader(robot: "Robot", item: str, found: "re.Match[str]") -> Any:
    kind, first = found["kind"].lower(), int(found["first"])
    last = int(found["last"] or first)
    if last < first:
        raise ValueError(f"{item!r} does not go upwards")
    if kind in _VARIABLES:
        view: Any = getattr(robot.variables, kind)
    elif kind in ("", "m"):
        view = robot.io if kind == "" else robot.io.registers
    else:
        raise ValueError(f"{item!r}: {found['kind']!r} is none of {', '.join(_VARIABLES).upper()} and M")

    def read() -> Iterator[Tuple[str, Scalar]]:
        numbers = view._places(range(first, last + 1))
        for number, value in zip(numbers, view[first : last + 1]):
            yield from _columns(f"{kind.upper()}{number}", value)

    return read


def _columns(name: str, value: Any) -> Iterator[Tuple[str, Scalar]]:
    """Plain values by name: pandas makes a column of each."""
    if isinstance(value, Position):
        value = value.axes
    if isinstance(value, tuple):
        for axis, each in enumerate(value, 1):
            yield f"{name}.{axis}", each
    elif dataclasses.is_dataclass(value):
        for field in dataclasses.fields(value):
            yield from _columns(f"{name}.{field.name}", getattr(value, field.name))
    elif isinstance(value, enum.Enum):
        yield name, value.name
    else:
        yield name, value
