"""Writes files of this computer so that there is the old one or the whole new one, whatever happens in between."""

import contextlib
import errno
import os
import shutil
import tempfile
from typing import Callable

from .enums import ErrorCode
from .errors import Error

_CANNOT_WRITE = 0x40000000


def write_whole(path: bytes, overwrite: bool, write: Callable[[bytes], None]) -> None:
    """Lets `write` fill a file beside the path and puts it there. A device or a pipe is written as it is."""
    target = os.path.realpath(path)
    if os.path.exists(target) and not os.path.isfile(target):
        _write_through(path, write)  # there is nothing in it that could be lost
        return
    if os.path.exists(target) and not overwrite:
        raise Error(ErrorCode.FILE_EXISTS_NO_OVERWRITE, "File already exists and overwrite flag is set to false.")
    try:
        folder = tempfile.mkdtemp(prefix=b".harvlink-", dir=os.path.dirname(target))
    except OSError as error:
        raise _cannot_write(path, error) from None
    try:
        part = os.path.join(folder, b"part")
        write(part)
        _put(part, target, overwrite)
    except OSError as error:
        raise _cannot_write(path, error) from None
    finally:
        shutil.rmtree(folder, ignore_errors=True)


def _write_through(path: bytes, write: Callable[[bytes], None]) -> None:
    with tempfile.TemporaryDirectory(prefix=b"harvlink-") as folder:
        part = os.path.join(folder, b"part")
        write(part)
        try:
            with open(part, "rb") as file, open(path, "wb") as device:
                shutil.copyfileobj(file, device)
        except OSError as error:
            raise _cannot_write(path, error) from None


def _put(part: bytes, target: bytes, overwrite: bool) -> None:
    with open(part, "r+b") as file:  # Windows flushes only what may be written
        os.fsync(file.fileno())
    if overwrite:
        with contextlib.suppress(FileNotFoundError):
            os.chmod(part, os.stat(target).st_mode & 0o7777)
        os.replace(part, target)
        return
    try:
        os.link(part, target)  # fails if somebody else has made the file meanwhile
    except FileExistsError:
        text = "File already exists and overwrite flag is set to false."
        raise Error(ErrorCode.FILE_EXISTS_NO_OVERWRITE, text) from None
    except OSError as error:
        if error.errno not in (errno.EPERM, errno.EOPNOTSUPP, errno.ENOSYS, errno.EMLINK):
            raise
        os.rename(part, target)  # a file system without links


def _cannot_write(path: bytes, error: OSError) -> Error:
    return Error(_CANNOT_WRITE + 1, f"Can't write {os.fsdecode(path)}: {error.strerror}")
