"""The exception of a failed operation and the warning of a partial success."""

import sys
import warnings

from ._records import IStatusInfo
from ._text import Encoding
from .enums import ErrorCode

# The messages of a success without a note.
PLAIN_SUCCESS = ("", "OK", "Point added to trajectory.")


class Error(Exception):
    """An operation failed. `code` shows the origin:

    1 to 0xFFFF        the controller refused, or the number of the alarm that ended motion.wait
    0x10000 and up     the library refused or no answer came, see ErrorCode
    0x40000000 and up  a file on this computer failed: 0x40000000 plus an error value
    large negative     the controller refused: add 50000000 (motion), 60000000 (control group), 80000000 (job) or
                       0x70000000 (conversion) to get its own number
    """

    def __init__(self, code: int, text: str) -> None:
        super().__init__(code, text)
        self.code = code
        self.text = text

    def __str__(self) -> str:
        return f"{self.text} (code {self.code})"


class NameNotResolved(Error, ValueError):
    """The system knows no IPv4 address for the name of the controller, or did not find it in time.

    It is a ValueError too, as which names were refused before they were resolved.
    """


class Note(UserWarning):
    """An operation succeeded, but not completely: a text was cut, for example."""


def settle(status: IStatusInfo, encoding: Encoding = Encoding()) -> None:
    """Releases the text of a status. Raises if the status is a failure, warns if a success has a note."""
    text = encoding.decode(status.Message.take_bytes())
    if status.StatusCode == ErrorCode.NAME_NOT_RESOLVED:
        raise NameNotResolved(status.StatusCode, text)
    if status.StatusCode != 0:
        raise Error(status.StatusCode, text)
    if text not in PLAIN_SUCCESS:
        warnings.warn(text, Note, stacklevel=_frames_in_package())


def _frames_in_package() -> int:
    """How many frames up the user's own line is, so that a warning points to it."""
    frame, level = sys._getframe(1), 1
    while frame is not None and str(frame.f_globals.get("__name__")).split(".")[0] == __package__:
        frame, level = frame.f_back, level + 1  # type: ignore[assignment]
    return level
