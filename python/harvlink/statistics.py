"""What a connection has seen of its link since it was opened."""

import ctypes
import dataclasses
import datetime
from typing import Dict

from ._link import Link
from ._records import HarvlinkConnectionStatistics
from .enums import RULES, LinkState

_EPOCH = datetime.datetime(1970, 1, 1, tzinfo=datetime.timezone.utc)


@dataclasses.dataclass(frozen=True)
class RoundTrip:
    """Of the last 1024 answered exchanges, in seconds; all 0 while there was none."""

    count: int
    least: float
    median: float
    percentile95: float
    most: float


@dataclasses.dataclass(frozen=True)
class Statistics:
    """Counters and times of one connection.

    `rules`: how often each rule has refused something, or would have in an audit. `link_since`: when the link came into
    this state, in UTC. One lost answer is not a lost link: it is silent after three exchanges in a row without an answer.
    """

    exchanges: int
    timeouts: int
    late_answers: int
    doubled_answers: int
    foreign_answers: int
    malformed_answers: int
    repeated_requests: int
    start_up_retries: int
    blocks_received: int
    blocks_sent: int
    bytes_received: int
    bytes_sent: int
    round_trip: RoundTrip
    rules: Dict[str, int]
    link: LinkState
    link_since: datetime.datetime


def read_statistics(link: Link) -> Statistics:
    record = HarvlinkConnectionStatistics(size=ctypes.sizeof(HarvlinkConnectionStatistics))
    link.do("harvlink_get_connection_statistics", ctypes.byref(record))
    return Statistics(
        record.exchanges,
        record.timeouts,
        record.lateAnswers,
        record.doubledAnswers,
        record.foreignAnswers,
        record.malformedAnswers,
        record.repeatedRequests,
        record.startUpRetries,
        record.blocksReceived,
        record.blocksSent,
        record.bytesReceived,
        record.bytesSent,
        RoundTrip(
            record.roundTripCount,
            record.leastMicroseconds / 1e6,
            record.medianMicroseconds / 1e6,
            record.percentile95Microseconds / 1e6,
            record.mostMicroseconds / 1e6,
        ),
        dict(zip(RULES, record.ruleCounts)),
        LinkState(record.linkState),
        _EPOCH + datetime.timedelta(microseconds=record.linkStateSince),
    )
