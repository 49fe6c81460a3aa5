"""Ranges, many things in one call, tables of pandas, and the same for asyncio."""

import asyncio
import inspect
import os
import subprocess
import sys
import time
import unittest

import harvlink
import harvlink.aio
from harvlink import ErrorCode, IOType

from .support import ROOT, SimulatorTest

TABLES = """
import sys, pandas, harvlink
with harvlink.connect(sys.argv[1]) as robot:
    rows = [robot.read(["state", "B0..B3", "position.R1"]) for _ in range(3)]
    table = pandas.DataFrame(rows)
    assert table.shape == (3, 7 + 4 + 8) and table["B1"].sum() == 3 * robot.variables.b[1], table
    assert all(kind != object for name, kind in table.dtypes.items() if "mode" not in name), table.dtypes
    assert pandas.DataFrame(robot.alarms.active())["code"].tolist() == [4107]
print("tables")
"""


class RangeTest(SimulatorTest):
    options = ("--groups", "R1,B1,S1:2")

    def setUp(self):
        self.robot = harvlink.connect(self.simulator.address)
        self.addCleanup(self.robot.close)

    def test_a_range_is_a_list(self):
        variables, signals = self.robot.variables, self.robot.io
        for view, where, values in [
            (variables.b, slice(0, 4), [1, 2, 3, 4]),
            (variables.s, slice(2, 4), ["a", "b"]),
            (variables.r, slice(0, 6, 3), (0.5, 1.5)),
            (signals, slice(27010, 27022), [True] * 8 + [False, True]),
            (signals.registers, slice(5, 7), [7, 8]),
            (signals.bytes, slice(27030, 27050), [0x81, 0x42]),
            (signals.words, slice(27050, 27090), [0x1234, 0x5678]),
            (variables.d, slice(3, 3), []),
        ]:
            with self.subTest(view=view):
                view[where] = values
                self.assertEqual(view[where], list(values))
                self.assertEqual(view.read(range(*where.indices(10**6))), list(values))
        variables.b.write(range(2), [9, 8])
        variables.b.write(2, 7)
        self.assertEqual(variables.b[:4], [9, 8, 7, 4])

    def test_a_failure_names_its_index(self):
        variables = self.robot.variables
        for operation, text in [
            (lambda: variables.b[510:514], "B512: "),
            (lambda: self.robot.io.registers[998:1002], "register 1000: "),
            (lambda: self.robot.read("B510..B513"), "B512: "),
            (lambda: variables.b.__setitem__(slice(510, 513), [1, 2, 3]), "B512: "),
        ]:
            with self.subTest(text), self.assertRaisesRegex(harvlink.Error, text):
                operation()
        for operation, error in [
            (lambda: variables.b[2:], ValueError),
            (lambda: variables.b[-3:3], ValueError),
            (lambda: variables.b[5:0:-1], ValueError),
            (lambda: variables.b.__setitem__(slice(0, 2), [1]), ValueError),
            (lambda: variables.s.__setitem__(slice(0, 2), "ab"), TypeError),
            (lambda: variables.b.__setitem__(slice(0, 2), 5), TypeError),
        ]:
            with self.assertRaises(error):
                operation()

    def test_many_things_are_read_in_one_call(self):
        robot = self.robot
        robot.variables.b[0:3] = [1, 2, 3]
        robot.variables.p[1] = harvlink.Position(axes=(1, 2, 3))
        robot.io[27010] = True
        got = robot.read(["b0..b2", 27010, "27011..27022", "M5", "P1", "state", "position.R1", "torque.S1", "job"])
        self.assertEqual([got["B0"], got["B2"], got["27010"], got["27022"]], [1, 3, True, False])
        self.assertNotIn("27018", got)
        self.assertEqual((got["state.control_mode"], got["job.line"]), ("REMOTE", 0))
        self.assertEqual([got["P1.1"], got["P1.3"]], [1.0, 3.0])
        self.assertEqual(got["position.R1.8"], robot.position("R1").axes[7])
        self.assertTrue(all(type(value) in (bool, int, float, str) for value in got.values()), got)
        self.assertEqual(robot.read("position.R1.base")["position.R1.base.1"], robot.position("R1", 16).axes[0])
        before = robot.statistics().exchanges
        for item in ("B", "B5..B2", "B1..I3", "Q5", "position", "position.R1.nowhere", "position.X9", "torque.R1.base", ""):
            with self.subTest(item), self.assertRaises(ValueError):
                robot.read(["B0", item])
        self.assertEqual(robot.statistics().exchanges, before)

    @unittest.skipIf(os.name == "nt", "there is no pandas")
    def test_pandas_takes_the_results(self):
        python = sys.executable if "pandas" in sys.modules else "/usr/bin/python3"
        if subprocess.run([python, "-c", "import pandas"], capture_output=True).returncode != 0:
            self.skipTest("there is no pandas")
        if "LD_PRELOAD" in os.environ:
            self.skipTest("another interpreter does not use a library with a sanitizer")
        self.simulator.alarm(4107)
        self.addCleanup(self.simulator.reset)
        environment = {**os.environ, "PYTHONPATH": str(ROOT / "python")}
        command = [python, "-c", TABLES, self.simulator.address]
        ended = subprocess.run(command, env=environment, capture_output=True, text=True)
        self.assertEqual(ended.stdout, "tables\n", ended.stderr)


class AsyncTest(SimulatorTest):
    def test_the_names_are_the_same(self):
        async def run():
            plain = harvlink.connect(self.simulator.address)
            async with harvlink.aio.connect(self.simulator.address) as robot:
                for part in ("", *(name for name in vars(plain) if not name.startswith("_"))):
                    one, other = (plain, robot) if part == "" else (getattr(plain, part), getattr(robot, part))
                    for name, value in inspect.getmembers(one, inspect.ismethod):
                        if not name.startswith("_"):
                            self.assertTrue(inspect.iscoroutinefunction(getattr(other, name)), (part, name))
                            self.assertEqual(getattr(other, name).__doc__ is None, value.__doc__ is None)
                await robot.variables.b.write(range(3), [1, 2, 3])
                self.assertEqual(await robot.variables.b[0:3], [1, 2, 3])
                self.assertEqual(await robot.io[IOType.NETWORK_INPUT, 1, 0], plain.io[27010])
                self.assertEqual(await robot.io.words[27010], plain.io.words[27010])
                self.assertEqual(await robot.state(), plain.state())
                self.assertEqual((await robot.read("B1"))["B1"], 2)
                self.assertEqual(robot.link, harvlink.LinkState.ONLINE)
                both = await asyncio.gather(*(robot.variables.i[index] for index in range(40)))
                self.assertEqual(len(both), 40)
                with self.assertRaisesRegex(TypeError, "can't be awaited"):
                    robot.variables.b[0] = 1
                with self.assertRaises(AttributeError):
                    robot.nothing
            with self.assertRaises(ValueError):
                await robot.state()
            await robot.close()
            plain.close()
            (await harvlink.aio.connect(self.simulator.address))._plain.close()

        asyncio.run(run())

    def test_the_loop_goes_on(self):
        async def run():
            async with harvlink.aio.connect(self.simulator.address, timeout=1, retries=0) as robot:
                self.simulator.fault("drop")
                waiting = asyncio.ensure_future(robot.state())
                ticks = 0
                while not waiting.done():
                    await asyncio.sleep(0.01)
                    ticks += 1
                self.assertGreater(ticks, 10)
                self.assertEqual(waiting.exception().code, ErrorCode.RESPONSE_TIMEOUT)
            self.simulator.fault("drop")
            begin = time.monotonic()
            with self.assertRaises(asyncio.TimeoutError):
                await asyncio.wait_for(harvlink.aio.connect(self.simulator.address, 1, 0)._connect(), 0.05)
            self.assertLess(time.monotonic() - begin, 0.9)

        asyncio.run(run())


if __name__ == "__main__":
    unittest.main()
