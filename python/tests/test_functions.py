"""Plain functions in the forms that the package does not use, and what is odd about their arguments and texts.

The tests of the library compare every plain function with its method, and those of the package call the others."""

import ctypes
import pathlib
import unittest
from ctypes import c_double, c_int, c_ubyte, c_uint, c_uint64, c_ushort

from harvlink import _library, _prototypes
from harvlink import _records as r

from .support import TIMEOUT, Plain, SimulatorTest

R1, R2, B1, S1 = 1, 2, 11, 21
NETWORK_INPUT, NETWORK_ADDRESS, NO_SIGNAL = 3, 27010, 27018
OK, QUEUED = "OK", "Point added to trajectory."
CUT = "OK String was truncated to 32 characters"
JOB = b"/JOB\r\n//NAME OWN\r\n//INST\r\nNOP\r\nEND\r\n"


def string(text, index=3):
    return ctypes.cast(ctypes.pointer(r.StringToWrite(text, index)), ctypes.POINTER(r.IStringVariableData))


def motion(group):
    huge = 1.7976931348623157e308
    axes = (0, 0, 0, 0, -100000, 0) if group in (R1, R2) else (1000,)
    return r.Motion(group, 25.0, huge, huge, 1, r.PositionData(0, r.Figure(), 0, 0, (c_double * 8)(*axes)))


def state(size):
    return r.HarvlinkTrajectoryState(size=size)


# A case is a function, arguments with which it succeeds, the expected message, and the expected value or texts (None:
# any). Then follow arguments that the function or the controller refuses, and the code.
CASES = [
    (
        *("controller_state_interface_read_system_information", (11, r.ISystemInfoData), OK),
        *(["YAS4.10.00A(EN/JP)-00", "HV012-1440-A00"], (99, r.ISystemInfoData), 45063),
    ),
    ("fault_interface_get_active_alarms", (r.IActiveAlarms,), OK, [""] * 8),
    ("fault_interface_get_alarm_history", (0, 5, r.IAlarmHistory), OK, [""] * 200, (7, 5, r.IAlarmHistory), 0x30017),
    ("string_variable_interface_write", (string(b"x" * 40),), CUT, None, (string(b"x" * 40, 2049),), 0x30008),
    ("string_variable_interface_write", (string(b"\xe4cut\0here"),), OK, None),
    (
        *("string_variable_interface_read", (3, r.IStringVariableData), OK, ["\xe4cut"]),
        *((2049, r.IStringVariableData), 0x30008),
    ),
    # Every value other than 0 writes a 1.
    ("io_interface_address_WriteBit", (NETWORK_ADDRESS, 2), OK, None, (10001, 1), 40961),
    ("io_interface_address_ReadBit", (NETWORK_ADDRESS, c_int), OK, 1, (NO_SIGNAL, c_int), 0x10004),
    ("io_interface_type_WriteBit", (NETWORK_INPUT, 1, 1, 256), OK, None, (NETWORK_INPUT, 1, 8, 1), 0x10004),
    ("io_interface_type_ReadBit", (NETWORK_INPUT, 1, 1, c_int), OK, 1, (NETWORK_INPUT, 9999, 0, c_int), 0x20009),
    *[
        case
        for size, narrow, integer, wide, value in [
            ("Byte", "uint8", c_ubyte, 0xABCDEF12, 0x12),
            ("Word", "uint16", c_ushort, 0xABCDEF12, 0xEF12),
        ]
        for by, place, nowhere, read_code, write_code in [
            ("type", (NETWORK_INPUT, 2), (NETWORK_INPUT, 9999), 0x20009, 0x20009),
            ("address", (27030,), (99990,), 40961, 40961),
        ]
        for form, kind, written in [(by, c_uint, wide), (f"{narrow}_{by}", integer, value - 1)]
        for case in [
            (f"io_interface_{form}_Write{size}", (*place, written), OK, None, (*nowhere, 1), write_code),
            (
                f"io_interface_{form}_Read{size}",
                (*place, kind),
                OK,
                written & integer(-1).value,
                (*nowhere, kind),
                read_code,
            ),
        ]
    ],
    ("io_interface_WriteRegister", (5, 0xBEEF), OK, None, (2049, 1), 0x30008),
    ("io_interface_ReadRegister", (5, c_ushort), OK, 0xBEEF, (60000, c_ushort), 65535),
    ("io_interface_uint32_WriteRegister", (5, c_uint(0x12345678)), OK, None, (2049, c_uint(1)), 0x30008),
    ("io_interface_uint32_ReadRegister", (5, c_uint), OK, 0x5678, (60000, c_uint), 65535),
    ("io_interface_ConvertIOGroupToBitAddress", (3, 1, 0, "status"), OK, 27010, (3, 1, 9, "status"), 0x10004),
    ("file_interface_LoadToControllerFromString", (b"OWN.JBI", JOB), OK, None, (b"OTHER.JBI", JOB), 0x30014),
    ("file_interface_LoadToControllerFromPath", (b"OWN.JBI",), OK, None, (b"MISSING.JBI",), 0x20003),
    ("file_interface_ListFiles", (5, "status", True), OK, [""]),
    ("file_interface_GetFileCount", (0, c_int), OK, 4, (99, c_int), 58023),
    (
        *("file_interface_ListFiles", (0, "status", True), OK),
        *(["DEMO.JBI\nHANDSHAKE.JBI\nOWN.JBI\nPICK.JBI\n"], (99, "status", True), 58023),
    ),
    (
        "file_interface_SaveFromControllerToString",
        (b"OWN.JBI", "status"),
        OK,
        [JOB.decode()],
        (b"OWN", "status"),
        0x20001,
    ),
    # Only the low byte of the overwrite argument counts.
    (
        *("file_interface_SaveFromControllerToFile", (b"OWN.JBI", b"OWN.JBI", 257), OK, None),
        *((b"OWN.JBI", b"OWN.JBI", 256), 0x20002),
    ),
    ("job_interface_get_executing_job_information", (0, r.IJobData), OK, None, (99, r.IJobData), 40961),
    ("control_commands_interface_SetServos", (1,), OK, None),
    ("motion_manager_MotionStart", (), OK, None),
    *[
        (f"motion_manager_Add{count}PointsToTrajectory", points[:count], QUEUED, None, (*points[1:count], wrong), 3370)
        for points, wrong in [((motion(R1), motion(B1), motion(S1), motion(R2)), motion(30))]
        for count in (2, 3, 4)
    ],
    (
        *("harvlink_motion_add", (c_uint64, motion(R1), motion(B1), None, None), QUEUED, 4),
        *((c_uint64, motion(R1), motion(30), None, None), 3370),
    ),
    ("harvlink_motion_wait_until_sent", (4, 5000), OK, None, (99, 0), 0x50011),
    ("harvlink_motion_wait_for_target", (4, 5000, 1.0), OK, None, (99, 0, 1.0), 0x50011),
    ("harvlink_motion_get_state", (state(72),), OK, None, (state(71),), 0x50000),
    ("motion_manager_GetMotionTargetProgress", (R1, "status"), OK, None, (30, "status"), 65504),
    ("job_interface_get_job_stack", (1, r.IJobStack), OK, ["none"] * 12, (99, r.IJobStack), -79934465),
]

UNIT = (0.0, 0.0, 1.0)
TURNED = (0.0, 1.0, 0.0, -1.0, 0.0, 0.0, 0.0, 0.0, 1.0, 5.0, 6.0, 7.0)
UNTURNED = (0.0, -1.0, 0.0, 1.0, 0.0, 0.0, 0.0, 0.0, 1.0, -6.0, 5.0, -7.0)
IDENTITY = (1.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0)
FRAME, VECTOR, POSE = r.EulerMatrix, r.XyzVector, r.ZyxEulerPose
ARITHMETIC = [
    ("vector_math_inner_product", "InnerProduct", (VECTOR(1, 2, 3), VECTOR(4, 5, 6)), c_double, (32.0,)),
    ("vector_math_cross_product", "CrossProduct", (VECTOR(1, 2, 3), VECTOR(*UNIT)), VECTOR, (2.0, -1.0, 0.0)),
    ("frame_math_invert_frame", "InvertFrame", (FRAME(*TURNED),), FRAME, UNTURNED),
    (
        "frame_math_rotate_frame",
        "RotateFrame",
        (FRAME(*TURNED), VECTOR(*UNIT)),
        FRAME,
        (*IDENTITY[:9], 5.0, 6.0, 7.0),
        -90.0,
    ),
    ("frame_math_frame_to_zyx_euler", "FrameToZYXeuler", (FRAME(*TURNED),), POSE, (5.0, 6.0, 7.0, 0.0, 0.0, 90.0)),
    ("frame_math_multiply_frames", "MultiplyFrames", (FRAME(*TURNED), FRAME(*UNTURNED)), FRAME, IDENTITY),
    ("frame_math_zyx_euler_to_frame", "ZYXeulerToFrame", (POSE(5, 6, 7, 0, 0, 90),), FRAME, TURNED),
    ("frame_math_set_identity_matrix_in_frame", "SetIdentityMatrixInFrame", (), FRAME, IDENTITY),
]


class FunctionsTest(SimulatorTest):
    options = ("--groups", "R1,B1,S1,R2", "--time-scale", "50")

    def test_success_then_refusal(self):
        pathlib.Path("OWN.JBI").write_bytes(JOB)
        robot = Plain(self.simulator.address)
        self.assertEqual((robot.status.StatusCode, robot.status.Message.take()), (0, OK))
        for name, arguments, expected_message, expected, *refusal in CASES:
            with self.subTest(name):
                code, message, value, texts = robot.call(name, *arguments)
                self.assertEqual((code, message), (0, expected_message))
                self.assertIn(expected, (None, value, texts))
                if refusal:
                    code, message, value, texts = robot.call(name, *refusal[0])
                    self.assertEqual(code, refusal[1], message)
                    self.assertIn(value, (None, 0), "a value is left after a failure")
                    self.assertFalse("".join(texts).replace("none", ""), "a text is left after a failure")
        robot.close()

    def test_failed_open(self):
        for timeout in (0, 20):
            robot = Plain("127.255.255.254", timeout, 0)
            self.assertTrue(robot.handle)
            self.assertEqual(robot.status.StatusCode, TIMEOUT)
            self.assertIn("No response", robot.status.Message.take())
            robot.close()

    def test_arithmetic_by_both_names(self):
        library = ctypes.CDLL(_library.load().path)
        for plain, linked, inputs, kind, expected, *angle in ARITHMETIC:
            for name in (plain, linked):
                with self.subTest(name):
                    function = getattr(library, name)
                    function.restype, *function.argtypes = _prototypes.PROTOTYPES[plain]
                    out = kind()
                    function(*map(ctypes.byref, inputs), ctypes.byref(out), *angle)
                    got = [getattr(out, field) for field, _ in getattr(kind, "_fields_", [("value", 0)])]
                    for one, other in zip(got, expected):
                        self.assertAlmostEqual(one, other, 12)


if __name__ == "__main__":
    unittest.main()
