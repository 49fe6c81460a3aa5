"""The number that a queued motion has in the controller's count of reached targets."""

import collections
import threading
from typing import Any, Deque, Dict, Iterable, Optional, Tuple

# Older motions than these count as never queued.
_REMEMBERED = 1024


class TargetCount:
    """Counts the targets of each group since the controller last cleared them. Opening a connection clears them too."""

    def __init__(self) -> None:
        self.lock = threading.Lock()
        self._restart(True)

    def _restart(self, is_known: bool) -> None:
        self._is_known = is_known
        self._queued: Dict[int, int] = collections.defaultdict(int)
        self._reached: Dict[int, float] = collections.defaultdict(float)
        self._motions: Deque[Tuple[Any, int]] = collections.deque(maxlen=_REMEMBERED)

    def add(self, targets: Iterable[Tuple[int, Any]]) -> None:
        """Adds the targets of one step, by group. The caller holds the lock, so that the order is that of the queue."""
        for group, motion in dict(targets).items():
            self._queued[group] += 1
            self._motions.append((motion, self._queued[group]))

    def clear(self) -> None:
        """Starts again after the controller has cleared its targets."""
        with self.lock:
            self._restart(True)

    def forget(self) -> None:
        """The controller may have cleared its targets: the count is unknown until `clear`."""
        with self.lock:
            if self._queued:
                self._restart(False)

    def number(self, motion: Any) -> Optional[int]:
        """The number of a motion when it was last queued. None if it is not known for sure."""
        with self.lock:
            numbers = (number for queued, number in reversed(self._motions) if queued is motion)
            return next(numbers, None) if self._is_known else None

    def is_followed(self, group: int, number: int) -> bool:
        """Whether another target of the group was queued after this one, so that the group does not stay there."""
        with self.lock:
            return number < self._queued[group]

    def see(self, group: int, progress: float) -> None:
        """Takes a progress that the controller reported. If it went back, another program has cleared the targets."""
        with self.lock:
            if progress >= self._reached[group]:
                self._reached[group] = progress
                return
        self.forget()
