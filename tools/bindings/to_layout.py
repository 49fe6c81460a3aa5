"""A C program that prints sizes and places of all records, as the compiler of C sees them: the packages compare theirs."""

from .header import Header


def program(header: Header) -> str:
    lines = ["#include <stddef.h>\n#include <stdio.h>\n\n", '#include "harvlink/harvlink_c.h"\n\n', "int main(void) {\n"]
    for record in header.records:
        lines.append(f'    printf("{record.name} %zu\\n", sizeof({record.name}));\n')
        for field in record.fields:
            place = f"{record.name}, {field.name}"
            lines.append(f'    printf("{record.name}.{field.name} %zu\\n", offsetof({place}));\n')
    return "".join([*lines, "    return 0;\n}\n"])
