"""Texts of a controller: bytes in its encoding, and characters here."""

import codecs
import functools
import re
from typing import Dict, Iterator, Tuple

NAMES = ("utf-8", "latin-1", "cp1250", "cp1251", "cp1252", "cp932", "gbk", "cp949")
"""The encodings, as `harvlink --encoding` has them too."""

_ESCAPE = re.compile(r"\\x([0-9A-Fa-f]{2})")
_BEFORE_ESCAPE = re.compile(r"\\(?=x[0-9A-Fa-f]{2})")
# No encoding yields half of a surrogate pair, so it can stand for a byte that is not a character.
_BYTE = 0xDC00
_BYTES = re.compile("[\udc00-\udcff]")


def _keep_byte(error: UnicodeError) -> Tuple[str, int]:
    if not isinstance(error, UnicodeDecodeError):
        raise error
    return chr(_BYTE + error.object[error.start]), error.start + 1


codecs.register_error("harvlink-keep-byte", _keep_byte)


def _show_bytes(characters: str) -> str:
    escaped = _BEFORE_ESCAPE.sub(r"\\x5C", characters)
    return _BYTES.sub(lambda found: f"\\x{ord(found[0]) - _BYTE:02X}", escaped)


# Some characters of these have two forms, and extensions use some single bytes, not all of them for the same character.
_TWO_BYTES = ("cp932", "gbk", "cp949")
_STRAY = (b"\x80", b"\xa0", b"\xfd", b"\xfe", b"\xff")


@functools.lru_cache(maxsize=None)
def _first_forms(name: str) -> Dict[str, bytes]:
    """The characters that Python writes in another form than makers of controllers do."""
    forms = (bytes((lead, trail)) for lead in range(0xFA, 0xFD) for trail in range(0x40, 0xFD) if name == "cp932")
    seconds = ((form.decode(name, "ignore"), form) for form in forms)
    return {character: form for character, form in seconds if character and character.encode(name) >= b"\xed\x40"}


class Encoding:
    r"""A byte that is not part of the encoding appears as "\x" and two hexadecimal digits, and writing that gives the byte
    back; so does a backslash before such an "x". Every text can be written back as it was read."""

    def __init__(self, name: str = "utf-8") -> None:
        if not isinstance(name, str) or name.lower() not in NAMES:
            raise ValueError(f"{name!r} is not a known encoding; there are: {', '.join(NAMES)}")
        self.name = name.lower()

    def decode(self, text: bytes) -> str:
        if self.name in _TWO_BYTES and not text.isascii():
            return _show_bytes("".join(self._characters(text)))
        return _show_bytes(text.decode(self.name, "harvlink-keep-byte"))

    def _characters(self, text: bytes) -> Iterator[str]:
        """One that would not be written back as it is, is kept as bytes."""
        place = 0
        while place < len(text):
            for piece in (text[place : place + 1], text[place : place + 2]):
                character = piece.decode(self.name, "ignore")
                if len(character) == 1 and self._form(character) == piece:
                    break
            else:
                piece, character = piece[:1], chr(_BYTE + text[place])
            yield character
            place += len(piece)

    def _form(self, character: str) -> bytes:
        """Empty if the encoding does not have it."""
        form = _first_forms(self.name).get(character) or character.encode(self.name, "ignore")
        return form if form not in _STRAY and form.decode(self.name) == character else b""

    def _encode_all(self, text: str) -> bytes:
        if self.name not in _TWO_BYTES or text.isascii():
            return text.encode(self.name)
        forms = [self._form(character) for character in text]
        if b"" in forms:
            place = forms.index(b"")
            raise UnicodeEncodeError(self.name, text, place, place + 1, "not in the encoding")
        return b"".join(forms)

    def encode(self, text: str) -> bytes:
        """Raises UnicodeEncodeError, a ValueError, for a character that the encoding does not have."""
        pieces = _ESCAPE.split(text)
        pieces[1::2] = [chr(_BYTE + int(digits, 16)) for digits in pieces[1::2]]
        return b"".join(
            bytes([ord(piece) - _BYTE]) if place % 2 else self._encode_all(piece) for place, piece in enumerate(pieces)
        )
