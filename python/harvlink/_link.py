"""One open connection. Several threads can use it, and it is closed once."""

import contextlib
import ctypes
import threading
from typing import Any, Iterator

from ._library import Library
from ._records import HarvlinkConnectOptions, IStatusInfo
from .errors import settle


class Link:
    def __init__(self, library: Library, options: HarvlinkConnectOptions) -> None:
        self._library = library
        self._idle = threading.Condition()
        self._running = 0
        self._handle = None
        status = IStatusInfo()
        handle = library.call("harvlink_connect", ctypes.byref(options), ctypes.byref(status))
        try:
            settle(status)
        except BaseException:
            library.call("close_connection", handle)
            raise
        self._handle = handle

    @property
    def is_open(self) -> bool:
        return self._handle is not None

    def close(self) -> None:
        """Waits for the operations of other threads, then ends the connection."""
        with self._idle:
            handle, self._handle = self._handle, None
            self._idle.wait_for(lambda: self._running == 0)
        if handle is not None:
            self._library.call("close_connection", handle)

    def call(self, name: str, *arguments: Any) -> Any:
        """Returns what the function returns. The caller still has to settle a status."""
        with self._use() as handle:
            return self._library.call(name, handle, *arguments)

    def do(self, name: str, *arguments: Any) -> None:
        """Calls a function that returns a status and no other text, and settles the status."""
        settle(self.call(name, *arguments))

    @contextlib.contextmanager
    def _use(self) -> Iterator[Any]:
        with self._idle:
            if self._handle is None:
                raise ValueError("the connection is closed")
            handle = self._handle
            self._running += 1
        try:
            yield handle
        finally:
            with self._idle:
                self._running -= 1
                self._idle.notify_all()
