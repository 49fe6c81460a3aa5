"""What harvlink_c.h declares: records and functions. Of the C++ headers beside it: the enumerations, whose names are better."""

import dataclasses
import pathlib
import re
from typing import Iterator, List, Optional, Set

INCLUDE = pathlib.Path(__file__).resolve().parents[2] / "include" / "harvlink"


@dataclasses.dataclass(frozen=True)
class Type:
    """`base` is the name in C without qualifiers; `count` that of an array."""

    base: str
    pointers: int = 0
    constant: bool = False
    count: Optional[int] = None

    @property
    def is_owned_text(self) -> bool:
        """A text that the library allocates. It is told from one that it only reads by the missing `const`."""
        return self.base == "char" and self.pointers == 1 and not self.constant


@dataclasses.dataclass(frozen=True)
class Named:
    name: str
    type: Type


@dataclasses.dataclass(frozen=True)
class Record:
    name: str
    fields: List[Named]


@dataclasses.dataclass(frozen=True)
class Function:
    name: str
    result: Type
    arguments: List[Named]


@dataclasses.dataclass(frozen=True)
class Member:
    name: str
    number: int
    text: str


@dataclasses.dataclass(frozen=True)
class Enumeration:
    name: str
    integer: str
    members: List[Member]
    text: str


@dataclasses.dataclass(frozen=True)
class Header:
    integers: Set[str]
    """Names of enumerations: 32-bit integers in C."""
    handles: Set[str]
    records: List[Record]
    functions: List[Function]


def read_header() -> Header:
    """Raises ValueError for a declaration that it does not understand, rather than leave it out."""
    source = (INCLUDE / "harvlink_c.h").read_text(encoding="utf-8")
    source = re.sub(r"/\*.*?\*/|^#.*?$", "", source, flags=re.DOTALL | re.MULTILINE)
    header = Header(
        set(re.findall(r"typedef int32_t (\w+);", source)),
        set(re.findall(r"typedef struct \w+\* (\w+);", source)),
        [_record(*found) for found in re.findall(r"typedef struct (\w+) \{(.*?)\} \1;", source, re.DOTALL)],
        [_function(*found) for found in re.findall(r"HARVLINK_EXPORT ([^;]*?)(\w+)\(([^;]*)\);", source)],
    )
    _refuse_less_than(source, header)
    return header


def _refuse_less_than(source: str, header: Header) -> None:
    for word, found in (
        ("typedef struct \\w+ \\{", len(header.records)),
        ("HARVLINK_EXPORT", len(header.functions)),
        ("typedef (?!struct)", len(header.integers)),
    ):
        if len(re.findall(word, source)) != found:
            raise ValueError(f"harvlink_c.h has a declaration with {word!r} that is not understood")


def _type(text: str, count: Optional[str] = None) -> Type:
    words = re.findall(r"\w+|\*", text)
    base = " ".join(word for word in words if word not in ("const", "*"))
    return Type(base, words.count("*"), "const" in words, int(count) if count else None)


def _record(name: str, body: str) -> Record:
    fields = []
    for line in filter(None, (" ".join(part.split()) for part in body.split(";"))):
        found = re.fullmatch(r"(.*?[ *])(\w+)(?:\[(\d+)\])?", line)
        if not found:
            raise ValueError(f"harvlink_c.h: {name} has the field {line!r}, which is not understood")
        fields.append(Named(found[2], _type(found[1], found[3])))
    return Record(name, fields)


def _function(result: str, name: str, arguments: str) -> Function:
    parts = [re.fullmatch(r"(.*?)(\w+)", " ".join(part.split())) for part in arguments.split(",")]
    if None in parts:
        raise ValueError(f"harvlink_c.h: {name} has an argument that is not understood")
    return Function(name, _type(result), [Named(part[2], _type(part[1])) for part in parts if part])


def read_enumerations() -> Iterator[Enumeration]:
    for path in sorted(INCLUDE.glob("*.h")):
        source = path.read_text(encoding="utf-8")
        for found in re.finditer(r"((?:^ *///[^\n]*\n)*)^ *enum class (\w+) : std::(\w+) \{([^}]*)\};", source, re.M):
            text, name, integer, body = found.groups()
            yield Enumeration(name, integer, list(_members(body)), _prose(text))


def read_generations() -> List[str]:
    """The letters of the generations, the oldest first."""
    source = (INCLUDE / "ControllerVersion.h").read_text(encoding="utf-8")
    return re.findall(r'\{ControllerVersion::\w+, "(\w+)"\}', source)


def read_version() -> str:
    source = (INCLUDE / "Version.h").read_text(encoding="utf-8")
    return re.findall(r'HeaderVersion = "(.*?)"', source)[0]


def _members(body: str) -> Iterator[Member]:
    """A comment stands above its member, or behind it and then after the comma."""
    above = ""
    for comment, name, number, behind in re.findall(
        r"^ *///(?!<)(.*)$|(\w+) =\s*([^,\n/]+?)(?:,|\s*$)(?: *///<(.*))?", body + "\n", re.M
    ):
        if comment:
            above += comment + "\n"
            continue
        yield Member(name, _number(number), _prose(above or behind))
        above = ""


def _number(text: str) -> int:
    parts = [int(part.strip().rstrip("U"), 0) for part in text.split("<<")]
    return parts[0] << parts[1] if len(parts) == 2 else parts[0]


def _prose(comment: str) -> str:
    """The comment as one paragraph, without the marks of the reference."""
    return " ".join(re.sub(r"^ *///?<?", "", comment, flags=re.M).split())

