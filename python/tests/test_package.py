"""The package as its users see it."""

import contextlib
import io
import os
import pathlib
import re
import shutil
import subprocess
import sys
import sysconfig
import tempfile
import threading
import unittest
import warnings

import harvlink
from harvlink import CoordinateType, Conversion, ErrorCode, IOType, Motion, MoveType, Position

from .support import ROOT, SimulatorTest

SCENE = """
[controller]
groups = ["R1", "B1", "S1:2"]
time_scale = 50.0

[[alarms]]
code = 4107
subcode = 3
name = "Out of range"
"""
ALL_BYTES = "".join(chr(byte) for byte in range(1, 256))
JOB = "/JOB\r\n//NAME OWN\r\n///COMM \xe4\xff\r\n//INST\r\nNOP\r\nEND\r\n"
DOWN = Position(CoordinateType.BASE, (760.0, 0.0, 985.0, 180.0))


class ConnectedTest(SimulatorTest):
    @classmethod
    def setUpClass(cls):
        scene = tempfile.NamedTemporaryFile("w", suffix=".toml")
        cls.addClassCleanup(scene.close)
        scene.write(SCENE)
        scene.flush()
        cls.options = ("--scene", scene.name)
        super().setUpClass()

    def setUp(self):
        self.robot = harvlink.connect(self.simulator.address, encoding="latin-1")
        self.addCleanup(self.robot.close)

    def test_what_is_written_is_read(self):
        variables, signals = self.robot.variables, self.robot.io
        figure = harvlink.Figure(
            s_angle=harvlink.AxisAngle.GREATER_THAN_180, flip_or_no_flip=harvlink.FlipOrNoFlip.NO_FLIP
        )
        for view, place, value in [
            *(
                (variables.b, 0, 255),
                (variables.i, 1, -(2**15)),
                (variables.d, 2, -(2**31)),
                (variables.r, 3, 0.25),
            ),
            *((variables.s, index, ALL_BYTES[start : start + 32]) for index, start in enumerate(range(0, 255, 32))),
            (variables.p, 1, Position(CoordinateType.USER, (1.5, -2.25, 3, 90), 2, 5, figure)),
            (variables.bp, 1, Position(CoordinateType.BASE, (250.5,))),
            (variables.ex, 1, Position(CoordinateType.PULSE, (1000, -2000))),
            *((signals, 27010, True), (signals, 27010, False), (signals, (IOType.NETWORK_INPUT, 1, 7), True)),
            *((signals.bytes, 27020, 0x81), (signals.bytes, (IOType.NETWORK_INPUT, 2), 0x42)),
            *(
                (signals.words, 27030, 0xBEEF),
                (signals.words, (IOType.NETWORK_INPUT, 3), 0x1234),
                (signals.registers, 7, 0xFFFF),
            ),
        ]:
            with self.subTest(view=view, place=place):
                view[place] = value
                self.assertEqual(view[place], value)
                self.assertIs(type(view[place]), type(value))

    def test_nothing_is_cut_silently(self):
        variables, signals = self.robot.variables, self.robot.io
        for view, place, value, error in [
            *((variables.b, 0, 256, OverflowError), (variables.b, 0, -1, OverflowError)),
            *((variables.i, 0, 2**15, OverflowError), (variables.d, 0, 2**31, OverflowError)),
            *((variables.b, 2**16, 1, OverflowError), (signals.registers, 1, 2**16, OverflowError)),
            *(
                (signals.bytes, 27010, 256, OverflowError),
                (signals.words, (IOType.NETWORK_INPUT, 1), -1, OverflowError),
            ),
            *((variables.s, 1, "a\0b", ValueError), (variables.s, 1, "\u20ac", ValueError)),
        ]:
            with self.subTest(view=view, value=value), self.assertRaises(error):
                view[place] = value
        with self.assertRaises(OverflowError):
            variables.b[2**16]
        with self.assertRaises(TypeError):
            variables.i[0] = 1.5
        with self.assertRaises(ValueError):
            self.robot.files.upload("OWN.JBI\0.txt")
        with self.assertRaises(ValueError):
            Position(axes=range(9))

    def test_a_switch_is_a_truth_value(self):
        robot = self.robot
        robot.close()  # an operation that sends in spite of the wrong value raises ValueError
        for name, operation in [
            *(("servos", robot.control.servos), ("hold", robot.control.hold), ("clear", robot.motion.stop)),
            ("a signal", lambda value: robot.io.__setitem__(10010, value)),
            ("in_order", lambda value: robot.files.list("JBI", value)),
            ("overwrite", lambda value: robot.files.download("OWN.JBI", "OWN.JBI", value)),
        ]:
            for value in ("off", None, 2, 0.0):
                with self.subTest(name, value=value), self.assertRaises(TypeError) as caught:
                    operation(value)
                self.assertEqual(str(caught.exception), f"{name} takes True or False, not {value!r}")

    def test_failures(self):
        robot = self.robot
        for operation, code, text in [
            (lambda: robot.variables.b[3000], ErrorCode.INVALID_VARIABLE_INDEX, "The requested variable index"),
            (lambda: robot.variables.s[3000], ErrorCode.INVALID_VARIABLE_INDEX, "The requested variable index"),
            (lambda: robot.position("R2"), ErrorCode.CONTROL_GROUP_NOT_ATTACHED, "This Control Group is not attached"),
            (lambda: robot.io.address(IOType.NETWORK_INPUT, 1, 8), ErrorCode.INVALID_BIT_VALUE, ""),
            (lambda: robot.files.get("NONE.TXT"), ErrorCode.INVALID_FILE_EXTENSION, ""),
            (lambda: robot.jobs.select("OWN", 10000), -79979008, "Invalid line number."),
            (lambda: robot.alarms.history(7), ErrorCode.INVALID_ALARM_CATEGORY, ""),
            (lambda: robot.motion.add(Motion("R1", Position(), 101)), ErrorCode.JOINT_SPEED_OUT_OF_RANGE, ""),
            (lambda: robot.motion.progress("R2"), 65504, "Group does not exist."),
        ]:
            with self.subTest(code), self.assertRaises(harvlink.Error) as caught:
                operation()
            self.assertEqual(caught.exception.code, code)
            self.assertIn(text, caught.exception.text)
        for operation, error in [
            *((lambda: robot.position("X1"), ValueError), (lambda: robot.files.list("TXT"), ValueError)),
            *((lambda: harvlink.connect("127.1"), ValueError), (lambda: harvlink.connect(5), TypeError)),
        ]:
            with self.assertRaises(error):
                operation()

    def test_alarms_come_with_their_texts(self):
        (alarm,) = self.robot.alarms.active()
        self.assertEqual((alarm.code, alarm.subcode, alarm.name), (4107, 3, "Out of range"))
        self.assertIn(alarm, self.robot.alarms.history(harvlink.AlarmCategory.MINOR))
        self.assertTrue(self.robot.state().is_alarming)
        self.robot.alarms.clear()
        self.assertEqual(self.robot.alarms.active(), [])

    def test_files(self):
        files = self.robot.files
        files.put("OWN.JBI", JOB)
        self.assertEqual(files.get("OWN.JBI"), JOB)
        self.assertIn("OWN.JBI", files.list("jbi"))
        self.assertEqual(files.count(".JBI"), len(files.list("JBI")))
        self.robot.jobs.select("own")
        copy = pathlib.Path("OWN.JBI")
        files.download("OWN.JBI", copy)
        self.assertEqual(copy.read_bytes().decode("latin-1"), JOB)
        with self.assertRaises(harvlink.Error):
            files.download("OWN.JBI", copy)
        files.download("OWN.JBI", copy, overwrite=True)
        files.upload(copy)
        self.robot.jobs.select("PICK")
        files.delete("OWN")
        self.assertNotIn("OWN.JBI", files.list("JBI"))

    def test_the_arm_moves(self):
        robot = self.robot
        robot.alarms.clear()
        robot.control.servos(True)
        self.addCleanup(robot.control.servos, False)
        start = robot.position("R1")
        turn = Motion("R1", start.shifted(20000), 50, acceleration=50, deceleration=50)
        robot.motion.add(turn, Motion("B1", robot.position("B1").shifted(1000), 50))
        robot.motion.start()
        self.assertAlmostEqual(robot.motion.wait(turn, timeout=20).axes[0], start.axes[0] + 20000, delta=1)
        here = robot.position("R1", CoordinateType.BASE)
        self.assertEqual(
            robot.kinematics.convert(robot.position("R1"), Conversion.PULSE_TO_CARTESIAN).axes[2], here.axes[2]
        )
        x, y, z, *angles = here.axes
        arc = Motion(
            "R1", Position(here.kind, (x, y, z - 80, *angles)), 100, MoveType.CIRCLE, via=(x - 40, y, z - 40, *angles)
        )
        robot.motion.add(arc)
        self.assertAlmostEqual(robot.motion.wait(arc, timeout=20).axes[2], z - 80, delta=1)
        robot.motion.stop()
        with self.assertRaises(harvlink.Error) as caught:
            robot.motion.wait(turn, timeout=20)
        self.assertEqual(caught.exception.code, ErrorCode.STEP_WITHDRAWN)

    def test_what_is_waited_for(self):
        robot, motion = self.robot, self.robot.motion
        robot.alarms.clear()
        robot.control.servos(True)
        self.addCleanup(robot.control.servos, False)
        start = robot.position("R1")
        path = [Motion("R1", start.shifted(offset), 50) for offset in (20000, 40000, 0)]
        for rounds in (1, 2):  # targets reached in the first round must not count in the second
            numbers = [motion.add(point) for point in path]
            self.assertEqual(numbers[-1], numbers[0] + 2)
            with self.assertRaises(TimeoutError):
                motion.wait(path[-1], timeout=0)
            motion.start()
            self.assertAlmostEqual(motion.wait(path[-1], timeout=20).axes[0], start.axes[0], delta=1)
            self.assertEqual(motion.progress(), 3 * rounds)
            motion.stop(clear=False)
        motion.wait(path[0], timeout=0)  # passed
        motion.wait(numbers[1], timeout=0)
        motion.wait_until_sent(numbers[2], timeout=0)
        refused = Motion("R1", start.shifted(2000000), 50)
        motion.start()
        for unsure in (False, True):
            motion.add(refused)
            with self.subTest(unsure), self.assertRaisesRegex(harvlink.Error, "did not arrive: alarm 8015-") as caught:
                motion.wait(refused, timeout=20)
            self.assertEqual(caught.exception.code, 8015)
            state = motion.state()
            self.assertEqual(state.queued, state.sent + state.refused + state.withdrawn)
            self.assertEqual((state.last_failure.step, state.last_failure.group.name), (state.queued, "R1"))
            self.assertEqual(state.monitor, harvlink.TrajectoryMonitorState.FAILED)
            robot.alarms.clear()
            robot.control.servos(True)
        for never_added in (Motion("R1", start, 50), 0):
            with self.assertRaises(ValueError):
                motion.wait(never_added, timeout=0)
        for drop in (lambda: None, motion.clear):  # the refusal has cleared the targets too
            drop()
            motion.add(path[0])
            motion.start()
            motion.wait(path[0], timeout=20)
        motion.stop()

    def test_the_session_of_the_readme(self):
        text = (ROOT / "python/README.md").read_text()
        shown_first = text.split("```python\n")[1].split("```")[0]
        self.assertIn(shown_first, (ROOT / "README.md").read_text())
        session = shown_first.replace("127.0.0.1", self.simulator.address)
        self.robot.alarms.clear()
        with contextlib.redirect_stdout(io.StringIO()) as shown:
            exec(session, {})
        self.robot.motion.stop()
        self.assertRegex(shown.getvalue(), r"State\(.*\)\narrived at PULSE ")

    def test_a_circle_needs_its_point_and_the_first_place(self):
        arc = Motion("R1", DOWN, 100, MoveType.CIRCLE, via=(1, 2, 3))
        for wrong in (
            lambda: Motion("R1", DOWN, 100, MoveType.CIRCLE),
            lambda: Motion("R1", DOWN, 100, MoveType.LINE, via=(1, 2, 3)),
            lambda: self.robot.motion.add(Motion("B1", Position(), 10), arc),
            lambda: Motion("R1", DOWN, float("nan")),
            lambda: self.robot.motion.add(*[arc] * 5),
        ):
            with self.assertRaises(ValueError):
                wrong()

    def test_what_a_success_left_out_is_a_warning(self):
        with warnings.catch_warnings(record=True) as caught:
            warnings.simplefilter("always")
            self.robot.variables.s[9] = "x" * 33
            self.robot.variables.s[9] = "x" * 32
        self.assertEqual([(w.category, w.filename) for w in caught], [(harvlink.Note, __file__)])
        self.assertIn("truncated", str(caught[0].message))

    def test_closing_waits_for_others_and_happens_once(self):
        stop = threading.Event()
        seen = []

        def read():
            try:
                while not stop.is_set():
                    seen.append(self.robot.variables.b[0])
            except ValueError:
                seen.append("closed")

        readers = [threading.Thread(target=read) for _ in range(4)]
        self.addCleanup(stop.set)
        for reader in readers:
            reader.start()
        with self.robot:
            self.robot.state()
        self.robot.close()
        for reader in readers:
            reader.join(20)
        self.assertEqual(seen.count("closed"), 4)
        with self.assertRaises(ValueError):
            self.robot.state()

    def test_a_forgotten_connection_is_closed(self):
        with self.assertWarns(ResourceWarning):
            robot = harvlink.connect(self.simulator.address)
            del robot

    def test_frames(self):
        turned, up = harvlink.Pose(5, 6, 7, 0, 0, 90).frame(), harvlink.Vector(0, 0, 1)
        self.assertAlmostEqual(turned.n.y, 1)
        self.assertAlmostEqual(turned.rotated(up, -90).n.x, 1)
        self.assertAlmostEqual((turned @ turned.inverse()).o.y, harvlink.Frame.identity().o.y)
        self.assertEqual((turned.pose().rz, turned.pose().z), (90, 7))
        self.assertEqual(harvlink.Vector(1, 2, 3).cross(up), harvlink.Vector(2, -1, 0))

    def test_numbers_without_a_name_keep_their_value(self):
        self.assertEqual(CoordinateType(21) + 0, 21)
        with self.assertRaises(ValueError):
            CoordinateType("PULSE")


@unittest.skipIf("LD_PRELOAD" in os.environ, "an installed package does not use a library with a sanitizer")
class InstallTest(unittest.TestCase):
    def test_an_installed_package_brings_its_library(self):
        with tempfile.TemporaryDirectory() as folder:
            pip = [sys.executable, "-m", "pip", "--disable-pip-version-check", "install", "--quiet", "--no-index"]
            if subprocess.run([*pip[:3], "--version"], capture_output=True).returncode != 0:
                self.skipTest("this interpreter has no pip")
            subprocess.run([*pip, "--no-deps", "--target", folder, ROOT / "python"], check=True, capture_output=True)
            environment = {key: value for key, value in os.environ.items() if key != "HARVLINK_LIBRARY"}
            program = "import harvlink; print(harvlink.Vector(1, 2, 3).dot(harvlink.Vector(1, 1, 1)))"
            shown = subprocess.run(
                [sys.executable, "-c", program], cwd=folder, env=environment, check=True, capture_output=True, text=True
            )
            self.assertEqual(shown.stdout, "6.0\n")

    def test_a_wheel_says_where_it_runs(self):
        program = "import native_parts, sys; print(native_parts.platform(sys.argv[1:]))"
        environment = {**os.environ, "PYTHONPATH": str(ROOT / "python")}

        def tag(*paths):
            command = [sys.executable, "-c", program, *paths]
            return subprocess.run(command, env=environment, check=True, capture_output=True, text=True).stdout.strip()

        library, simulator = os.environ["HARVLINK_LIBRARY"], os.environ["HARVLINK_SIMULATOR"]
        here = re.sub(r"[-.]", "_", sysconfig.get_platform())
        self.assertEqual(tag(library, simulator), here)  # the latter needs libfmt
        self.assertEqual(tag("build/windows/src/harvlink.dll"), "win_amd64")
        least = re.fullmatch(rf"manylinux_2_(\d+)_{here[6:]}", tag(library))[1]
        self.assertIn(int(least), range(17, int(os.confstr("CS_GNU_LIBC_VERSION").split(".")[1]) + 1))
        versions = subprocess.run(["readelf", "-VW", library], check=True, capture_output=True, text=True).stdout
        self.assertGreaterEqual(int(least), max(map(int, re.findall(r"Name: GLIBC_2\.(\d+)", versions))))

    def test_a_source_distribution_has_what_a_build_needs(self):
        with tempfile.TemporaryDirectory() as folder:
            build = [sys.executable, "-c", f"import backend; backend.build_sdist({folder!r})"]
            subprocess.run(build, cwd=ROOT / "python", check=True, capture_output=True)
            (archive,) = pathlib.Path(folder).iterdir()
            shutil.unpack_archive(archive, folder)
            (sources,) = pathlib.Path(folder).glob("harvlink-*/sources")
            pip = [sys.executable, "-m", "pip", "--disable-pip-version-check", "install", "--quiet", "--no-index"]
            subprocess.run(
                [*pip, "--no-deps", "--target", f"{folder}/to", sources.parent], check=True, capture_output=True
            )
            self.assertTrue(pathlib.Path(folder, "to/harvlink/libharvlink.so").is_file())
            configure = ["cmake", "-S", sources, "-B", f"{folder}/build", "-DHARVLINK_BUILD_SIMULATOR=ON"]
            configure += ["-DHARVLINK_PORTABLE=ON", "-DHARVLINK_INSTALL=OFF"]
            subprocess.run(configure, check=True, capture_output=True)

    def test_a_missing_library_is_named(self):
        environment = {**os.environ, "HARVLINK_LIBRARY": "/nowhere/libharvlink.so", "PYTHONPATH": str(ROOT / "python")}
        program = "import harvlink; harvlink.connect('127.0.0.1')"
        ended = subprocess.run([sys.executable, "-c", program], env=environment, capture_output=True, text=True)
        self.assertIn("OSError: HARVLINK_LIBRARY does not name a file: /nowhere/libharvlink.so", ended.stderr)


if __name__ == "__main__":
    unittest.main()
