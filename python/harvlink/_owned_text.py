"""Texts that cross the border to the library."""

import ctypes


def _free(address: int) -> None:
    """By the library: the C runtime of the interpreter may be another one, with other memory."""
    from ._library import load  # which needs this module for its prototypes

    load().call("harvlink_free", address)


class OwnedText(ctypes.c_void_p):
    """A text that the library allocated for us."""

    def take(self) -> str:
        """The text, one character for each byte. Call it only once."""
        return self.take_bytes().decode("latin-1")

    def take_bytes(self) -> bytes:
        """Returns the bytes of the text and releases its memory. Call it only once."""
        address, self.value = self.value, None
        if address is None:
            raise MemoryError("the library could not allocate a text")
        try:
            return ctypes.string_at(address)
        finally:
            _free(address)


class StringToWrite(ctypes.Structure):
    """The layout of IStringVariableData, which a read fills with an OwnedText. This one owns no memory."""

    _fields_ = [("value", ctypes.c_char_p), ("variableIndex", ctypes.c_uint16)]
