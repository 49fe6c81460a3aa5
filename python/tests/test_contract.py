"""The tables of the package match the C and C++ headers: records, functions, enumeration numbers, version."""

import ctypes
import re
import unittest

import harvlink
from harvlink import _fleet_records, _prototypes, _records, enums

from .support import ROOT

INCLUDE = ROOT / "include/harvlink"
HEADER = re.sub(r"/\*.*?\*/|^#.*?$", "", (INCLUDE / "harvlink_c.h").read_text(), flags=re.DOTALL | re.MULTILINE)
C_TYPES = {
    "void": None,
    "bool": ctypes.c_bool,
    "char": ctypes.c_char,
    "char*": ctypes.c_char_p,
    "double": ctypes.c_double,
    "float": ctypes.c_float,
    "int": ctypes.c_int,
    "unsigned": ctypes.c_uint,
    "unsigned char": ctypes.c_ubyte,
    "unsigned short": ctypes.c_ushort,
    "ControllerHandle": ctypes.c_void_p,
    "HarvlinkFleet": ctypes.c_void_p,
    **{f"{sign}int{bits}_t": getattr(ctypes, f"c_{sign}int{bits}") for sign in ("", "u") for bits in (8, 16, 32, 64)},
    **{name: ctypes.c_int32 for name in re.findall(r"typedef int32_t (\w+);", HEADER)},
}
TWINS = {"MoveType": "MoveInterpolationType", "Conversion": "KinematicConversions", "ErrorCode": "ErrorStatusCodes"}


def record(name):
    return getattr(_fleet_records if name.startswith("HarvlinkFleet") else _records, name)


def c_type(text, count=None):
    text = re.sub(r"\bconst\b", "", text).replace(" *", "*").strip()
    text = " ".join(text.split())
    if text in C_TYPES:
        kind = C_TYPES[text]
    elif text.endswith("*"):
        kind = ctypes.POINTER(c_type(text[:-1]))
    else:
        kind = record(text)
    return kind * int(count) if count else kind


def same(ours, theirs):
    """In C, a text that the library allocates is a plain pointer, and an array of characters is a pointer to one."""
    if ours is _records.OwnedText:
        ours = ctypes.c_char_p
    if ours == ctypes.POINTER(ctypes.c_char):
        ours = ctypes.c_char_p
    return ours == theirs


class ContractTest(unittest.TestCase):
    def test_records(self):
        bodies = re.findall(r"typedef struct (\w+) \{(.*?)\}", HEADER, re.DOTALL)
        self.assertGreater(len(bodies), 20)
        for name, body in bodies:
            with self.subTest(name):
                theirs = [
                    (field, c_type(kind, count))
                    for kind, field, count in re.findall(r"([\w ]+?\*?) *(\w+)(?:\[(\d+)\])?;", body)
                ]
                ours = record(name)._fields_
                self.assertEqual([field for field, _ in ours], [field for field, _ in theirs])
                for (field, one), (_, other) in zip(ours, theirs):
                    self.assertTrue(same(one, other), field)

    def test_functions(self):
        found = re.findall(r"HARVLINK_EXPORT ([\w ]+\*?) *\b(\w+)\((.*?)\);", HEADER, re.DOTALL)
        self.assertEqual({name for _, name, _ in found}, set(_prototypes.PROTOTYPES))
        for result, name, arguments in found:
            with self.subTest(name):
                kinds = [re.match(r"(.*?)\w+$", " ".join(a.split())).group(1) for a in arguments.split(",")]
                theirs = [c_type(kind) for kind in (result, *kinds)]
                ours = _prototypes.PROTOTYPES[name]
                self.assertEqual(len(ours), len(theirs))
                for one, other in zip(ours, theirs):
                    self.assertTrue(same(one, other), (one, other))

    def test_enumerations(self):
        headers = "".join(path.read_text() for path in INCLUDE.glob("*.h"))
        numbers = {
            name: {int(number, 0) for number in re.findall(r"= (\w+)", body)}
            for name, body in re.findall(r"enum class (\w+) : std::int32_t \{(.*?)\}", headers, re.DOTALL)
        }
        for name, ours in vars(enums).items():
            if isinstance(ours, type) and issubclass(ours, enums.OpenEnum) and len(ours):
                theirs = numbers[TWINS.get(name, name)] - {0 if name == "ErrorCode" else None}  # 0 is success
                with self.subTest(name):
                    self.assertEqual({int(member) for member in ours}, theirs)

    def test_rules(self):
        names = re.search(r"RuleNames\{(.*?)\}", (INCLUDE / "ConnectOptions.h").read_text(), re.DOTALL).group(1)
        self.assertEqual(list(harvlink.RULES), re.findall(r'"(\w+)"', names))

    def test_version(self):
        self.assertIn(f'"{harvlink.__version__}"', (INCLUDE / "Version.h").read_text())


if __name__ == "__main__":
    unittest.main()
