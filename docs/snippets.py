#!/usr/bin/env python3
"""Takes the code blocks out of Markdown pages, so that the build can compile and the tests can run them.

    snippets.py cpp OUTPUT-FOLDER PAGE...    one .cpp per block that has a main; the others become one file of functions
    snippets.py sh PAGE                      prints the blocks marked "sh run", as one script
"""

import pathlib
import re
import sys

BLOCK = re.compile(r"^```(?P<info>[^\n]*)\n(?P<code>.*?)^```$", re.MULTILINE | re.DOTALL)
# A program of a page talks to the usual address; in a test it gets one of its own.
ADDRESS = '"127.0.0.1"'
ADDRESS_OF_TEST = 'std::getenv("HARVLINK_HOST")'
FRAGMENT = """
[[maybe_unused]] static void {name}([[maybe_unused]] harvlink::QuorvanController* robot,
                                    [[maybe_unused]] harvlink::StatusInfo& status) {{
#line {line} "{page}"
{code}}}
"""


def blocks(page, kinds):
    text = page.read_text(encoding="utf-8")
    for match in BLOCK.finditer(text):
        if match["info"].strip() in kinds:
            yield text.count("\n", 0, match.start()) + 2, match["code"]


def write_if_changed(path, text):
    if not path.exists() or path.read_text(encoding="utf-8") != text:
        path.write_text(text, encoding="utf-8")


def write_programs(folder, pages):
    folder.mkdir(parents=True, exist_ok=True)
    fragments = "#include <iostream>\n#include <string>\n#include <vector>\n\n#include \"harvlink/harvlink.h\"\n"
    written = {folder / "fragments.cpp"}
    for page in pages:
        for number, (line, code) in enumerate(blocks(page, ["cpp"])):
            name = re.sub(r"\W", "_", page.stem) + f"_{number}"
            if "int main(" in code:
                path = folder / f"program_{name}.cpp"
                code = code.replace(ADDRESS, ADDRESS_OF_TEST)
                write_if_changed(path, f'#include <cstdlib>\n#line {line} "{page}"\n{code}')
                written.add(path)
            else:
                fragments += FRAGMENT.format(name=name, line=line, page=page, code=code)
    write_if_changed(folder / "fragments.cpp", fragments)
    for stale in set(folder.glob("*.cpp")) - written:
        stale.unlink()


def main(arguments):
    if len(arguments) >= 3 and arguments[0] == "cpp":
        write_programs(pathlib.Path(arguments[1]), [pathlib.Path(page) for page in arguments[2:]])
        return 0
    if len(arguments) == 2 and arguments[0] == "sh":
        print("".join(code for _, code in blocks(pathlib.Path(arguments[1]), ["sh run"])), end="")
        return 0
    print(__doc__, file=sys.stderr)
    return 2


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
