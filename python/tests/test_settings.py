"""Names and cells that `connect` takes, the encoding of texts, and what is left after an interruption or a failure."""

import os
import pathlib
import signal
import socket
import subprocess
import sys
import tempfile
import time
import unittest
from unittest import mock

import harvlink
from harvlink import ErrorCode, _text, _whole_file

from .support import SimulatorTest

UNKNOWN_NAME = ".".join(["a" * 60] * 5)  # longer than names can be, so no name server is asked

CONFIGURATION = """
retries = 1
timeout = 2000
[cell.press1]
host = "{address}"
timeout = 300
encoding = "latin-1"
[cell.press2]
host = "{address}"
generation = "fs"
[cell.nowhere]
timeout = 300
[cell.misspelt]
host = "{address}"
time = 3
[cell.quoted]
host = "{address}"
retries = "3"
[cell.slow]
host = "{address}"
timeout = 600001
"""

INTERRUPTED = """
import harvlink, signal, sys, threading, time
print("ready", flush=True)
try:
    harvlink.connect(sys.argv[1], timeout=20, retries=0)
except KeyboardInterrupt:
    print("interrupted", flush=True)
"""


class CellTest(SimulatorTest):
    def setUp(self):
        pathlib.Path("config.toml").write_text(CONFIGURATION.format(address=self.simulator.address))
        patch = mock.patch.dict(os.environ, {"HARVLINK_CONFIG": "config.toml"})
        patch.start()
        self.addCleanup(patch.stop)

    def test_a_cell_is_a_controller(self):
        with harvlink.connect(cell="press1") as robot, harvlink.connect(self.simulator.address) as other:
            robot.variables.s[1] = "\xe9"
            self.assertEqual(other.variables.s[1], "\\xE9")
        with self.assertRaisesRegex(ValueError, "'YAS4.*, not of generation FS"):
            harvlink.connect(cell="press2")

    def test_each_setting_has_its_source(self):
        def asked(**given):
            with mock.patch("harvlink.connection.Link", side_effect=StopIteration) as link:
                self.assertRaises(StopIteration, harvlink.connect, **given)
            return link.call_args[0][1].timeout, link.call_args[0][1].retries

        self.assertEqual(asked(address="127.0.0.1"), (500, 3))
        self.assertEqual(asked(cell="press1"), (300, 1))
        self.assertEqual(asked(cell="press2", retries=7), (2000, 7))
        with mock.patch.dict(os.environ, {"HARVLINK_TIMEOUT": "1500", "HARVLINK_RETRIES": "9"}):
            self.assertEqual(asked(cell="press1"), (300, 9))
            self.assertEqual(asked(cell="press2", timeout=1), (1000, 9))

    def test_what_is_wrong_is_named(self):
        for name, text in [
            ("pres1", "there is no cell 'pres1' in config.toml; is press1 meant?"),
            ("zzz", "there are: press1, press2, nowhere, misspelt, quoted, slow"),
            ("nowhere", "config.toml: the cell nowhere has no host"),
            ("misspelt", r"config.toml in \[cell.misspelt\]: there is no setting 'time'; there are: host, timeout"),
            ("quoted", r"config.toml in \[cell.quoted\]: retries must be a whole number"),
            ("slow", "timeout 600001 is out of range, from 1 to 600000"),
        ]:
            with self.subTest(name), self.assertRaisesRegex(ValueError, text):
                harvlink.connect(cell=name)
        for given in [{}, {"cell": "press1", "address": "127.0.0.1"}, {"cell": 5}]:
            self.assertRaises(TypeError, harvlink.connect, **given)
        with mock.patch.dict(os.environ, {"HARVLINK_CONFIG": "", "XDG_CONFIG_HOME": os.getcwd()}):
            with self.assertRaisesRegex(ValueError, "no cell 'press1' without a configuration file"):
                harvlink.connect(cell="press1")


class NameTest(unittest.TestCase):
    def test_a_name_is_resolved(self):
        for name, code in [("localhost", None), (UNKNOWN_NAME, ErrorCode.NAME_NOT_RESOLVED)]:
            try:
                harvlink.connect(name, 1, 0, "observe").close()
            except harvlink.Error as error:
                self.assertEqual(error.code == ErrorCode.NAME_NOT_RESOLVED, code is not None, error)
                self.assertEqual(isinstance(error, ValueError), code is not None)

    def test_an_interrupt_ends_connect(self):
        with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as silent:
            address = f"127.{os.getpid() % 250 + 2}.77.{time.time_ns() % 250 + 2}"
            silent.bind((address, 10040))
            command = [sys.executable, "-c", INTERRUPTED, address]
            with subprocess.Popen(command, stdout=subprocess.PIPE) as program:
                self.assertEqual(program.stdout.readline(), b"ready\n")
                silent.recv(100)  # it waits for the answer now
                begin = time.monotonic()
                program.send_signal(signal.SIGINT)
                self.assertEqual(program.stdout.readline(), b"interrupted\n")
                waited = time.monotonic() - begin
                program.stdout.read()
            self.assertLess(waited, 2)  # not the 20 s of the exchange; 200 ms on a machine that is not busy
            self.assertEqual(program.returncode, 0)


class EncodingTest(unittest.TestCase):
    def test_every_text_can_be_written_back(self):
        for name, read, shown in [
            ("utf-8", b"Gr\xc3\xb6\xc3\x9fe", "Größe"),
            ("utf-8", b"Gr\xf6\xdfe", r"Gr\xF6\xDFe"),
            ("utf-8", b"\xe2\x82", r"\xE2\x82"),
            ("utf-8", rb"\xF6 \x \xG0", r"\x5CxF6 \x \xG0"),
            ("LATIN-1", b"Gr\xf6\xdfe", "Größe"),
            ("cp1252", b"\x80\x81", "€\\x81"),
            ("cp932", b"\x83\x5c\x78\x34\x31", "ソx41"),  # its second byte is that of a backslash
            ("cp932", b"\xfa@\xee\xef", "\u2170\\xEE\\xEF"),  # two forms of a character
            ("cp932", b"\x80\xa0\xfd\xfe\xff", r"\x80\xA0\xFD\xFE\xFF"),
            ("gbk", b"\x80", r"\x80"),
        ]:
            with self.subTest(name, read=read):
                encoding = _text.Encoding(name)
                self.assertEqual(encoding.decode(read), shown)
                self.assertEqual(encoding.encode(shown), read)
        every = bytes(range(256)) * 2 + os.urandom(1000)
        for name in _text.NAMES:
            encoding = _text.Encoding(name)
            self.assertEqual(encoding.encode(encoding.decode(every)), every, name)
        for name, character in [("latin-1", "€"), *(("cp932", each) for each in "\u00a5\u301c\u0080\uf8f1")]:
            with self.subTest(name, character=character), self.assertRaises(ValueError):
                _text.Encoding(name).encode(character)


class WholeFileTest(SimulatorTest):
    @unittest.skipIf(os.name == "nt", "it has neither links nor devices")
    def test_a_failure_leaves_the_old_file(self):
        with harvlink.connect(self.simulator.address, access="observe") as robot:
            file = pathlib.Path("TOOL.CND")
            file.write_text("old")
            file.chmod(0o640)
            link = pathlib.Path("LINK.CND")
            link.symlink_to(file)
            with self.assertRaises(harvlink.Error):
                robot.files.download("NONE.CND", file, overwrite=True)
            with mock.patch("os.replace", side_effect=OSError(28, "No space left on device")):
                with self.assertRaisesRegex(harvlink.Error, "Can't write TOOL.CND: No space left on device"):
                    robot.files.download("TOOL.CND", file, overwrite=True)
            self.assertEqual((file.read_text(), sorted(os.listdir())), ("old", ["LINK.CND", "TOOL.CND"]))
            robot.files.download("TOOL.CND", link, overwrite=True)
            self.assertEqual((file.read_text()[:2], file.stat().st_mode & 0o777), ("//", 0o640))
            self.assertTrue(link.is_symlink())
            with self.assertRaisesRegex(harvlink.Error, "Can't write no/such.CND"):
                robot.files.download("TOOL.CND", "no/such.CND")
            robot.files.download("TOOL.CND", "/dev/null", overwrite=True)
            with self.assertRaisesRegex(harvlink.Error, "Can't write /dev/full: No space left on device"):
                robot.files.download("TOOL.CND", "/dev/full")
        self.assertEqual(sorted(os.listdir()), ["LINK.CND", "TOOL.CND"])

    def test_a_file_that_came_meanwhile_stays(self):
        with tempfile.TemporaryDirectory() as folder:
            path = os.fsencode(os.path.join(folder, "A"))

            def write(part):
                for name, text in ((part, "mine"), (path, "theirs")):
                    pathlib.Path(os.fsdecode(name)).write_text(text)

            with self.assertRaisesRegex(harvlink.Error, "exists already|already exists"):
                _whole_file.write_whole(path, False, write)
            self.assertEqual((pathlib.Path(os.fsdecode(path)).read_text(), os.listdir(folder)), ("theirs", ["A"]))


if __name__ == "__main__":
    unittest.main()
