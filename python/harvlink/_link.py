"""One open connection. Several threads can use it, and it is closed once."""

import contextlib
import ctypes
import threading
from typing import Any, Iterator, Optional

from ._library import Library, without_zero
from ._owned_text import OwnedText
from ._records import HarvlinkConnectOptions, IStatusInfo
from ._text import Encoding
from .errors import settle


class _Opening:
    """A thread that connects. The library waits without looking at signals, and Ctrl-C must not wait with it."""

    def __init__(self, library: Library, options: HarvlinkConnectOptions) -> None:
        self._library = library
        self._options = options
        self._lock = threading.Lock()
        self._done = threading.Event()
        self._is_wanted = True
        self.handle = None
        self.status = IStatusInfo()

    def run(self) -> None:
        self.handle = self._library.call("harvlink_connect", ctypes.byref(self._options), ctypes.byref(self.status))
        with self._lock:
            self._done.set()
            if not self._is_wanted:
                self._discard()

    def run_beside(self) -> None:
        """Runs in a thread, and stops to wait for it when a signal raises an exception."""
        try:
            threading.Thread(target=self.run, name="harvlink-connect", daemon=True).start()
            self._done.wait()
        except BaseException:
            with self._lock:
                self._is_wanted = False
                if self._done.is_set():
                    self._discard()
            raise

    def _discard(self) -> None:
        self.status.Message.take()
        self._library.call("close_connection", self.handle)


def _open(library: Library, options: HarvlinkConnectOptions) -> _Opening:
    opening = _Opening(library, options)
    if threading.current_thread() is threading.main_thread():  # the only one that signals interrupt
        opening.run_beside()
    else:
        opening.run()
    return opening


class Link:
    def __init__(self, library: Library, options: HarvlinkConnectOptions, encoding: Optional[Encoding] = None) -> None:
        self._library = library
        self._encoding = encoding or Encoding()
        self._idle = threading.Condition()
        self._running = 0
        self._handle = None
        opening = _open(library, options)
        try:
            settle(opening.status)
        except BaseException:
            library.call("close_connection", opening.handle)
            raise
        self._handle = opening.handle

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

    def text(self, owned: OwnedText) -> str:
        """Takes a text of the controller. Call it only once."""
        return self._encoding.decode(owned.take_bytes())

    def encoded(self, text: str) -> bytes:
        """A text for the controller."""
        return without_zero(self._encoding.encode(text))

    def settle(self, status: IStatusInfo) -> None:
        """Raises or warns as the status says; its text may quote the controller."""
        settle(status, self._encoding)

    def call(self, name: str, *arguments: Any) -> Any:
        """Returns what the function returns. The caller still has to settle a status."""
        with self._use() as handle:
            return self._library.call(name, handle, *arguments)

    def do(self, name: str, *arguments: Any) -> None:
        """Calls a function that returns a status and no other text, and settles the status."""
        self.settle(self.call(name, *arguments))

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
