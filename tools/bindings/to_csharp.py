"""The declarations for P/Invoke of the C# package, and its enumerations.

All records hold nothing but numbers and pointers, so that the runtime passes them on as they are, without a copy."""

import re
from typing import Iterator, List

from .header import Enumeration, Function, Header, Record, Type

_FIRST_LINES = """// Made from the headers in include/harvlink by tools/generate_bindings: change those, and run it again.
"""
_PLAIN = {
    "bool": "byte",
    "char": "byte",
    "double": "double",
    "float": "float",
    "int": "int",
    "unsigned": "uint",
    "unsigned char": "byte",
    "unsigned short": "ushort",
    "void": "void",
    **{"int8_t": "sbyte", "uint8_t": "byte", "int16_t": "short", "uint16_t": "ushort"},
    **{"int32_t": "int", "uint32_t": "uint", "int64_t": "long", "uint64_t": "ulong"},
}
_RENAMED = {
    "ErrorStatusCodes": "ErrorCode",
    "KinematicConversions": "Conversion",
    "MoveInterpolationType": "MoveType",
    "Rule": "Rules",
}
_LEFT_OUT = ("SignalStatus", "PulseAxis", "CartesianAxis")
"""What C# has a word of its own for: true and false, and a number from 0 to 7."""
_SUMMARIES = {
    "FrontOrBack": "Whether the wrist is in front of or behind the first axis.",
    "UpperOrLower": "Whether the elbow is up or down.",
    "FlipOrNoFlip": "Whether the wrist is flipped.",
    "AxisAngle": "Whether an axis has turned by more than 180 degrees.",
    "KinematicConversions": "The forms between which a position is converted.",
    "MoveInterpolationType": "How a group moves to its target.",
}


def native(header: Header) -> str:
    lines = [_FIRST_LINES, "using System;\nusing System.Runtime.InteropServices;\n\n"]
    lines += ["namespace Harvlink.Native\n{\n"]
    for record in header.records:
        lines += [*_record(header, record), "\n"]
    lines += ["    internal static unsafe class Functions\n    {\n"]
    lines += ['        private const string Library = "harvlink";\n']
    for function in header.functions:
        lines += ["\n", *_function(header, function)]
    return "".join([*lines, "    }\n}\n"])


def enumerations(found: List[Enumeration]) -> str:
    lines = [_FIRST_LINES, "using System;\n\nnamespace Harvlink\n{\n"]
    wanted = [each for each in found if each.name not in _LEFT_OUT]
    for place, enumeration in enumerate(sorted(wanted, key=lambda each: each.name)):
        lines += ["\n" if place else "", *_enumeration(enumeration)]
    return "".join([*lines, "}\n"])


def layout(header: Header) -> str:
    """A program's part that prints what `to_layout` prints in C."""
    lines = [_FIRST_LINES, "using System.IO;\nusing System.Runtime.InteropServices;\n\n"]
    lines += ["namespace Harvlink.Tests\n{\n    internal static partial class Layout\n    {\n"]
    lines += ["        public static void Print(TextWriter writer)\n        {\n"]
    for record in header.records:
        lines += [f'            writer.Write("{record.name} " + Marshal.SizeOf(typeof(Native.{record.name})) + "\\n");\n']
        for field in record.fields:
            name = f"{field.name}0" if _is_expanded(header, field.type) else field.name
            offset = f'Marshal.OffsetOf(typeof(Native.{record.name}), "{name}")'
            lines += [f'            writer.Write("{record.name}.{field.name} " + {offset} + "\\n");\n']
    lines += [f'            PrintSizes(writer, "{function.name}");\n' for function in header.functions]
    return "".join([*lines, "        }\n    }\n}\n"])


def version(number: str) -> str:
    lines = [_FIRST_LINES, "using System.Reflection;\n\n"]
    return "".join([*lines, f'[assembly: AssemblyVersion("{number}.0")]\n', f'[assembly: AssemblyFileVersion("{number}.0")]\n'])


def _record(header: Header, record: Record) -> Iterator[str]:
    yield "    [StructLayout(LayoutKind.Sequential)]\n"
    yield f"    internal unsafe struct {record.name}\n    {{\n"
    for field in record.fields:
        kind = _type(header, field.type)
        if _is_expanded(header, field.type):
            for place in range(field.type.count or 0):
                yield f"        public {kind} {field.name}{place};\n"
        elif field.type.count:
            yield f"        public fixed {kind} {field.name}[{field.type.count}];\n"
        else:
            yield f"        public {kind} {field.name};\n"
    yield "    }\n"


def _is_expanded(header: Header, kind: Type) -> bool:
    """C# has arrays inside of a record for plain numbers alone."""
    return bool(kind.count) and any(record.name == kind.base for record in header.records)


def _function(header: Header, function: Function) -> Iterator[str]:
    arguments = ", ".join(f"{_type(header, each.type)} {_safe(each.name)}" for each in function.arguments)
    yield "        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]\n"
    yield f"        internal static extern {_type(header, function.result)} {function.name}({arguments});\n"


def _safe(name: str) -> str:
    return f"@{name}" if name in ("in", "out", "ref", "params", "object", "string") else name


def _type(header: Header, kind: Type) -> str:
    if kind.base in header.handles:
        return "IntPtr"
    base = "int" if kind.base in header.integers else _PLAIN.get(kind.base, kind.base)
    return base + "*" * kind.pointers


def _enumeration(enumeration: Enumeration) -> Iterator[str]:
    name = _RENAMED.get(enumeration.name, enumeration.name)
    yield _summary("    ", enumeration.text or _SUMMARIES[enumeration.name])
    is_flags = enumeration.integer == "uint32_t"
    if is_flags:
        yield "    [Flags]\n"
    yield f"    public enum {name}{' : uint' if is_flags else ''}\n    {{\n"
    if is_flags:
        yield _summary("        ", "None of them: the behaviour as designed.") + "        None = 0,\n"
    for member in enumeration.members:
        number = f"0x{member.number:x}" if member.number > 0xFFF else member.number
        yield _summary("        ", member.text or _words(member.name))
        yield f"        {member.name} = {number},\n"
    if is_flags:
        everything = sum(member.number for member in enumeration.members)
        yield _summary("        ", "All of them.") + f"        Strict = 0x{everything:x},\n"
    yield "    }\n"


def _words(name: str) -> str:
    """ "InvalidIOGroup" as "Invalid IO group"; a name such as "S1C" stays."""
    if len(name) <= 3:
        return name + "."
    words = re.findall(r"[A-Z]+(?=[A-Z][a-z])|[A-Z]?[a-z]+|[A-Z]+|\d+", name)
    return " ".join([words[0], *(word if word.isupper() else word.lower() for word in words[1:])]) + "."


def _summary(indent: str, text: str) -> str:
    text = text[0].upper() + text[1:] + ("" if text.endswith((".", "!", "?")) else ".")
    text = text.replace("&", "&amp;").replace("<", "&lt;").replace(">", "&gt;").replace("`", "")
    lines, line = [], ""
    for word in text.split():
        if len(line) + len(word) > 105:
            lines, line = [*lines, line], ""
        line += (" " if line else "") + word
    lines.append(line)
    if len(lines) == 1:
        return f"{indent}/// <summary>{lines[0]}</summary>\n"
    return "".join([f"{indent}/// <summary>\n", *(f"{indent}/// {each}\n" for each in lines), f"{indent}/// </summary>\n"])
