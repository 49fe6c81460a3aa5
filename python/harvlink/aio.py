"""The package for asyncio: the same names, awaited.

    import harvlink.aio

    async with harvlink.aio.connect("127.0.0.1", access="operate") as robot:
        print(await robot.state(), await robot.variables.b[0:5])
        await robot.variables.b.write(5, 12)

Whatever is a call in harvlink is awaited here, and `view[5]` and `view[0:5]` too. An assignment can't be awaited: `view[5] = 12`
becomes `await view.write(5, 12)`. Arguments, results and errors are those of harvlink.

Each operation runs in a thread, so the event loop goes on. Cancelling ends the wait for an operation and not the operation: a
request that was sent stays sent, and closing waits for its answer.
"""

import asyncio
import concurrent.futures
import functools
from types import TracebackType
from typing import Any, Awaitable, Callable, Generator, Iterable, Optional, Type

from . import connection as _plain
from ._indexed import Indexed

_MOST_AT_ONCE = 16

_Run = Callable[..., Awaitable[Any]]


class _Awaited:
    """An object of harvlink whose calls are awaited."""

    def __init__(self, plain: Any, run: _Run) -> None:
        self._plain = plain
        self._run = run

    def __getattr__(self, name: str) -> Any:
        if name.startswith("_"):
            raise AttributeError(name)
        value = getattr(self._plain, name)
        if isinstance(value, Indexed):
            return _AwaitedIndexed(value, self._run)
        if callable(value):
            return _awaited(value, self._run)
        return _Awaited(value, self._run) if type(value).__module__.startswith("harvlink.") and not _is_value(value) else value

    def __dir__(self) -> Iterable[str]:
        return [name for name in dir(self._plain) if not name.startswith("_")]


class _AwaitedIndexed(_Awaited):
    def __getitem__(self, place: Any) -> Awaitable[Any]:
        return self._run(self._plain.__getitem__, place)

    def __setitem__(self, place: Any, value: Any) -> None:
        raise TypeError("an assignment can't be awaited: use `await view.write(place, value)`")


def _awaited(operation: Callable[..., Any], run: _Run) -> Callable[..., Awaitable[Any]]:
    @functools.wraps(operation)
    async def call(*arguments: Any, **options: Any) -> Any:
        return await run(operation, *arguments, **options)

    return call


def _is_value(value: Any) -> bool:
    """Numbers by name and the like stay as they are."""
    return isinstance(value, int)


class Robot(_Awaited):
    """A connection, closed at the end of an `async with` block; see harvlink.Robot."""

    def __init__(self, plain: _plain.Robot) -> None:
        self._threads = concurrent.futures.ThreadPoolExecutor(_MOST_AT_ONCE, "harvlink")
        super().__init__(plain, self._in_thread)

    async def _in_thread(self, operation: Callable[..., Any], *arguments: Any, **options: Any) -> Any:
        call = functools.partial(operation, *arguments, **options)
        try:
            future = asyncio.get_running_loop().run_in_executor(self._threads, call)
        except RuntimeError:
            raise ValueError("the connection is closed") from None
        return await future

    async def close(self) -> None:
        """Closes the connection; a second call does nothing. Waits for operations that run."""
        # Not in a thread of its own, which may all be busy with waiting.
        await asyncio.get_running_loop().run_in_executor(None, self._plain.close)
        self._threads.shutdown(wait=False)

    async def __aenter__(self) -> "Robot":
        return self

    async def __aexit__(
        self, kind: Optional[Type[BaseException]], error: Optional[BaseException], traceback: Optional[TracebackType]
    ) -> None:
        await self.close()


class _Connecting:
    """`await connect(...)` and `async with connect(...) as robot` both work."""

    def __init__(self, connecting: Callable[[], _plain.Robot]) -> None:
        self._connecting = connecting
        self._robot: Optional[Robot] = None

    def __await__(self) -> Generator[Any, None, Robot]:
        return self._connect().__await__()

    async def __aenter__(self) -> Robot:
        self._robot = await self._connect()
        return self._robot

    async def __aexit__(
        self, kind: Optional[Type[BaseException]], error: Optional[BaseException], traceback: Optional[TracebackType]
    ) -> None:
        if self._robot is not None:
            await self._robot.close()

    async def _connect(self) -> Robot:
        future = asyncio.get_running_loop().run_in_executor(None, self._connecting)
        try:
            return Robot(await asyncio.shield(future))
        except asyncio.CancelledError:
            future.add_done_callback(_close_result)
            raise


def _close_result(future: "asyncio.Future[_plain.Robot]") -> None:
    if not future.cancelled() and future.exception() is None:
        future.result().close()


@functools.wraps(_plain.connect)
def connect(*arguments: Any, **options: Any) -> _Connecting:
    return _Connecting(functools.partial(_plain.connect, *arguments, **options))
