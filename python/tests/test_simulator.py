"""The virtual controller of the package: started, driven and given to pytest."""

import importlib.util
import os
import pathlib
import subprocess
import sys
import tempfile
import time
import unittest
from unittest import mock

import harvlink
from harvlink import ControlMode
from harvlink.simulator import Simulator

from .support import ROOT

USER_TEST = """
import harvlink, pytest
pytest_plugins = ["harvlink.pytest_plugin"]

def test_an_alarm(harvlink_simulator, harvlink_robot):
    harvlink_simulator.alarm(4107, 3)
    assert harvlink_robot.alarms.active()[0].subcode == 3

@pytest.mark.harvlink_simulator("--generation", "FS")
def test_an_older_one(harvlink_robot):
    assert harvlink_robot.controller.system_information().software_version.startswith("FS")

def test_alone(harvlink_simulator):
    assert harvlink_simulator.show()["alarms"] == []
"""


class SimulatorClassTest(unittest.TestCase):
    def test_it_is_driven(self):
        with Simulator("--verbose") as simulator, harvlink.connect(simulator.address) as robot:
            simulator.servo(True)
            simulator.hold()
            simulator.signal(20010, True)
            simulator.set("variables.B.5 = 12")
            self.assertEqual((robot.io[20010], robot.variables.b[5]), (True, 12))
            self.assertTrue(robot.state().is_hold)
            simulator.hold(False)
            self.assertFalse(robot.state().is_hold)
            simulator.alarm(4107, 3, "Out of range")
            self.assertEqual(robot.alarms.active()[0].name, "Out of range")
            self.assertFalse(robot.state().is_servo_on)
            simulator.reset()
            simulator.mode("play")
            self.assertEqual(robot.state().control_mode, ControlMode.PLAY)
            simulator.fault("drop", 2)
            robot.state()
            simulator.faults("refuse=100%")
            self.assertRaises(harvlink.Error, robot.state)
            simulator.faults("none")
            for _ in range(2000):  # its output is read, else it would stop at the first 64 KiB
                robot.variables.b[0]
            shown = simulator.show()
            self.assertEqual((shown["mode"], shown["faults"]["drop"], shown["alarms"]), ("play", 2, []))
            with self.assertRaisesRegex(ValueError, "there is no signal 7"):
                simulator.signal(7, True)
        self.assertRaises(OSError, simulator.show)
        simulator.stop()

    def test_what_goes_wrong_at_the_start_is_told(self):
        with self.assertRaisesRegex(RuntimeError, "did not start: .*'XX' is not a generation"):
            Simulator("--generation", "XX")
        with Simulator() as first, self.assertRaisesRegex(RuntimeError, "can't bind"):
            Simulator("--address", first.address)
        with mock.patch.dict(os.environ, {"HARVLINK_SIMULATOR": "", "PATH": ""}):
            with mock.patch("harvlink.simulator.build_folders", return_value=[]):
                self.assertRaisesRegex(FileNotFoundError, "harvlink-tools", Simulator)

    def test_it_ends_with_its_starter(self):
        program = "from harvlink.simulator import Simulator; import os; print(Simulator().address, flush=True); os._exit(1)"
        environment = {**os.environ, "PYTHONPATH": str(ROOT / "python")}
        shown = subprocess.run([sys.executable, "-c", program], env=environment, capture_output=True, text=True)
        deadline = time.monotonic() + 20
        while True:
            try:
                Simulator("--address", shown.stdout.strip()).stop()
                return
            except RuntimeError:
                self.assertLess(time.monotonic(), deadline)


class PytestTest(unittest.TestCase):
    def test_a_test_of_a_user_gets_one(self):
        interpreters = [sys.executable] if importlib.util.find_spec("pytest") else ["/usr/bin/python3"]
        own = {key: value for key, value in os.environ.items() if key != "PYTHONPATH"}
        if subprocess.run([*interpreters, "-c", "import pytest"], capture_output=True, env=own).returncode != 0:
            self.skipTest("there is no pytest")
        if "LD_PRELOAD" in os.environ:
            self.skipTest("another interpreter does not use a library with a sanitizer")
        with tempfile.TemporaryDirectory() as folder:
            pathlib.Path(folder, "test_cell.py").write_text(USER_TEST)
            command = [*interpreters, "-m", "pytest", "-q", "-p", "no:cacheprovider", "test_cell.py"]
            environment = {**own, "PYTHONPATH": str(ROOT / "python")}
            ended = subprocess.run(command, cwd=folder, env=environment, capture_output=True, text=True)
            self.assertIn("3 passed", ended.stdout, ended.stdout + ended.stderr)


if __name__ == "__main__":
    unittest.main()
