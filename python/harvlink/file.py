"""The files of the controller. A transfer blocks until it ends; run only one at a time."""

import ctypes
from typing import Callable, List, TypeVar, Union

from . import _records
from ._library import Path, path_bytes, switch
from ._link import Link
from ._whole_file import write_whole
from .enums import ErrorCode, FileType
from .errors import Error

Kind = Union[FileType, str]
"""A kind of files by number or by extension, such as "JBI"."""


def _kind_number(kind: Kind) -> int:
    if not isinstance(kind, str):
        return int(kind)
    try:
        return int(FileType[kind.upper().lstrip(".")])
    except KeyError:
        raise ValueError(f"{kind!r} is none of {', '.join(FileType.__members__)}") from None


_Result = TypeVar("_Result")
_MOST_REPEATS = 3
_LOST = (ErrorCode.RESPONSE_TIMEOUT, ErrorCode.FILE_BLOCK_MISSING, ErrorCode.ANSWER_TOO_SHORT)


def _repeatedly(read: Callable[[], _Result]) -> _Result:
    """Reads again up to three times if an answer was lost or damaged on the way: a read is safe to repeat."""
    for _ in range(_MOST_REPEATS):
        try:
            return read()
        except Error as error:
            if error.code not in _LOST:
                raise
    return read()


class Files:
    """A list, a count or a download starts again up to three times if a block is lost or damaged on the way."""

    def __init__(self, link: Link) -> None:
        self._link = link

    def list(self, kind: Kind, in_order: bool = True) -> List[str]:
        """The names of the files of a kind, in byte order if `in_order`."""
        in_order = switch("in_order", in_order)
        number = _kind_number(kind)

        def read() -> str:
            status = _records.IStatusInfo()
            names = self._link.call("file_interface_ListFiles", number, ctypes.byref(status), in_order)
            text = self._link.text(names)
            self._link.settle(status)
            return text

        return _repeatedly(read).split("\n")[:-1]

    def count(self, kind: Kind) -> int:
        count = ctypes.c_int()
        number = _kind_number(kind)
        _repeatedly(lambda: self._link.do("file_interface_GetFileCount", number, ctypes.byref(count)))
        return count.value

    def get(self, name: str) -> str:
        """A text file, with the controller's line ends. Use `download` for files that contain zero bytes."""
        wanted = self._link.encoded(name)

        def read() -> str:
            status = _records.IStatusInfo()
            content = self._link.call("file_interface_SaveFromControllerToString", wanted, ctypes.byref(status))
            text = self._link.text(content)
            self._link.settle(status)
            return text

        return _repeatedly(read)

    def put(self, name: str, text: str) -> None:
        """Stores a text as a file, with CR LF line ends. The "//NAME" line of a job must match the file name."""
        self._link.do("file_interface_LoadToControllerFromString", self._link.encoded(name), self._link.encoded(text))

    def download(self, name: str, path: Path, overwrite: bool = False) -> None:
        """Fetches a file and writes it to a path of this computer. What is at the path changes only when the whole file
        has been received and written."""
        wanted = self._link.encoded(name)

        def fetch(place: bytes) -> None:
            arguments = (wanted, place, True)
            _repeatedly(lambda: self._link.do("file_interface_SaveFromControllerToFile", *arguments))

        write_whole(path_bytes(path), switch("overwrite", overwrite), fetch)

    def upload(self, path: Path) -> None:
        """Stores a file of this computer under its own name. Warns if the controller does not list a stored job."""
        self._link.do("file_interface_LoadToControllerFromPath", path_bytes(path))

    def delete(self, name: str) -> None:
        """Deletes a job; ".JBI" may be left out."""
        self._link.do("file_interface_DeleteJobFile", self._link.encoded(name))
