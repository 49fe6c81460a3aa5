"""Recordings of controllers, read with nothing but the standard library. The format is described in docs/recordings.md."""

import datetime
import os
import pathlib
from dataclasses import dataclass
from typing import TYPE_CHECKING, Any, Dict, Iterator, List, Optional, Set, Tuple, Union

from ._text import Encoding

if TYPE_CHECKING:
    import sqlite3

__all__ = ["Event", "Item", "Recording"]

Time = Union[datetime.datetime, float, None]

SCHEMA_VERSION = 1
_APPLICATION_ID = 0x48564C4B
_AT_ONCE = 4096  # rows; a read that lasts long would keep the recorder's log from being emptied


@dataclass(frozen=True)
class Item:
    """One value of a controller: its name is such as "position R1 base.x"."""

    controller: str
    name: str
    kind: str
    unit: str


@dataclass(frozen=True)
class Event:
    """Something that happened, or a gap in the recording: then `after` is the number of samples that are missing."""

    time: datetime.datetime
    controller: str
    kind: str
    before: int
    after: int
    code: int
    text: str
    card: str


class Recording:
    """A recording, read-only, also while it is being written::

        with harvlink.Recording("night.harvlink") as night:
            print(night.events)
            columns = night.columns("position R1 base.x", "state.servo")

    Raises ValueError for a file that is not a recording or is newer than this package, and FileNotFoundError.
    """

    def __init__(self, path: "str | os.PathLike[str]") -> None:
        self.path = pathlib.Path(path)
        if not self.path.is_file():
            raise FileNotFoundError(f"there is no recording {os.fspath(path)!r}")
        self._database = self._open()

    def _open(self) -> "sqlite3.Connection":
        # Not every interpreter has it, and only recordings need it.
        import sqlite3

        # A recording that was ended well is one file, which can be read in a folder that can't be written.
        for mode in ("mode=ro", "mode=ro&immutable=1"):
            database = sqlite3.connect(f"{self.path.resolve().as_uri()}?{mode}", uri=True, isolation_level=None, timeout=2)
            try:
                self._check(database)
                return database
            except sqlite3.DatabaseError as error:
                database.close()
                problem = error
            except ValueError:
                database.close()
                raise
        raise ValueError(f"{self.path}: this is not a recording: {problem}")

    def _check(self, database: "sqlite3.Connection") -> None:
        (application,) = database.execute("PRAGMA application_id").fetchone()
        (version,) = database.execute("PRAGMA user_version").fetchone()
        if application != _APPLICATION_ID:
            raise ValueError(f"{self.path}: this is not a recording")
        if version > SCHEMA_VERSION:
            raise ValueError(
                f"{self.path}: the recording has version {version} of the schema, this package reads up to version "
                f"{SCHEMA_VERSION}. Use a newer package"
            )
        # Reads a page of a table, which needs the log of a file that is being written.
        database.execute("SELECT count(*) FROM segments").fetchone()

    def close(self) -> None:
        self._database.close()

    def __enter__(self) -> "Recording":
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    def __repr__(self) -> str:
        return f"harvlink.Recording({os.fspath(self.path)!r})"

    @property
    def controllers(self) -> List[str]:
        """The names of the controllers."""
        return [name for (name,) in self._database.execute("SELECT name FROM controllers ORDER BY id")]

    @property
    def items(self) -> List[Item]:
        """What was recorded, a list of Item."""
        rows = self._database.execute(
            "SELECT c.name, i.name, i.kind, i.unit FROM items AS i JOIN readings AS r ON r.id = i.reading "
            "JOIN controllers AS c ON c.id = r.controller ORDER BY i.id"
        )
        return [Item(*row) for row in rows.fetchall()]

    @property
    def begin(self) -> Optional[datetime.datetime]:
        """The time of the first sample; None if there is none."""
        return _time(self._database.execute("SELECT min(begin_us) FROM segments").fetchone()[0])

    @property
    def end(self) -> Optional[datetime.datetime]:
        return _time(self._database.execute("SELECT max(end_us) FROM segments").fetchone()[0])

    @property
    def events(self) -> List[Event]:
        """Alarms, changes of mode, servo and job, silence, and gaps, in the order in which they happened."""
        rows = self._database.execute(
            "SELECT utc_us, controller, kind, before, after, code, text, card FROM history ORDER BY sequence"
        )
        return [Event(_time(row[0]), *map(_shown, row[1:])) for row in rows.fetchall()]

    def samples(
        self, *names: str, controller: Optional[str] = None, begin: Time = None, end: Time = None
    ) -> Iterator[Tuple[datetime.datetime, str, str, Any]]:
        """Yields (time, controller, item, value) for each change, in the order in which they were recorded. Full pictures,
        which repeat what is known, are left out. Value is None while the controller did not give one.

        names: items, or readings of several, such as "position R1 base"; all without any.
        begin, end: datetime with a time zone, or seconds since 1970.
        """
        chosen = self._choose(names, controller)
        first, last = _microseconds(begin, 0), _microseconds(end, 1 << 62)
        for utc, _, item, value, is_picture in self._rows(list(chosen), first, last, False):
            if not is_picture:
                yield (_time(utc), *chosen[item], value)

    def columns(
        self,
        *names: str,
        controller: Optional[str] = None,
        begin: Time = None,
        end: Time = None,
        frame: Optional[bool] = None,
    ) -> Any:
        """The same as columns: "time" (seconds since 1970) and one for each item, with a row for each time at which any of
        them changed and the value that was known then. A DataFrame with `frame=True`, lists in a dict with `frame=False`; by
        default a DataFrame if pandas is there. With several controllers, a column is called "press1 state.servo".
        """
        chosen = self._choose(names, controller)
        several = len({name for name, _ in chosen.values()}) > 1
        titles = {item: f"{of} {name}" if several else name for item, (of, name) in chosen.items()}
        times: List[float] = []
        known: Dict[int, Any] = dict.fromkeys(chosen)
        lists: Dict[int, List[Any]] = {item: [] for item in chosen}
        first, last = _microseconds(begin, 0), _microseconds(end, 1 << 62)
        for utc, _, item, value, is_picture in self._rows(list(chosen), first, last, True):
            known[item] = value
            if utc < first or (is_picture and times):
                continue
            if not times or times[-1] != utc / 1e6:
                times.append(utc / 1e6)
                for of, values in lists.items():
                    values.append(known[of])
            else:
                lists[item][-1] = value
        columns = {"time": times, **{titles[item]: values for item, values in lists.items()}}
        return columns if frame is False else _frame(columns, frame)

    def _choose(self, names: Tuple[str, ...], controller: Optional[str]) -> Dict[int, Tuple[str, str]]:
        rows = self._database.execute(
            "SELECT i.id, c.name, i.name, r.name FROM items AS i JOIN readings AS r ON r.id = i.reading "
            "JOIN controllers AS c ON c.id = r.controller ORDER BY i.id"
        ).fetchall()
        chosen: Dict[int, Tuple[str, str]] = {}
        found: Set[str] = set()
        for item, of, name, reading in rows:
            if (controller is None or of == controller) and (not names or name in names or reading in names):
                chosen[item] = (of, name)
                found |= {name, reading}
        missing = [name for name in names if name not in found]
        if missing or not chosen:
            raise KeyError(f"the recording has no {missing[0] if missing else controller!r}")
        return chosen

    def _rows(
        self, items: List[int], first: int, last: int, with_state: bool
    ) -> Iterator[Tuple[int, int, int, Any, int]]:
        """(utc, sequence, item, value, is_picture), a part of the recording at a time so that no read lasts long."""
        marks = ",".join("?" * len(items))
        query = (
            "SELECT answer_us, sequence, item, value, picture FROM item_values "
            f"WHERE sequence BETWEEN ? AND ? AND item IN ({marks}) ORDER BY sequence, answer_us, item"
        )
        segments = self._database.execute("SELECT first_sequence, last_sequence, begin_us, end_us FROM segments").fetchall()
        wanted = [one for one in segments if one[2] <= last and one[3] >= first]
        earlier = [one for one in segments if one[3] < first]
        if with_state and earlier and (not wanted or wanted[0][2] > first):
            wanted.insert(0, earlier[-1])
        for begin, end, *_ in wanted:
            for start in range(begin, end + 1, _AT_ONCE):
                stop = min(start + _AT_ONCE - 1, end)
                for row in self._database.execute(query, (start, stop, *items)).fetchall():
                    if row[0] <= last and (with_state or row[0] >= first):
                        yield (*row[:3], _shown(row[3]), row[4])


def _frame(columns: Dict[str, List[Any]], wanted: Optional[bool]) -> Any:
    try:
        import pandas
    except ImportError:
        if wanted:
            raise
        return columns
    frame = pandas.DataFrame(columns)
    frame.index = pandas.to_datetime(frame.pop("time"), unit="s", utc=True)
    return frame


def _shown(value: Any) -> Any:
    """The first recordings have texts as the controller sent them: as bytes if they are not UTF-8."""
    return Encoding().decode(value) if isinstance(value, bytes) else value


def _time(microseconds: Optional[int]) -> Any:
    if microseconds is None:
        return None
    begin = datetime.datetime(1970, 1, 1, tzinfo=datetime.timezone.utc)
    return begin + datetime.timedelta(microseconds=microseconds)


def _microseconds(time: Time, otherwise: int) -> int:
    if time is None:
        return otherwise
    if isinstance(time, datetime.datetime):
        return round(time.timestamp() * 1e6)
    return round(time * 1e6)
