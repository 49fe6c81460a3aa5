"""What a connection may send, which rules hold for what it receives, and what it tells about its link."""

import datetime
import os
import unittest

import harvlink
from harvlink import Access, ErrorCode, LinkState, _connect_options, file

from .support import Simulator, SimulatorTest

NOBODY = "127.255.255.254"


def code_of(operation):
    """0 if it succeeds."""
    try:
        operation()
    except harvlink.Error as error:
        return error.code
    return 0


class AccessTest(SimulatorTest):
    def test_each_operation_takes_its_access(self):
        def put(robot):
            robot.files.put("OWN.JBI", "/JOB\r\n//NAME OWN\r\n//INST\r\nNOP\r\nEND\r\n")

        operations = [
            ("state", Access.OBSERVE, lambda robot: robot.state()),
            ("position", Access.OBSERVE, lambda robot: robot.position("R1")),
            ("variable", Access.OBSERVE, lambda robot: robot.variables.p[1]),
            ("signal", Access.OBSERVE, lambda robot: robot.io[10010]),
            ("file", Access.OBSERVE, lambda robot: robot.files.get(robot.files.list("JBI")[0])),
            ("progress", Access.OBSERVE, lambda robot: robot.motion.progress()),
            ("written variable", Access.OPERATE, lambda robot: robot.variables.b.__setitem__(5, 12)),
            ("written signal", Access.OPERATE, lambda robot: robot.io.__setitem__(10010, True)),
            ("stored file", Access.OPERATE, put),
            ("servos", Access.OPERATE, lambda robot: robot.control.servos(True)),
            ("stop", Access.OPERATE, lambda robot: robot.motion.stop()),
            ("clear", Access.OPERATE, lambda robot: robot.motion.clear()),
            ("start", Access.FULL, lambda robot: robot.motion.start()),
        ]
        for access in Access:
            with harvlink.connect(self.simulator.address, access=access.name.lower()) as robot:
                for name, needed, operation in operations:
                    with self.subTest(name, access=access.name):
                        denied = ErrorCode.ACCESS_DENIED if needed > access else 0
                        self.assertEqual(code_of(lambda: operation(robot)), denied)

    def test_the_statistics_tell_of_the_link(self):
        before = datetime.datetime.now(datetime.timezone.utc) - datetime.timedelta(seconds=5)
        with harvlink.connect(self.simulator.address, access=Access.OBSERVE) as robot:
            first = robot.statistics()
            robot.state()
            robot.files.get(robot.files.list("JBI")[0])
            now = robot.statistics()
        self.assertGreater(now.exchanges, first.exchanges + 2)
        self.assertGreater(now.blocks_received, first.blocks_received)
        self.assertGreater(now.bytes_sent, 0)
        self.assertEqual(now.link, LinkState.ONLINE)
        self.assertLess(before, now.link_since)
        self.assertEqual(tuple(now.rules), harvlink.RULES)
        self.assertEqual(now.round_trip.count, now.exchanges - now.timeouts)
        self.assertLessEqual(now.round_trip.least, now.round_trip.median)
        self.assertLessEqual(now.round_trip.percentile95, now.round_trip.most)

    def test_a_larger_file_is_not_received(self):
        with harvlink.connect(self.simulator.address, access="operate") as robot:
            robot.files.put("BIG.DAT", "x" * 50000)
        for largest, code in [(49999, ErrorCode.FILE_TOO_LARGE), (50002, 0)]:
            with harvlink.connect(self.simulator.address, access="observe", largest_file=largest) as robot:
                self.assertEqual(code_of(lambda: robot.files.get("BIG.DAT")), code)


class RulesTest(unittest.TestCase):
    def test_rules_have_names(self):
        for rules, bits in [("strict", 0x1FFF), ("designed", 0), ((), 0), (["Deadline", "KnownSender"], 0x12)]:
            self.assertEqual(_connect_options.rule_bits(rules), bits)
        for wrong in [
            {"rules": "loose"},
            {"rules": ["Deadlines"]},
            {"access": "all"},
            {"access": 3},
            {"address": "127.1"},
            {"address": "two words"},
            {"encoding": "utf-9"},
        ]:
            with self.subTest(wrong), self.assertRaises(ValueError):
                harvlink.connect(**{"address": NOBODY, **wrong})
        for wrong, error in [({"audit": "yes"}, TypeError), ({"retries": -1}, OverflowError)]:
            with self.subTest(wrong), self.assertRaises(error):
                harvlink.connect(NOBODY, **wrong)

    @unittest.skipIf(os.name == "nt", "wine does not report that nobody listens")
    def test_a_rule_can_be_left_out(self):
        without = [name for name in harvlink.RULES if name != "KnownSender"]
        for rules, code, end in [
            ("strict", ErrorCode.CONTROLLER_NOT_LISTENING, "(rule KnownSender)"),
            ("designed", ErrorCode.RESPONSE_TIMEOUT, "after 0 retries."),
            (without, ErrorCode.RESPONSE_TIMEOUT, ""),
        ]:
            with self.subTest(rules), self.assertRaises(harvlink.Error) as caught:
                harvlink.connect(NOBODY, 0.01, 0, rules=rules)
            self.assertEqual(caught.exception.code, code)
            self.assertIn(end, caught.exception.text)

    def test_an_audit_counts_and_refuses_nothing(self):
        simulator = Simulator("--faults", "other-source=100%")
        self.addCleanup(simulator.stop)
        for rules, audit, code in [("designed", False, 0), ("strict", True, 0), ("strict", False, None)]:
            with self.subTest(rules, audit=audit):
                if code is None:
                    with self.assertRaises(harvlink.Error) as caught:
                        harvlink.connect(simulator.address, 0.05, 0, "observe", rules)
                    self.assertEqual(caught.exception.code, ErrorCode.RESPONSE_TIMEOUT)
                    continue
                with harvlink.connect(simulator.address, 0.5, 3, "observe", rules, audit) as robot:
                    robot.state()
                    counted = robot.statistics()
                self.assertEqual(counted.foreign_answers > 0, audit)
                self.assertEqual(counted.rules["KnownSender"] > 0, audit)


class RepeatedReadTest(unittest.TestCase):
    def test_only_a_lost_answer_begins_a_download_anew(self):
        for code, failures, calls, result in [
            (ErrorCode.RESPONSE_TIMEOUT, 3, 4, 0),
            (ErrorCode.RESPONSE_TIMEOUT, 9, 4, ErrorCode.RESPONSE_TIMEOUT),
            (ErrorCode.FILE_BLOCK_MISSING, 1, 2, 0),
            (ErrorCode.ANSWER_TOO_SHORT, 2, 3, 0),
            (ErrorCode.FILE_TOO_LARGE, 9, 1, ErrorCode.FILE_TOO_LARGE),
            (0, 0, 1, 0),
        ]:
            made = []

            def read():
                made.append(code)
                if len(made) <= failures:
                    raise harvlink.Error(code, "")

            with self.subTest(code):
                self.assertEqual(code_of(lambda: file._repeatedly(read)), result)
                self.assertEqual(len(made), calls)


if __name__ == "__main__":
    unittest.main()
