#!/usr/bin/env python3
"""Prints the manual page of a program, made of its --help, the --help of each command, and a file with further sections.

    man_page.py PROGRAM SECTIONS-FILE VERSION
    man_page.py --commands [--compress] PROGRAM FOLDER VERSION

The second form writes into the folder a page for each command of the program, such as harvlink-var.1.

In the file, a heading in capital letters begins a section. A section has paragraphs or a list like those of a help text.
NAME and DESCRIPTION come before the text of --help, all other sections after it.
"""

import gzip
import itertools
import os
import pathlib
import re
import subprocess
import sys

HEADING = re.compile(r"^([A-Z][A-Za-z ]*):$")
ENTRY = re.compile(r"^ {2}(\S.*?)(?: {2,}(\S.*))?$")
# Every command's help has this line; the manual page needs it only once.
POINTER_TO_COMMON_OPTIONS = "Options of all commands"


def escape(text):
    text = text.replace("\\", "\\e").replace("-", "\\-")
    return "\\&" + text if text[:1] in ".'" else text


class Help:
    """A parsed help text: its usage, its sections of lines by heading, and the paragraphs outside of them (notes)."""

    def __init__(self, text):
        self.notes, self.sections = [], {}
        self.usage = ""
        lines = self.notes
        for line in text.splitlines():
            if line.startswith("Usage: "):
                self.usage = line[len("Usage: ") :]
            elif match := HEADING.match(line):
                lines = self.sections.setdefault(match[1], [])
            elif line.startswith(POINTER_TO_COMMON_OPTIONS):
                continue
            else:
                # Text that begins in the first column ends a list.
                lines = self.notes if line[:1].strip() else lines
                lines.append(line)

    def commands(self):
        lists = (lines for title, lines in self.sections.items() if "command" in title.lower())
        # If a command has several names, its own help uses the first.
        return [match[1].split(",")[0] for lines in lists for match in map(ENTRY.match, lines) if match]


def own_sections(text):
    _, *parts = re.split(r"^([A-Z][A-Z ]+)\n", text, flags=re.MULTILINE)
    return {title: body.strip("\n").splitlines() for title, body in zip(parts[::2], parts[1::2])}


def paragraphs(lines):
    """Paragraphs of filled text, separated by blank lines. Indented lines stay as they are."""
    for indented, group in itertools.groupby(lines, lambda line: line.startswith("  ") if line.strip() else None):
        if indented is not None:
            yield from literal(group) if indented else (".PP", *map(escape, group))


def entries(lines):
    """A list of terms and their meanings. A line that is indented further continues the meaning."""
    for line in filter(str.strip, lines):
        match = ENTRY.match(line)
        if match is None:
            yield escape(line.strip())
            continue
        yield from (".TP", ".B " + escape(match[1]).replace('"', '\\(dq'))
        if match[2]:
            yield escape(match[2])


def literal(lines):
    text = [line[2:] for line in "\n".join(lines).strip("\n").splitlines()]
    return [".PP", ".EX", *map(escape, text), ".EE"]


def section(title, lines):
    if title.lower().startswith("example"):
        return literal(lines)
    return list(entries(lines))


def ask(program, words):
    # The user's settings would change the defaults in the help.
    environment = {name: value for name, value in os.environ.items() if not name.startswith("HARVLINK_")}
    shown = subprocess.run([program, *words, "--help"], env=environment, check=True, capture_output=True, text=True)
    return Help(shown.stdout.replace(program, pathlib.Path(program).name))


def command_pages(program, name, words, inherited):
    """One subsection for each command without subcommands, with its own options."""
    page = ask(program, words)
    if not page.usage.startswith(" ".join([name, *words])):
        raise SystemExit(f"man_page.py: the help of '{' '.join([name, *words])}' belongs to another command: {page.usage}")
    if words and not page.commands():
        yield f'.SS "{escape(page.usage.replace(f"{name} ", "", 1))}"'
        yield from paragraphs(page.notes)
        for title, lines in page.sections.items():
            yield from section(title, without_inherited(lines, inherited))
    for command in page.commands():
        yield from command_pages(program, name, [*words, command], inherited)


def without_inherited(lines, inherited):
    keep, result = True, []
    for line in lines:
        match = ENTRY.match(line)
        keep = match[1] not in inherited if match else keep
        if keep:
            result.append(line)
    return result


def manual(program, own, version):
    name = pathlib.Path(program).name
    page = ask(program, [])
    before = ("NAME", "DESCRIPTION")
    yield f'.TH {escape(name).upper()} 1 "" "Harvlink {version}" "User Commands"'
    yield from (".SH NAME", " \\- ".join(own["NAME"][0].split(" - ")))
    yield from (".SH SYNOPSIS", f".B {escape(page.usage)}", ".SH DESCRIPTION")
    yield from paragraphs(own["DESCRIPTION"])
    yield from paragraphs(page.notes[1:])
    for title, lines in page.sections.items():
        if "command" not in title.lower():
            yield from (f".SH {title.upper()}", *section(title, lines))
    if page.commands():
        options = [match[1] for match in map(ENTRY.match, page.sections["Options"]) if match]
        yield ".SH COMMANDS"
        yield from command_pages(program, name, [], {option for option in options if "help" in option})
    for title, lines in own.items():
        if title not in before:
            yield from (f".SH {title}", *(entries(lines) if ENTRY.match(lines[0]) else paragraphs(lines)))


def command_manual(program, command, version):
    """The page of one command, with a subsection for each command below it."""
    name = pathlib.Path(program).name
    page = ask(program, [command])
    inherited = {match[1] for match in map(ENTRY.match, page.sections.get("Options", [])) if match and "help" in match[1]}
    yield f'.TH {escape(f"{name}-{command}").upper()} 1 "" "Harvlink {version}" "User Commands"'
    yield from (".SH NAME", escape(f"{name}-{command}") + " \\- " + escape(page.notes[0]))
    yield from (".SH SYNOPSIS", f".B {escape(page.usage)}", ".SH DESCRIPTION")
    yield from paragraphs(page.notes)
    for title, lines in page.sections.items():
        if "command" not in title.lower():
            yield from (f".SH {title.upper()}", *section(title, lines))
    if page.commands():
        yield ".SH COMMANDS"
        for each in page.commands():
            yield from command_pages(program, name, [command, each], inherited)
    yield from (".SH SEE ALSO", f".BR {escape(name)} (1)")


def write_commands(program, folder, version, compress):
    target = pathlib.Path(folder)
    target.mkdir(parents=True, exist_ok=True)
    for command in ask(program, []).commands():
        text = "\n".join(command_manual(program, command, version)) + "\n"
        page = target / f"{pathlib.Path(program).name}-{command}.1"
        if compress:
            page.with_name(page.name + ".gz").write_bytes(gzip.compress(text.encode(), 9, mtime=0))
        else:
            page.write_text(text, encoding="utf-8")


def main(arguments):
    if arguments[:1] == ["--commands"] and len(arguments) in (4, 5):
        write_commands(*arguments[-3:], compress="--compress" in arguments)
        return 0
    if len(arguments) != 3:
        print(__doc__, file=sys.stderr)
        return 2
    program, sections, version = arguments
    own = own_sections(pathlib.Path(sections).read_text(encoding="utf-8"))
    print("\n".join(manual(program, own, version)))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
