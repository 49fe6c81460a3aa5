"""A fleet in Python: what it reads, says and refuses."""

import asyncio
import unittest

import harvlink
from harvlink import ControlMode, Fleet, FleetEventKind, FleetQuality, FleetState

from .support import SimulatorTest


class FleetTest(SimulatorTest):
    def setUp(self):
        self.fleet = Fleet()
        self.addCleanup(self.fleet.close)

    def first(self, name):
        """The first good sample of an item."""
        return next(sample for sample in self.fleet if sample.item == name and sample.quality == FleetQuality.GOOD)

    def test_values_are_those_of_a_connection(self):
        self.fleet.add(
            "press1",
            self.simulator.address,
            state=0.02,
            alarms=0.02,
            job=0.02,
            software=0.02,
            operating_time=(harvlink.TimeType.CONTROL_POWER, 0.02),
            position=[("R1", 0.02), ("R1", "base", 0.02), ("R1", "base", 2, 0.02)],
            torque=("R1", 0.02),
            position_error=("R1", 3, 0.02),
            b=[(5, 0.02), (range(7, 9), 0.02)],
            r=(1, 0.02),
            s=(1, 0.02),
            p=(1, 0.02),
            signal=(10010, 0.02),
            register=(1, 0.02),
            progress=(0, 0.02),
        )
        with harvlink.connect(self.simulator.address, access="observe") as robot:
            expected = {
                "state": robot.state(),
                "alarms": robot.alarms.active(),
                "job 0": robot.jobs.executing(),
                "position R1 pulse": robot.position("R1"),
                "position R1 base axis 2": robot.position("R1", harvlink.CoordinateType.BASE).axes[2],
                "torque R1": robot.groups.torque("R1"),
                "position_error R1 axis 3": robot.groups.position_error("R1")[3],
                "b5": 0,
                "b8": 0,
                "r1": 0.0,
                "s1": "",
                "signal 10010": False,
                "register 1": 0,
                "progress 0": 0.0,
            }
            self.assertEqual(self.first("p1").value, robot.variables.p[1])
            self.first("progress 0")  # the last of the round
            self.first("progress 0")
            latest = self.fleet.latest()
            values = dict(zip(latest["item"], latest["value"]))
            self.assertEqual(len(values), 19)
            for name, value in expected.items():
                with self.subTest(name):
                    self.assertEqual(values[name], value)
            self.assertEqual(values["software 11"].software_version[:2], "YA")
            self.assertGreater(values["operating_time 1"].elapsed.total_seconds(), 0)

    def test_events_plan_and_statistics(self):
        self.fleet.add("press1", self.simulator.address, state=0.01)
        self.assertAlmostEqual(self.fleet.plan()[0].exchanges_per_second, 100.0)
        self.assertEqual(self.first("state").value.control_mode, ControlMode.REMOTE)
        event = self.fleet.events(5.0)[0]
        self.assertEqual((event.kind, event.after), (FleetEventKind.STATE_CHANGED, FleetState.ONLINE))
        seen = self.fleet.statistics()[0]
        self.assertEqual((seen.controller, seen.state, len(seen.rounds)), ("press1", FleetState.ONLINE, 1))
        self.fleet.remove("press1")
        self.assertEqual(self.fleet.samples(), [])

    def test_a_controller_is_changed_while_it_is_watched(self):
        self.fleet.add("press1", self.simulator.address, state=0.01)
        self.first("state")
        with self.assertRaisesRegex(harvlink.Error, '"B2049"'):
            self.fleet.change("press1", self.simulator.address, b=(2049, 0.01))
        self.first("state")
        self.fleet.change("press1", self.simulator.address, lanes=2, b=(5, 0.01))
        self.first("b5")
        self.assertEqual(self.fleet.latest()["item"], ["b5"])
        with self.assertRaisesRegex(harvlink.Error, '"press2"'):
            self.fleet.change("press2", self.simulator.address, state=1.0)

    def test_async_iteration(self):
        async def one():
            async for sample in self.fleet:
                return sample

        self.fleet.add("press1", self.simulator.address, state=0.01)
        self.assertEqual(asyncio.run(one()).controller, "press1")

    def test_what_can_not_be_read_is_named(self):
        address = self.simulator.address
        for wanted, says in (
            ({"state": 0.0001}, "its period"),
            ({"b": (2049, 1.0)}, '"B2049"'),
            ({}, "1 to 16 groups"),
            ({"state": 1.0, "timeout": 0.0}, "timeout"),
        ):
            with self.subTest(says), self.assertRaisesRegex(harvlink.Error, says) as caught:
                self.fleet.add("press1", address, **wanted)
            self.assertEqual(caught.exception.code, harvlink.ErrorCode.INVALID_FLEET)
        for wanted in ({"colour": 1.0}, {"b": (-1, 1.0)}, {"b": (range(0, 4, 2), 1.0)}, {"position": ("R9", 1.0)}):
            with self.subTest(wanted), self.assertRaises(ValueError):
                self.fleet.add("press1", address, **wanted)
        with self.assertRaises(harvlink.Error):
            self.fleet.remove("press1")
        self.fleet.close()
        with self.assertRaises(ValueError):
            self.fleet.start()


if __name__ == "__main__":
    unittest.main()
