"""The package releases what the library allocates: the heap does not grow over many calls."""

import ctypes
import gc
import os
import unittest
import warnings

import harvlink

from .support import SimulatorTest

CALLS = 200
ROUNDS = 3
SMALLEST_BLOCK = 32
HANDLE_CELL = 32  # with its heap header; the handle cell of a connection is never released


class Mallinfo(ctypes.Structure):
    _fields_ = [
        (name, ctypes.c_size_t)
        for name in "arena ordblks smblks hblks hblkhd usmblks fsmblks uordblks fordblks top".split()
    ]


def bytes_in_use():
    gc.collect()
    information = ctypes.CDLL(None).mallinfo2
    information.restype = Mallinfo
    return information().uordblks


def growth(operation):
    before = bytes_in_use()
    for _ in range(CALLS):
        quietly(operation)
    return bytes_in_use() - before


def quietly(operation):
    try:
        operation()
    except harvlink.Error:
        pass


@unittest.skipIf("LD_PRELOAD" in os.environ, "a sanitizer's heap is not the C library's")
@unittest.skipUnless(hasattr(ctypes.CDLL(None), "mallinfo2"), "this C library has no mallinfo2")
class OwnershipTest(SimulatorTest):
    def test_nothing_stays_allocated(self):
        robot = harvlink.connect(self.simulator.address)
        self.addCleanup(robot.close)
        robot.files.put("OWN.JBI", "/JOB\r\n//NAME OWN\r\n//INST\r\nNOP\r\nEND\r\n")
        point = harvlink.Motion("R1", harvlink.Position(), 10)
        refused = harvlink.Motion("R1", harvlink.Position(), 101)

        def open_and_close():
            harvlink.connect(self.simulator.address).close()

        for name, operation, allowed in [
            ("status alone", robot.state, 0),
            ("system information", robot.controller.system_information, 0),
            ("refused system information", lambda: robot.controller.system_information(99), 0),
            ("text", lambda: robot.variables.s[1], 0),
            ("refused text", lambda: robot.variables.s[3000], 0),
            ("cut text", lambda: robot.variables.s.__setitem__(1, "x" * 40), 0),
            ("position", lambda: robot.variables.p.__setitem__(1, robot.variables.p[1]), 0),
            ("alarms", robot.alarms.active, 0),
            ("alarm history", lambda: robot.alarms.history(harvlink.AlarmCategory.MAJOR), 0),
            ("refused alarm history", lambda: robot.alarms.history(7), 0),
            ("job", robot.jobs.executing, 0),
            ("job stack", robot.jobs.stack, 0),
            ("refused job stack", lambda: robot.jobs.stack(99), 0),
            ("file", lambda: robot.files.get("OWN.JBI"), 0),
            ("refused file", lambda: robot.files.get("NONE.JBI"), 0),
            ("file list", lambda: robot.files.list("JBI"), 0),
            ("address", lambda: robot.io.address(harvlink.IOType.NETWORK_INPUT, 1, 8), 0),
            ("progress", robot.motion.progress, 0),
            ("trajectory", robot.motion.state, 0),
            ("refused point", lambda: robot.motion.add(refused), 0),
            ("dropped points", lambda: (robot.motion.add(point), robot.motion.clear()), 0),
            ("statistics", robot.statistics, 0),
            ("connection", open_and_close, HANDLE_CELL),
            ("failed connection", lambda: harvlink.connect("127.255.255.254", 0.01, 0), 0),
        ]:
            with self.subTest(name), warnings.catch_warnings():
                warnings.simplefilter("ignore")
                for _ in range(20):
                    quietly(operation)
                # What the interpreter keeps for itself it keeps once; a leak comes back each time.
                self.assertLess(
                    min(growth(operation) for _ in range(ROUNDS)), CALLS * (allowed + SMALLEST_BLOCK / 2)
                )


if __name__ == "__main__":
    unittest.main()
