"""The programs themselves in a plant: downloads through a bad network, and looking while another program moves the arm."""

import os
import subprocess
import time
import unittest

import harvlink
from harvlink import Motion

from .support import SimulatorTest

TOOL = os.environ.get("HARVLINK_TOOL")
FAULTS = "seed=17,file-duplicate=1%,file-drop=0.05%,file-misnumber=0.1%"
CONTENTS = "".join(f"line {number:06}\r\n" for number in range(20000))  # 260,000 bytes, each block another
DOWNLOADS = int(os.environ.get("HARVLINK_DOWNLOADS", "100"))


def by_the_tool(address, folder):
    """The contents of a download, or None if it failed with a code."""
    target = os.path.join(folder, "PLANT.DAT")
    if os.path.exists(target):
        os.remove(target)
    arguments = ["--host", address, "--timeout", "50", "--retries", "1", "files", "get", "PLANT.DAT", "--to", folder]
    result = subprocess.run([TOOL, *arguments], capture_output=True, text=True)
    if result.returncode != 0:
        assert "Code (" in result.stderr and not os.path.exists(target), result
        return None
    with open(target, "rb") as file:
        return file.read().decode()


class DownloadTest(SimulatorTest):
    def setUp(self):
        with harvlink.connect(self.simulator.address, access="operate") as robot:
            robot.files.put("PLANT.DAT", CONTENTS)
        self.simulator.faults(FAULTS)
        self.addCleanup(self.simulator.faults, "none")

    def check(self, downloads):
        outcomes = [got == CONTENTS for got in downloads if got is not None]
        self.assertTrue(all(outcomes), "a download is wrong and counts as right")
        self.assertGreater(len(outcomes), DOWNLOADS // 2, "most succeed, as they begin anew")

    def test_downloads_of_the_package_are_whole_or_fail(self):
        def downloads():
            with harvlink.connect(self.simulator.address, 0.05, 1, "observe") as robot:
                for _ in range(DOWNLOADS):
                    try:
                        yield robot.files.get("PLANT.DAT")
                    except harvlink.Error as error:
                        self.assertNotEqual(error.code, 0)
                self.assertGreater(robot.statistics().doubled_answers, 0)

        self.check(downloads())

    @unittest.skipUnless(TOOL, "the tool is not built")
    def test_downloads_of_the_tool_are_whole_or_fail(self):
        self.check(by_the_tool(self.simulator.address, os.getcwd()) for _ in range(DOWNLOADS))


@unittest.skipUnless(TOOL, "the tool is not built")
class PathTest(SimulatorTest):
    options = ("--time-scale", "20")

    def tool(self, *arguments):
        subprocess.run([TOOL, "--host", self.simulator.address, *arguments], check=True, capture_output=True)

    def test_a_start_goes_on_to_the_targets_of_another_program(self):
        with harvlink.connect(self.simulator.address) as robot:
            robot.control.servos(True)
            target = robot.position("R1").shifted(20000)
            robot.motion.start()
            robot.motion.wait_until_sent(robot.motion.add(Motion("R1", target, 5)))
            robot.motion.stop(clear=False)
            self.assertLess(robot.motion.progress("R1"), 1)
        self.tool("motion", "start", "--yes")
        with harvlink.connect(self.simulator.address, access="observe") as robot:
            end = time.monotonic() + 30
            while robot.motion.progress("R1") < 1 and time.monotonic() < end:
                time.sleep(0.01)
            self.assertEqual(robot.position("R1").axes[0], target.axes[0])
            self.assertEqual(robot.motion.progress("R1"), 1)

    def test_looking_leaves_a_path_complete(self):
        points = 200
        with harvlink.connect(self.simulator.address) as robot:
            robot.control.servos(True)
            robot.motion.start()
            home = robot.position("R1")
            path = [Motion("R1", home.shifted(offset), 100) for offset in [3000, 0] * (points // 2)]
            last = [robot.motion.add(motion) for motion in path][-1]
            looks = 0
            while robot.motion.progress("R1") < points and looks < 1000:
                self.tool("status")
                looks += 1
            robot.motion.wait(last)
            self.assertEqual(robot.motion.progress("R1"), points)
            self.assertGreater(looks, 3)
            self.assertEqual(robot.alarms.active(), [])


if __name__ == "__main__":
    unittest.main()
