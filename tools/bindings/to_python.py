"""The records and prototypes of the Python package."""

from typing import Iterator, List

from .header import Function, Header, Record, Type

_FIRST_LINES = '''"""{title}

Made from include/harvlink/{header} by tools/generate_bindings: change that file, and run it again."""

'''
_PLAIN = {
    "bool": "c_bool",
    "char": "c_char",
    "double": "c_double",
    "float": "c_float",
    "int": "c_int",
    "unsigned": "c_uint",
    "unsigned char": "c_ubyte",
    "unsigned short": "c_ushort",
    **{f"{sign}int{bits}_t": f"c_{sign}int{bits}" for sign in ("", "u") for bits in (8, 16, 32, 64)},
}
_WIDTH = 120


def records(header: Header) -> str:
    used = sorted({_name(header, field.type) for record in header.records for field in record.fields} & _ctypes())
    lines = [_FIRST_LINES.format(header="harvlink_c.h", title="The records of harvlink_c.h, with the same fields in the same order.")]
    lines += ["import ctypes\n", *_import("ctypes", used), "\nfrom ._owned_text import OwnedText\n"]
    for record in header.records:
        lines += ["\n\n", f"class {record.name}(ctypes.Structure):\n", *_fields(header, record)]
    return "".join(lines)


def prototypes(header: Header) -> str:
    types = [each for function in header.functions for each in _types(function)]
    used = sorted({_name(header, each) for each in types} & _ctypes())
    lines = [_FIRST_LINES.format(header="harvlink_c.h", title="The plain functions: result and argument types by name.")]
    lines += [*_import("ctypes", ["POINTER", *used, "c_char_p", "c_void_p"]), "from typing import Any, Dict, Tuple\n\n"]
    lines += ["from . import _records as r\nfrom ._owned_text import OwnedText\n\n"]
    lines += ["PROTOTYPES: Dict[str, Tuple[Any, ...]] = {\n"]
    for function in header.functions:
        result, *arguments = (_expression(header, each, "r.") for each in _types(function))
        # A function never takes over a text: what is not constant is room that it fills.
        arguments = ["POINTER(c_char)" if each == "OwnedText" else each for each in arguments]
        lines += _wrapped(f'    "{function.name}": (', [result, *arguments], "),\n")
    return "".join([*lines, "}\n"])


def generations(letters: List[str]) -> str:
    first = _FIRST_LINES.format(header="ControllerVersion.h", title="The generations of controllers, the oldest first.")
    return first + "GENERATIONS = (" + ", ".join(f'"{each}"' for each in letters) + ")\n"


def _ctypes() -> "set[str]":
    return set(_PLAIN.values()) | {"c_char_p", "c_void_p"}


def _import(module: str, names: List[str]) -> List[str]:
    return _wrapped(f"from {module} import ", sorted(set(names)), "\n", bare=True)


def _wrapped(start: str, parts: List[str], end: str, bare: bool = False) -> List[str]:
    """In one line, or with a line for each part where that would be too long."""
    line = start + ", ".join(parts) + end
    if len(line) <= _WIDTH + 1:
        return [line]
    if bare:
        return [start + "(\n", *(f"    {part},\n" for part in parts), ")" + end]
    return [start + "\n", *(f"        {part},\n" for part in parts), "    " + end]


def _types(function: Function) -> List[Type]:
    return [function.result, *(argument.type for argument in function.arguments)]


def _fields(header: Header, record: Record) -> Iterator[str]:
    yield "    _fields_ = [\n"
    for field in record.fields:
        yield f'        ("{field.name}", {_expression(header, field.type, "")}),\n'
    yield "    ]\n"


def _expression(header: Header, kind: Type, records_prefix: str) -> str:
    if kind.base == "void" and not kind.pointers:
        return "None"
    if kind.base == "void":
        return "c_void_p"
    if kind.is_owned_text and kind.count is None:
        return "OwnedText"
    if kind.base == "char" and kind.pointers == 1:
        return "c_char_p"
    is_record = any(record.name == kind.base for record in header.records)
    name = (records_prefix if is_record else "") + _name(header, kind)
    pointer = "POINTER" if records_prefix else "ctypes.POINTER"
    for _ in range(kind.pointers):
        name = f"{pointer}({name})"
    return f"{name} * {kind.count}" if kind.count else name


def _name(header: Header, kind: Type) -> str:
    if kind.base == "char" and kind.pointers == 1 and kind.constant:
        return "c_char_p"
    if kind.base in header.integers:
        return "c_int32"
    return "c_void_p" if kind.base in header.handles else _PLAIN.get(kind.base, kind.base)
