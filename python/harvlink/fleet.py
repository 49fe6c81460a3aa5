"""Many controllers watched from one thread of the library, which only reads."""

import asyncio
import ctypes
import dataclasses
import threading
from types import TracebackType
from typing import Any, AsyncIterator, Dict, Iterator, List, Optional, Tuple, Type

from . import _records as records
from ._connect_options import checked_address
from ._fleet_items import items, name_of, value_of
from ._library import exact, load, switch, without_zero
from ._records import IStatusInfo
from .enums import FleetEventKind, FleetQuality, FleetState
from .errors import settle

_BATCH = 256
_NANO = 1e-9
_WAIT = 0.2
"""Seconds after which an iteration looks whether the fleet was stopped."""


@dataclasses.dataclass(frozen=True)
class Sample:
    """One value of one item. `value` is what the method of a connection that reads the same returns, and None if there is
    none: then `code` says why. Times are in seconds since the epoch, by the clock of this computer."""

    controller: str
    item: str
    value: Any
    quality: FleetQuality
    code: int
    request_time: float
    answer_time: float


@dataclasses.dataclass(frozen=True)
class Event:
    """What happened to a controller. `before` and `after` are numbers of the state or mode; `text` names what changed."""

    controller: str
    kind: FleetEventKind
    time: float
    before: int
    after: int
    code: int
    text: str


@dataclasses.dataclass(frozen=True)
class FleetPlan:
    """What a controller costs. Its periods can be kept up to a mean round trip of so many seconds; 0: not at all."""

    controller: str
    exchanges_per_second: float
    longest_round_trip: float


@dataclasses.dataclass(frozen=True)
class FleetStatistics:
    """How a controller does; the lists are by group, in the order of their periods in `add`."""

    controller: str
    state: FleetState
    exchanges: int
    timeouts: int
    repeated_requests: int
    late_answers: int
    malformed_answers: int
    refusals: int
    start_ups: int
    rounds: List[int]
    overruns: List[int]
    effective_rates: List[float]


class Fleet:
    """Watches controllers. It starts with the first sample, event or value that is asked for, or with `start`.

        with harvlink.Fleet() as fleet:
            fleet.add("press1", "192.168.1.31", state=0.1, position=("R1", 0.05))
            for sample in fleet:
                print(sample.controller, sample.item, sample.value)

    `async for` works too. The methods may be called from several threads.
    """

    def __init__(self, queue_capacity: int = 16384) -> None:
        self._library = load()
        self._lock = threading.Lock()
        self._running = 0
        self._idle = threading.Condition(self._lock)
        status = IStatusInfo()
        self._is_stopped = False
        self._handle = self._library.call(
            "harvlink_fleet_create", exact(ctypes.c_uint32, queue_capacity), ctypes.byref(status)
        )
        settle(status)

    def add(
        self,
        name: str,
        address: str,
        *,
        timeout: float = 0.5,
        retries: int = 3,
        lanes: int = 1,
        gap: float = 0.0,
        most_requests_per_second: float = 0.0,
        on_change: bool = False,
        longest_silence: float = 0.0,
        **wanted: Any,
    ) -> None:
        """Adds a controller with what is to be read of it: a period in seconds, or a tuple that ends with one, or a list of
        such tuples.

            state=0.1, alarms=1.0, job=0.5, software=60.0
            position=("R1", 0.05), ("R1", "base", 0.05) or ("R1", "base", 2, 0.05) for one axis; torque, position_error
            b=(5, 0.1) or (range(0, 20), 1.0), and so i, d, r, s, p, bp, ex, signal, signal_group and register
            operating_time=(TimeType.CONTROL_POWER, 60.0), progress=(0, 0.1)

        With `on_change`, samples come of what has changed, and at the latest after `longest_silence` seconds. Raises
        harvlink.Error with the item in its text if something can't be read; nothing was added then.
        """
        options = _options(address, timeout, retries, lanes, gap, most_requests_per_second)
        groups = _groups(wanted, switch("on_change", on_change), longest_silence)
        settle(self._call("add", without_zero(name.encode()), ctypes.byref(options), groups, len(groups)))

    def change(
        self,
        name: str,
        address: str,
        *,
        timeout: float = 0.5,
        retries: int = 3,
        lanes: int = 1,
        gap: float = 0.0,
        most_requests_per_second: float = 0.0,
        on_change: bool = False,
        longest_silence: float = 0.0,
        **wanted: Any,
    ) -> None:
        """Replaces all that `add` said of a controller, also while the fleet runs; its values are read again. Raises
        harvlink.Error as `add` does, or if there is none of this name; the controller goes on as before then."""
        options = _options(address, timeout, retries, lanes, gap, most_requests_per_second)
        groups = _groups(wanted, switch("on_change", on_change), longest_silence)
        settle(self._call("change", without_zero(name.encode()), ctypes.byref(options), groups, len(groups)))

    def remove(self, name: str) -> None:
        """Ends watching a controller. Raises harvlink.Error if there is none of this name."""
        settle(self._call("remove", without_zero(name.encode())))

    def plan(self) -> List[FleetPlan]:
        """What each controller costs. Sends nothing."""
        plans = self._all("plan", records.HarvlinkFleetPlan)
        return [FleetPlan(_text(p.controller), p.exchangesPerSecond, p.longestRoundTrip * _NANO) for p in plans]

    def start(self) -> None:
        """Begins to read."""
        settle(self._call("start"))

    def stop(self) -> None:
        """Ends reading, and the iterations over samples."""
        self._is_stopped = True
        self._call("stop")

    def take(self, wait: float = 1.0) -> List[Sample]:
        """The samples that are there, 256 at most, after waiting for the first; empty if none came in time."""
        return [_sample(raw) for raw in self._take("take", records.HarvlinkFleetSample, wait)]

    def events(self, wait: float = 0.0) -> List[Event]:
        """The same for events."""
        return [
            Event(_text(e.controller), FleetEventKind(e.kind), e.time * _NANO, e.before, e.after, e.code, _text(e.text))
            for e in self._take("take_events", records.HarvlinkFleetEvent, wait)
        ]

    def samples(self) -> List[Sample]:
        """The last value of each item of each controller."""
        self.start()
        return [_sample(raw) for raw in self._all("latest", records.HarvlinkFleetSample, None)]

    def latest(self) -> Dict[str, List[Any]]:
        """The same as columns, for pandas.DataFrame(fleet.latest()) and the like."""
        rows = self.samples()
        return {field.name: [getattr(row, field.name) for row in rows] for field in dataclasses.fields(Sample)}

    def statistics(self) -> List[FleetStatistics]:
        """How each controller does."""
        return [_statistics(raw) for raw in self._all("statistics", records.HarvlinkFleetStatistics, after=(None,))]

    def close(self) -> None:
        """Stops, waits for the operations of other threads, and frees the fleet."""
        self._is_stopped = True
        with self._idle:
            handle, self._handle = self._handle, None
            self._idle.wait_for(lambda: self._running == 0)
        if handle is not None:
            self._library.call("harvlink_fleet_destroy", handle)

    def __enter__(self) -> "Fleet":
        return self

    def __exit__(
        self, kind: Optional[Type[BaseException]], error: Optional[BaseException], trace: Optional[TracebackType]
    ) -> None:
        self.close()

    def __iter__(self) -> Iterator[Sample]:
        self.start()
        self._is_stopped = False
        while not self._is_stopped:
            yield from self.take(_WAIT)

    async def __aiter__(self) -> AsyncIterator[Sample]:
        self.start()
        self._is_stopped = False
        loop = asyncio.get_running_loop()
        while not self._is_stopped:
            for sample in await loop.run_in_executor(None, self.take, _WAIT):
                yield sample

    def _call(self, name: str, *arguments: Any) -> Any:
        with self._idle:
            if self._handle is None:
                raise ValueError("the fleet is closed")
            handle = self._handle
            self._running += 1
        try:
            return self._library.call("harvlink_fleet_" + name, handle, *arguments)
        finally:
            with self._idle:
                self._running -= 1
                self._idle.notify_all()

    def _take(self, name: str, record: Any, wait: float) -> Any:
        self.start()
        batch = (record * _BATCH)()
        return batch[: self._call(name, batch, _BATCH, max(round(wait * 1000), 0))]

    def _all(self, name: str, record: Any, *before: Any, after: Tuple[Any, ...] = ()) -> Any:
        """Asks again with more room if there are more than thought."""
        room = 0
        while True:
            array = (record * room)()
            count = self._call(name, *before, array, room, *after)
            if count <= room:
                return array[:count]
            room = count


def _options(
    address: str, timeout: float, retries: int, lanes: int, gap: float, most_requests_per_second: float
) -> Any:
    return records.HarvlinkFleetOptions(
        size=ctypes.sizeof(records.HarvlinkFleetOptions),
        timeout=exact(ctypes.c_uint32, round(timeout * 1000)),
        address=checked_address(address).encode("ascii"),
        retries=exact(ctypes.c_uint32, retries),
        lanes=exact(ctypes.c_uint32, lanes),
        gap=exact(ctypes.c_uint32, round(gap * 1e6)),
        generation=-1,
        mostRequestsPerSecond=most_requests_per_second,
    )


def _groups(wanted: Dict[str, Any], on_change: bool, longest_silence: float) -> Any:
    """One group for each period."""
    by_period: Dict[float, List[records.HarvlinkFleetItem]] = {}
    for name, asked in wanted.items():
        for period, item in items(name, asked):
            by_period.setdefault(period, []).append(item)
    groups = (records.HarvlinkFleetGroup * len(by_period))()
    for group, (period, members) in zip(groups, by_period.items()):
        group.period = exact(ctypes.c_int64, round(period * 1e9))
        group.items = (records.HarvlinkFleetItem * len(members))(*members)
        group.itemCount = len(members)
        group.onChange = on_change
        group.longestSilence = exact(ctypes.c_int64, round(longest_silence * 1000))
    return groups


def _text(raw: bytes) -> str:
    return raw.decode("utf-8", "replace")


def _sample(raw: records.HarvlinkFleetSample) -> Sample:
    quality = FleetQuality(raw.quality)
    has_value = quality in (FleetQuality.GOOD, FleetQuality.STALE)
    return Sample(
        _text(raw.controller),
        name_of(raw.item),
        value_of(raw) if has_value else None,
        quality,
        raw.code,
        raw.requestTime * _NANO,
        raw.answerTime * _NANO,
    )


def _statistics(raw: records.HarvlinkFleetStatistics) -> FleetStatistics:
    return FleetStatistics(
        _text(raw.controller),
        FleetState(raw.state),
        raw.exchanges,
        raw.timeouts,
        raw.repeatedRequests,
        raw.lateAnswers,
        raw.malformedAnswers,
        raw.refusals,
        raw.startUps,
        list(raw.rounds[: raw.groups]),
        list(raw.overruns[: raw.groups]),
        list(raw.effectiveRates[: raw.groups]),
    )
