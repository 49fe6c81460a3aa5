"""A C program that prints sizes and places of all records, and sizes of all arguments and results, as the compiler of C sees
them: the packages compare theirs."""

from typing import Iterator

from .header import Function, Header


def program(header: Header) -> str:
    lines = ["#include <stddef.h>\n#include <stdio.h>\n\n", '#include "harvlink/harvlink_c.h"\n\n', "int main(void) {\n"]
    for record in header.records:
        lines.append(f'    printf("{record.name} %zu\\n", sizeof({record.name}));\n')
        for field in record.fields:
            place = f"{record.name}, {field.name}"
            lines.append(f'    printf("{record.name}.{field.name} %zu\\n", offsetof({place}));\n')
    for function in header.functions:
        lines += _sizes(function)
    return "".join([*lines, "    return 0;\n}\n"])


def _sizes(function: Function) -> Iterator[str]:
    """0 is the result, unless there is none, and 1 the first argument."""
    for place, kind in enumerate([function.result, *(each.type for each in function.arguments)]):
        if kind.base != "void" or kind.pointers:
            text = kind.base + "*" * kind.pointers
            yield f'    printf("{function.name}.{place} %zu\\n", sizeof({text}));\n'
