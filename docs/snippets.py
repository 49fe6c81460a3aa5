#!/usr/bin/env python3
"""Extracts the code blocks of Markdown pages, so that the build can compile them and the tests can run them.

    snippets.py cpp OUTPUT-FOLDER PAGE...      one .cpp per block with a main; one file of functions for all other blocks
    snippets.py c OUTPUT-FOLDER PAGE...        one .c per block
    snippets.py python OUTPUT-FOLDER PAGE...   one .py per block
    snippets.py toml OUTPUT-FOLDER PAGE...     one .toml per page, of its blocks marked "toml scene"
    snippets.py sh OUTPUT-FOLDER PAGE...       one .sh per page, of its blocks marked "sh run"
"""

import pathlib
import re
import sys

BLOCK = re.compile(r"^```(?P<info>[^\n]*)\n(?P<code>.*?)^```$", re.MULTILINE | re.DOTALL)
PROJECT = pathlib.Path(__file__).resolve().parents[1]
# The programs of the pages use this address; each test replaces it by an address of its own.
ADDRESS = "127.0.0.1"
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


def remove_stale(folder, suffix, written):
    for stale in set(folder.glob(f"*{suffix}")) - written:
        stale.unlink()


def write_programs(folder, pages):
    folder.mkdir(parents=True, exist_ok=True)
    headers = "".join(f"#include <{name}>\n" for name in ("chrono", "iostream", "string", "thread", "vector"))
    fragments = headers + '\n#include "harvlink/harvlink.h"\n'
    written = {folder / "fragments.cpp"}
    for page in pages:
        for number, (line, code) in enumerate(blocks(page, ["cpp"])):
            name = re.sub(r"\W", "_", page.stem) + f"_{number}"
            if "int main(" in code:
                path = folder / f"program_{name}.cpp"
                code = code.replace(f'"{ADDRESS}"', 'std::getenv("HARVLINK_HOST")')
                write_if_changed(path, f'#include <cstdlib>\n#line {line} "{page}"\n{code}')
                written.add(path)
            else:
                fragments += FRAGMENT.format(name=name, line=line, page=page, code=code)
    write_if_changed(folder / "fragments.cpp", fragments)
    remove_stale(folder, ".cpp", written)


def write_blocks(folder, pages, kind, suffix, head, host):
    folder.mkdir(parents=True, exist_ok=True)
    written = set()
    for page in pages:
        for number, (_, code) in enumerate(blocks(page, [kind])):
            name = re.sub(r"\W", "_", str(page.resolve().relative_to(PROJECT).with_suffix("")))
            path = folder / f"{name}_{number}{suffix}"
            write_if_changed(path, head + code.replace(f'"{ADDRESS}"', host))
            written.add(path)
    remove_stale(folder, suffix, written)


def write_c(folder, pages):
    write_blocks(folder, pages, "c", ".c", "#include <stdlib.h>\n", 'getenv("HARVLINK_HOST")')


def write_python(folder, pages):
    write_blocks(folder, pages, "python", ".py", "import os\n", 'os.environ["HARVLINK_HOST"]')


def write_joined(folder, pages, kind, suffix, host):
    folder.mkdir(parents=True, exist_ok=True)
    written = set()
    for page in pages:
        text = "".join(code for _, code in blocks(page, [kind]))
        if text:
            path = folder / (re.sub(r"\W", "_", page.stem) + suffix)
            write_if_changed(path, text.replace(ADDRESS, host))
            written.add(path)
    remove_stale(folder, suffix, written)


def write_scripts(folder, pages):
    write_joined(folder, pages, "sh run", ".sh", '"$HARVLINK_HOST"')


def write_scenes(folder, pages):
    write_joined(folder, pages, "toml scene", ".toml", ADDRESS)


def main(arguments):
    writers = {"cpp": write_programs, "c": write_c, "python": write_python, "sh": write_scripts,
               "toml": write_scenes}
    if len(arguments) < 3 or arguments[0] not in writers:
        print(__doc__, file=sys.stderr)
        return 2
    folder, *pages = [pathlib.Path(argument) for argument in arguments[1:]]
    writers[arguments[0]](folder, pages)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
