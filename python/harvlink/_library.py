"""Finds and loads the shared object, and calls its functions with arguments that fit."""

import ctypes
import functools
import operator
import os
import pathlib
from typing import Any, Iterator, Sequence, Union

from ._prototypes import PROTOTYPES

Path = Union[str, "os.PathLike[str]"]
"""A path of this computer."""

_IS_WINDOWS = os.name == "nt"
FILE_NAME = "harvlink.dll" if _IS_WINDOWS else "libharvlink.so"
_INSTALLED_NAME = FILE_NAME if _IS_WINDOWS else "libharvlink.so.1"
_INTEGERS = (ctypes.c_int, ctypes.c_int32, ctypes.c_ubyte, ctypes.c_ushort, ctypes.c_uint, ctypes.c_uint32)


def exact(integer: Any, value: int) -> int:
    """Returns `value` if it fits the C type. ctypes alone would silently cut off the high bits."""
    value = operator.index(value)
    if integer(value).value != value:
        raise OverflowError(f"{value} does not fit into {8 * ctypes.sizeof(integer)} bits")
    return value


def switch(name: str, value: bool) -> bool:
    """Returns `value` if it is a bool. Python would otherwise take a text such as "off" as true."""
    if not isinstance(value, bool):
        raise TypeError(f"{name} takes True or False, not {value!r}")
    return value


def path_bytes(path: Path) -> bytes:
    """A path in the encoding of this computer's file system."""
    return without_zero(os.fsencode(path))


def without_zero(text: bytes) -> bytes:
    """The text itself, which a zero byte would end."""
    if b"\0" in text:
        raise ValueError("a text must not contain a zero byte: it would end there")
    return text


class Library:
    """The functions of one shared object, by name."""

    def __init__(self, path: str) -> None:
        self.path = path
        shared_object = ctypes.CDLL(path)
        for name, (result, *arguments) in PROTOTYPES.items():
            function = getattr(shared_object, name)
            function.restype, function.argtypes = result, arguments
            setattr(self, name, function)

    def call(self, name: str, *arguments: Any) -> Any:
        function = getattr(self, name)
        return function(*_checked(function.argtypes, arguments))


def _checked(types: Sequence[Any], arguments: Sequence[Any]) -> Iterator[Any]:
    for expected, argument in zip(types, arguments):
        yield exact(expected, argument) if expected in _INTEGERS else argument


def candidates() -> Iterator[pathlib.Path]:
    """Paths where the shared object may be: HARVLINK_LIBRARY, beside the package, the build folders of a checkout."""
    if "HARVLINK_LIBRARY" in os.environ:
        # A user who sets it must not get another library by accident.
        yield pathlib.Path(os.environ["HARVLINK_LIBRARY"])
        return
    package = pathlib.Path(__file__).resolve().parent
    yield package / FILE_NAME
    for build in build_folders():
        yield build / "src" / FILE_NAME


def build_folders() -> Iterator[pathlib.Path]:
    """The build folders of the checkout, if the package lies in one."""
    checkout = pathlib.Path(__file__).resolve().parents[2]
    for build in ("build/windows",) if _IS_WINDOWS else ("build/release", "build/debug", "build"):
        yield checkout / build


@functools.lru_cache(maxsize=None)
def load() -> Library:
    """Loads the library once. Raises OSError if it is missing."""
    found = next((path for path in candidates() if path.is_file()), None)
    if found is None and "HARVLINK_LIBRARY" in os.environ:
        raise OSError(f"HARVLINK_LIBRARY does not name a file: {os.environ['HARVLINK_LIBRARY']}")
    # Otherwise the system's loader looks for an installed one.
    return Library(str(found or _INSTALLED_NAME))
