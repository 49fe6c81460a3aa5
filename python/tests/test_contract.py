"""What the package knows of the library is what its headers say: records, functions, enumeration numbers, version."""

import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

import harvlink
from harvlink import enums

from .layout import differences
from .support import ROOT

INCLUDE = ROOT / "include/harvlink"
GENERATOR = [sys.executable, str(ROOT / "tools/generate_bindings")]
TWINS = {"MoveType": "MoveInterpolationType", "Conversion": "KinematicConversions", "ErrorCode": "ErrorStatusCodes"}


class ContractTest(unittest.TestCase):
    def test_generated_files_are_up_to_date(self):
        checked = subprocess.run([*GENERATOR, "--check"], capture_output=True, text=True)
        self.assertEqual((checked.returncode, checked.stderr), (0, ""))

    @unittest.skipUnless(shutil.which("cc"), "there is no C compiler")
    def test_records_and_arguments_lie_as_in_c(self):
        program = subprocess.run([*GENERATOR, "--layout"], capture_output=True, text=True, check=True).stdout
        with tempfile.TemporaryDirectory() as folder:
            path = str(pathlib.Path(folder, "layout"))
            compile_it = ["cc", "-std=c11", f"-I{INCLUDE.parent}", "-xc", "-", "-o", path]
            subprocess.run(compile_it, input=program, text=True, check=True)
            self.assertEqual(differences(subprocess.check_output([path], text=True)), [])

    def test_enumerations(self):
        headers = "".join(path.read_text() for path in INCLUDE.glob("*.h"))
        numbers = {
            name: {int(number, 0) for number in re.findall(r"=\s*(\w+)", body)}
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
