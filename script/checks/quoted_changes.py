#!/usr/bin/env python3
"""Whether the changes that docs/adding-a-command.md shows stand in the tree as it quotes them."""
import re
import sys
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[2]
PAGE = PROJECT / "docs" / "adding-a-command.md"


def quotes():
    """Each added line with the file that it stands in."""
    for block in re.findall(r"^```diff\n(.*?)^```$", PAGE.read_text(encoding="utf-8"), re.MULTILINE | re.DOTALL):
        path = None
        for line in block.splitlines():
            if line.startswith("+++ "):
                path = line[4:]
            else:
                yield path, line[1:]


def main():
    stale = [(path, line) for path, line in quotes()
             if line not in (PROJECT / path).read_text(encoding="utf-8").splitlines()]
    for path, line in stale:
        print(f"{PAGE.relative_to(PROJECT)}: not in {path} any more: {line}", file=sys.stderr)
    return 1 if stale else 0


if __name__ == "__main__":
    sys.exit(main())
