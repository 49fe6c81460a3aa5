"""How a connection is opened, in the words of `connect` and in the record of the library."""

import ctypes
import ipaddress
import re
from typing import Iterable, Optional, Union

from ._library import Library, exact, switch
from ._records import HarvlinkConnectOptions
from .enums import RULES, Access

RuleSet = Union[str, Iterable[str]]
"""Names of rules, or "strict" for all of them and "designed" for none."""


# The last part of a name is not a number: that is a mistyped address.
_NAME = re.compile(r"(?:[\w-]{1,63}\.)*(?!(?:[0-9]+|0[xX][0-9a-fA-F]*)\.?$)[\w-]{1,63}\.?", re.ASCII)


def rule_bits(rules: RuleSet) -> int:
    """The rules as a sum of bits. Raises ValueError for a name that no rule has."""
    if isinstance(rules, str):
        if rules not in ("strict", "designed"):
            raise ValueError(f'rules are "strict", "designed" or several names, not {rules!r}')
        rules = RULES if rules == "strict" else ()
    bits = 0
    for name in rules:
        if name not in RULES:
            raise ValueError(f"{name!r} is not a rule; there are: {', '.join(RULES)}")
        bits |= 1 << RULES.index(name)
    return bits


def access_number(access: Union[Access, str]) -> int:
    """Raises ValueError if there is no such access."""
    names = {member.name.lower(): int(member) for member in Access}
    if isinstance(access, str) and access.lower() in names:
        return names[access.lower()]
    if not isinstance(access, str) and access in names.values():
        return int(access)
    raise ValueError(f"{access!r} is none of {', '.join(names)}")


def checked_address(address: Optional[str]) -> str:
    if not isinstance(address, str):
        raise TypeError(f"address takes a text such as '192.168.255.1', not {address!r}")
    try:
        ipaddress.IPv4Address(address)
    except ValueError:
        if not _NAME.fullmatch(address):
            raise ValueError(
                f"{address!r} is not an IPv4 address such as 192.168.255.1, nor the name of a host"
            ) from None
    return address


def connect_options(
    library: Library,
    address: str,
    timeout: float,
    retries: int,
    access: Union[Access, str],
    rules: RuleSet,
    audit: bool,
    largest_file: Optional[int],
    clear_targets: bool,
) -> HarvlinkConnectOptions:
    options = HarvlinkConnectOptions()
    library.call("harvlink_connect_options_init", ctypes.byref(options))
    options.address = checked_address(address).encode("ascii")
    options.timeout = exact(ctypes.c_uint32, round(timeout * 1000))
    options.retries = exact(ctypes.c_uint32, retries)
    options.access = access_number(access)
    options.rules = rule_bits(rules)
    options.audit = switch("audit", audit)
    if largest_file is not None:
        options.largestFile = exact(ctypes.c_uint64, largest_file)
    options.clearTargets = switch("clear_targets", clear_targets)
    return options
