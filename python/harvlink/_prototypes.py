"""The plain functions: result and argument types by name."""

import ctypes
from ctypes import c_bool, c_char_p, c_double, c_int, c_int32, c_ubyte, c_uint, c_uint32, c_uint64, c_ushort
from typing import Any, Dict, Tuple

from . import _fleet_records as f
from . import _records as r

HANDLE = ctypes.c_void_p
TEXT = c_char_p
ENUM = c_int32
STATUS = r.IStatusInfo
P = ctypes.POINTER

_PLACE = {"type": (ENUM, c_ushort), "address": (c_uint,)}
_POSITION = P(r.PositionData)
_MOTION = P(r.Motion)


def _variables() -> Dict[str, Tuple[Any, ...]]:
    by_value = {
        "byte": r.ByteVariableData,
        "integer": r.IntegerVariableData,
        "double_int": r.DoubleIntVariableData,
        "real": r.RealVariableData,
    }
    by_pointer = {
        "string": r.IStringVariableData,
        "robot_position": r.RobotPositionVariableData,
        "base_position": r.BaseAxisPositionVariableData,
        "station_position": r.StationPositionVariableData,
    }
    table: Dict[str, Tuple[Any, ...]] = {}
    for kind, record in {**by_value, **by_pointer}.items():
        written = record if kind in by_value else P(record)
        table[f"{kind}_variable_interface_read"] = (STATUS, HANDLE, c_ushort, P(record))
        table[f"{kind}_variable_interface_write"] = (STATUS, HANDLE, written)
    return table


def _signals() -> Dict[str, Tuple[Any, ...]]:
    table: Dict[str, Tuple[Any, ...]] = {}
    for by, place in _PLACE.items():
        bit = (c_ubyte,) if by == "type" else ()
        table[f"io_interface_{by}_ReadBit"] = (STATUS, HANDLE, *place, *bit, P(c_int))
        table[f"io_interface_{by}_WriteBit"] = (STATUS, HANDLE, *place, *bit, c_int)
        for size, narrow, integer in (("Byte", "uint8", c_ubyte), ("Word", "uint16", c_ushort)):
            for form, value in ((by, c_uint), (f"{narrow}_{by}", integer)):
                table[f"io_interface_{form}_Read{size}"] = (STATUS, HANDLE, *place, P(value))
                table[f"io_interface_{form}_Write{size}"] = (STATUS, HANDLE, *place, value)
    return table


PROTOTYPES: Dict[str, Tuple[Any, ...]] = {
    "open_connection": (HANDLE, TEXT, P(STATUS), c_uint, c_uint),
    "close_connection": (None, HANDLE),
    "harvlink_connect_options_init": (None, P(r.HarvlinkConnectOptions)),
    "harvlink_connect": (HANDLE, P(r.HarvlinkConnectOptions), P(STATUS)),
    "harvlink_get_connection_statistics": (STATUS, HANDLE, P(r.HarvlinkConnectionStatistics)),
    "fault_interface_get_active_alarms": (STATUS, HANDLE, P(r.IActiveAlarms)),
    "fault_interface_get_alarm_history": (STATUS, HANDLE, ENUM, c_uint, P(r.IAlarmHistory)),
    "fault_interface_clear_all_faults": (STATUS, HANDLE),
    "control_group_interface_read_position_data": (STATUS, HANDLE, ENUM, ENUM, c_ubyte, c_ubyte, _POSITION),
    "control_group_interface_read_axis_configuration": (STATUS, HANDLE, ENUM, P(ctypes.c_char)),
    "control_group_interface_read_position_error": (STATUS, HANDLE, ENUM, P(r.PositionErrorData)),
    "control_group_interface_read_torque_data": (STATUS, HANDLE, ENUM, P(r.TorqueData)),
    **_variables(),
    "controller_state_interface_read_state": (STATUS, HANDLE, P(r.ControllerStateData)),
    "controller_state_interface_read_system_information": (STATUS, HANDLE, ENUM, P(r.ISystemInfoData)),
    "controller_state_interface_read_operating_times": (STATUS, HANDLE, ENUM, ENUM, P(r.TimeData), ENUM),
    "controller_state_read_system_param": (STATUS, HANDLE, ENUM, c_int, P(c_int)),
    "controller_state_group_read_system_param": (STATUS, HANDLE, ENUM, c_int, c_int, P(c_int)),
    "job_interface_set_active_job": (STATUS, HANDLE, TEXT, c_uint),
    "job_interface_get_executing_job_information": (STATUS, HANDLE, ENUM, P(r.IJobData)),
    "job_interface_get_job_stack": (STATUS, HANDLE, ENUM, P(r.IJobStack)),
    "file_interface_LoadToControllerFromString": (STATUS, HANDLE, TEXT, TEXT),
    "file_interface_LoadToControllerFromPath": (STATUS, HANDLE, TEXT),
    "file_interface_SaveFromControllerToFile": (STATUS, HANDLE, TEXT, TEXT, c_int),
    "file_interface_SaveFromControllerToString": (r.OwnedText, HANDLE, TEXT, P(STATUS)),
    "file_interface_DeleteJobFile": (STATUS, HANDLE, TEXT),
    "file_interface_GetFileCount": (STATUS, HANDLE, ENUM, P(c_int)),
    "file_interface_ListFiles": (r.OwnedText, HANDLE, ENUM, P(STATUS), c_bool),
    **_signals(),
    "io_interface_ReadRegister": (STATUS, HANDLE, c_ushort, P(c_ushort)),
    "io_interface_WriteRegister": (STATUS, HANDLE, c_ushort, c_ushort),
    "io_interface_uint32_ReadRegister": (STATUS, HANDLE, c_ushort, P(c_uint)),
    "io_interface_uint32_WriteRegister": (STATUS, HANDLE, c_ushort, P(c_uint)),
    "io_interface_ConvertIOGroupToBitAddress": (c_uint32, HANDLE, ENUM, c_ushort, c_ubyte, P(STATUS)),
    "control_commands_interface_SetServos": (STATUS, HANDLE, ENUM),
    "control_commands_interface_SetHold": (STATUS, HANDLE, ENUM),
    "control_commands_interface_SetCycleMode": (STATUS, HANDLE, ENUM),
    "control_commands_interface_DisplayStringToPendant": (STATUS, HANDLE, TEXT),
    "control_commands_interface_StartJob": (STATUS, HANDLE),
    "motion_manager_AddPointToTrajectory": (STATUS, HANDLE, _MOTION),
    "motion_manager_Add2PointsToTrajectory": (STATUS, HANDLE, _MOTION, _MOTION),
    "motion_manager_Add3PointsToTrajectory": (STATUS, HANDLE, _MOTION, _MOTION, _MOTION),
    "motion_manager_Add4PointsToTrajectory": (STATUS, HANDLE, _MOTION, _MOTION, _MOTION, _MOTION),
    "motion_manager_GetMotionTargetProgress": (c_double, HANDLE, ENUM, P(STATUS)),
    "motion_manager_MotionStart": (STATUS, HANDLE),
    "motion_manager_MotionStop": (STATUS, HANDLE, c_bool),
    "motion_manager_ClearAllTrajectory": (STATUS, HANDLE),
    "harvlink_motion_add": (STATUS, HANDLE, P(c_uint64), _MOTION, _MOTION, _MOTION, _MOTION),
    "harvlink_motion_get_state": (STATUS, HANDLE, P(r.HarvlinkTrajectoryState)),
    "harvlink_motion_wait_for_target": (STATUS, HANDLE, c_uint64, c_uint32, c_double),
    "harvlink_motion_wait_until_sent": (STATUS, HANDLE, c_uint64, c_uint32),
    "kinematics_interface_ConvertPosition": (STATUS, HANDLE, ENUM, _POSITION, ENUM, _POSITION),
    "kinematics_interface_ConvertPositionFromCartesian": (
        *(STATUS, HANDLE, ENUM, _POSITION, ENUM, ENUM, P(c_double), _POSITION),
    ),
    "harvlink_fleet_create": (HANDLE, c_uint32, P(STATUS)),
    "harvlink_fleet_add": (STATUS, HANDLE, TEXT, P(f.HarvlinkFleetOptions), P(f.HarvlinkFleetGroup), c_uint32),
    "harvlink_fleet_change": (STATUS, HANDLE, TEXT, P(f.HarvlinkFleetOptions), P(f.HarvlinkFleetGroup), c_uint32),
    "harvlink_fleet_remove": (STATUS, HANDLE, TEXT),
    "harvlink_fleet_plan": (c_uint32, HANDLE, P(f.HarvlinkFleetPlan), c_uint32),
    "harvlink_fleet_start": (STATUS, HANDLE),
    "harvlink_fleet_stop": (None, HANDLE),
    "harvlink_fleet_take": (c_uint32, HANDLE, P(f.HarvlinkFleetSample), c_uint32, c_uint32),
    "harvlink_fleet_take_events": (c_uint32, HANDLE, P(f.HarvlinkFleetEvent), c_uint32, c_uint32),
    "harvlink_fleet_latest": (c_uint32, HANDLE, TEXT, P(f.HarvlinkFleetSample), c_uint32),
    "harvlink_fleet_statistics": (c_uint32, HANDLE, P(f.HarvlinkFleetStatistics), c_uint32, P(c_uint64)),
    "harvlink_fleet_destroy": (None, HANDLE),
    "vector_math_inner_product": (None, P(r.XyzVector), P(r.XyzVector), P(c_double)),
    "vector_math_cross_product": (None, P(r.XyzVector), P(r.XyzVector), P(r.XyzVector)),
    "frame_math_invert_frame": (None, P(r.EulerMatrix), P(r.EulerMatrix)),
    "frame_math_rotate_frame": (None, P(r.EulerMatrix), P(r.XyzVector), P(r.EulerMatrix), c_double),
    "frame_math_frame_to_zyx_euler": (None, P(r.EulerMatrix), P(r.ZyxEulerPose)),
    "frame_math_multiply_frames": (None, P(r.EulerMatrix), P(r.EulerMatrix), P(r.EulerMatrix)),
    "frame_math_zyx_euler_to_frame": (None, P(r.ZyxEulerPose), P(r.EulerMatrix)),
    "frame_math_set_identity_matrix_in_frame": (None, P(r.EulerMatrix)),
}
