"""Cells: controllers that the configuration file of the tool gives names."""

import dataclasses
import difflib
import os
import pathlib
from typing import Any, Dict, Optional

from ._generations import GENERATIONS
from ._text import NAMES

_KINDS = {"host": str, "timeout": int, "retries": int, "generation": str, "encoding": str}
_VARIABLES = {"timeout": "HARVLINK_TIMEOUT", "retries": "HARVLINK_RETRIES", "encoding": "HARVLINK_ENCODING"}
_LONGEST_TIMEOUT = 600_000
_MOST_RETRIES = 1_000


@dataclasses.dataclass(frozen=True)
class Cell:
    """Where a controller is, and what the file, and the environment where the file says nothing, have for a controller; None where neither has."""

    host: str
    timeout: Optional[float] = None  # seconds
    retries: Optional[int] = None
    generation: Optional[str] = None
    encoding: Optional[str] = None


def find_cell(name: str) -> Cell:
    """Raises ValueError that names the file and what is wrong with it, or the nearest cell."""
    if not isinstance(name, str):
        raise TypeError(f"cell takes a name, not {name!r}")
    path = _path()
    table = _parsed(path) if path is not None else {}
    cells = table.pop("cell", {})
    if not isinstance(cells, dict) or not all(isinstance(cell, dict) for cell in cells.values()):
        raise ValueError(f"{path}: a cell is a section such as [cell.press1]")
    if name not in cells:
        where = f"in {path}" if path is not None and path.exists() else "without a configuration file"
        raise ValueError(f"there is no cell {name!r} {where}{_suggestion(name, list(cells))}")
    own, common = cells[name], table
    for settings, section in ((common, ""), (own, f" in [cell.{name}]")):
        for key, value in settings.items():
            _check(f"{path}{section}", key, value)
    if "host" not in own:  # taken from elsewhere, it would be that of another machine
        raise ValueError(f"{path}: the cell {name} has no host")
    chosen: Dict[str, Any] = {key: own.get(key, _variable(key, common.get(key))) for key in _KINDS}
    timeout = chosen.pop("timeout")
    return Cell(timeout=None if timeout is None else timeout / 1000, **chosen)


def _path() -> Optional[pathlib.Path]:
    """The file that the tool reads too."""
    named = os.environ.get("HARVLINK_CONFIG")
    if named:
        return pathlib.Path(named)
    folder = os.environ.get("XDG_CONFIG_HOME", "")
    if not os.path.isabs(folder):
        folder = os.environ.get("APPDATA" if os.name == "nt" else "HOME", "")
        if not folder:
            return None
        folder = folder if os.name == "nt" else os.path.join(folder, ".config")
    return pathlib.Path(folder, "harvlink", "config.toml")


def _parsed(path: pathlib.Path) -> Dict[str, Any]:
    if not path.exists() and not os.environ.get("HARVLINK_CONFIG"):
        return {}
    text = path.read_text(encoding="utf-8")
    try:
        import tomllib as toml
    except ImportError:  # before Python 3.11
        try:
            import tomli as toml  # type: ignore[import,no-redef]
        except ImportError:
            raise ImportError("a cell needs Python 3.11, or the package tomli to read the configuration file") from None
    try:
        return toml.loads(text)
    except toml.TOMLDecodeError as error:
        raise ValueError(f"{path}: {error}") from None


def _variable(key: str, otherwise: Any) -> Any:
    value = os.environ.get(_VARIABLES.get(key, ""), "")
    if not value:
        return otherwise
    if _KINDS[key] is int:
        if not value.isascii() or not value.isdigit():
            raise ValueError(f"{_VARIABLES[key]}: {value!r} is not a whole number")
        _check(_VARIABLES[key], key, int(value))
        return int(value)
    return value


def _check(source: str, key: str, value: Any) -> None:
    if key not in _KINDS:
        raise ValueError(f"{source}: there is no setting {key!r}; there are: {', '.join(_KINDS)}")
    kind = _KINDS[key]
    if type(value) is not kind:
        raise ValueError(f"{source}: {key} must be {'a whole number' if kind is int else 'a text in quotes'}")
    least, most = (1, _LONGEST_TIMEOUT) if key == "timeout" else (0, _MOST_RETRIES)
    if kind is int and not least <= value <= most:
        raise ValueError(f"{source}: {key} {value} is out of range, from {least} to {most}")
    known = {"generation": GENERATIONS, "encoding": tuple(map(str.upper, NAMES))}.get(key)
    if known and value.upper() not in known:
        raise ValueError(f"{source}: {value!r} is not one of: {', '.join(known)}")


def _suggestion(word: str, names: "list[str]") -> str:
    near = difflib.get_close_matches(word, names, 1) or [name for name in names if name.startswith(word)]
    if near:
        return f"; is {near[0]} meant?"
    return f"; there are: {', '.join(names)}" if names else ""
