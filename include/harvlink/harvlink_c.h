#ifndef HARVLINK_C_H
#define HARVLINK_C_H

/**
 * @file
 * The plain C interface of Harvlink (C11), for C programs and for callers of other languages.
 *
 * Handle. `open_connection` always returns a handle that is not null; only its status tells whether there is a
 * connection. On a handle of a failed connection nothing but `close_connection` may be called. After `close_connection`
 * the handle must not be used again. Its cell of 8 bytes is never released.
 *
 * Ownership. Every `Message` of an `IStatusInfo` that is returned or filled, every text inside a record that is filled,
 * and every text that is returned, is allocated with malloc and is yours: release it with `free`, also after success,
 * also if it is empty. It is null only if memory ran out. What you pass in stays yours; the library copies what it keeps.
 *
 * Arguments. Handles, texts and pointers must not be null; nothing checks this. Texts end at their first zero byte.
 * Enumerations are 32-bit integers; the numbers are those of the constants below, and any other number is passed on.
 *
 * Status. `StatusCode` 0 is success, up to 0xFFFF the controller's, 0x10000 and up the library's, 0x40000000 and up a
 * file on this computer, large negative numbers a controller's code read by a subsystem (add 50000000 for motion, 60000000
 * for control groups, 80000000 for jobs, 0x70000000 for conversions).
 *
 * Time and threads. An exchange with the controller takes at most (1 + retries) x time-out. Functions may be called from
 * several threads at once on one handle, except `close_connection`. Units and failures of each operation are those of
 * the C++ header that is named at its family.
 */

#include <stdbool.h>
#include <stdint.h>

#include "harvlink/Export.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Enumerations: 32-bit integers with these numbers ------------------------------------------------------------ */

typedef int32_t ControlGroupId; /**< n for robot Rn, n + 10 for base Bn, n + 20 for station Sn */
#define HARVLINK_ROBOT(n) (n)
#define HARVLINK_BASE(n) ((n) + 10)
#define HARVLINK_STATION(n) ((n) + 20)

typedef int32_t CoordinateType;
enum {
    HARVLINK_PULSE = 0,
    HARVLINK_BASE_COORDINATE = 16,
    HARVLINK_ROBOT_COORDINATE = 17,
    HARVLINK_TOOL_COORDINATE = 18,
    HARVLINK_USER_COORDINATE = 19,
    HARVLINK_MASTER_TOOL = 20,
    HARVLINK_UNDEFINED_COORDINATE = 55,
    HARVLINK_JOINT_ANGLE = 56
};

/** Fields of a Figure: 0 or 1. */
typedef int32_t FrontOrBack;
typedef int32_t UpperOrLower;
typedef int32_t FlipOrNoFlip;
typedef int32_t AxisAngle;
enum {
    HARVLINK_FRONT = 0,
    HARVLINK_BACK = 1,
    HARVLINK_UPPER = 0,
    HARVLINK_LOWER = 1,
    HARVLINK_FLIP = 0,
    HARVLINK_NO_FLIP = 1,
    HARVLINK_LESS_THAN_180 = 0,
    HARVLINK_GREATER_THAN_180 = 1
};

typedef int32_t CycleMode;
enum { HARVLINK_STEP = 0, HARVLINK_CYCLE = 1, HARVLINK_AUTOMATIC = 2 };

typedef int32_t ControlMode;
enum { HARVLINK_TEACH = 0, HARVLINK_PLAY = 1, HARVLINK_REMOTE = 2 };

typedef int32_t SystemInfoId;
#define HARVLINK_INFO_ROBOT(n) ((n) + 10)
#define HARVLINK_INFO_STATION(n) ((n) + 20)
#define HARVLINK_INFO_APPLICATION(n) ((n) + 100)

typedef int32_t ApplicationNumber; /**< 1 to 8, 0 for none */

typedef int32_t SystemParameterType;
enum {
    HARVLINK_S1C = 0, /**< per group */
    HARVLINK_S2C = 1,
    HARVLINK_S3C = 2,
    HARVLINK_S4C = 3,
    HARVLINK_RS = 4,
    HARVLINK_S1E = 5, /**< per group */
    HARVLINK_S2E = 6, /**< per group */
    HARVLINK_MOTION_SLOT = 11
};

typedef int32_t TimeType;
enum {
    HARVLINK_CONTROL_POWER_TIME = 1,
    HARVLINK_SERVO_POWER_TIME = 10,
    HARVLINK_SERVO_POWER_TIME_ROBOT = 11,
    HARVLINK_SERVO_POWER_TIME_STATION = 20,
    HARVLINK_PLAYBACK_TIME = 110,
    HARVLINK_PLAYBACK_TIME_ROBOT = 111,
    HARVLINK_PLAYBACK_TIME_STATION = 120,
    HARVLINK_MOVING_TIME = 210,
    HARVLINK_MOVING_TIME_ROBOT = 211,
    HARVLINK_MOVING_TIME_STATION = 221,
    HARVLINK_APPLICATION_TIME = 300
};

typedef int32_t AlarmCategory;
enum {
    HARVLINK_ALARM_MAJOR = 0,
    HARVLINK_ALARM_MINOR = 1000,
    HARVLINK_ALARM_SYSTEM_USER = 2000,
    HARVLINK_ALARM_USER = 3000,
    HARVLINK_ALARM_OFFLINE = 4000
};

typedef int32_t TesselTaskNumber; /**< 0 for the master task, 1 to 7 for the others */

typedef int32_t FileType;
enum {
    HARVLINK_JOB_FILE = 0,
    HARVLINK_DATA_FILE = 1,
    HARVLINK_CONDITION_FILE = 2,
    HARVLINK_PARAMETER_FILE = 3,
    HARVLINK_SYSTEM_FILE = 4,
    HARVLINK_LISTING_FILE = 5,
    HARVLINK_LOG_FILE = 6
};

typedef int32_t IOType;
enum {
    HARVLINK_GENERAL_INPUT = 0,
    HARVLINK_GENERAL_OUTPUT = 1,
    HARVLINK_EXTERNAL_INPUT = 2,
    HARVLINK_NETWORK_INPUT = 3,
    HARVLINK_EXTERNAL_OUTPUT = 4,
    HARVLINK_NETWORK_OUTPUT = 5,
    HARVLINK_SPECIFIC_INPUT = 6,
    HARVLINK_SPECIFIC_OUTPUT = 7,
    HARVLINK_INTERFACE_PANEL_INPUT = 8,
    HARVLINK_AUXILIARY_RELAY = 9,
    HARVLINK_ROBOT_CONTROL_STATUS = 10,
    HARVLINK_PSEUDO_INPUT = 11
};

typedef int32_t SignalStatus;
enum { HARVLINK_ON = 1, HARVLINK_OFF = 2 };

typedef int32_t MoveInterpolationType;
enum { HARVLINK_NO_MOVE = 0, HARVLINK_JOINT = 1, HARVLINK_LINE = 2, HARVLINK_CIRCLE = 3 };

typedef int32_t KinematicConversions;
enum {
    HARVLINK_JOINT_ANGLE_TO_CARTESIAN_POS = 0,
    HARVLINK_PULSE_TO_JOINT_ANGLE = 1,
    HARVLINK_JOINT_ANGLE_TO_PULSE = 2,
    HARVLINK_PULSE_TO_CARTESIAN_POS = 3,
    HARVLINK_CARTESIAN_POS_TO_JOINT_ANGLE = 4,
    HARVLINK_CARTESIAN_POS_TO_PULSE = 5
};

typedef int32_t KinematicType;
enum { HARVLINK_KINEMATIC_FROM_SYSTEM = 0, HARVLINK_DELTA = 1, HARVLINK_KINEMATIC_FIGURE = 2 };

/* ---- Records ------------------------------------------------------------------------------------------------------ */

/** A connection; see the notes at the top. */
typedef struct ControllerCell* ControllerHandle;

typedef struct IStatusInfo {
    int32_t StatusCode;
    char* Message; /**< yours to free */
} IStatusInfo;

/** Read with `controller_state_interface_read_state`. */
typedef struct ControllerStateData {
    CycleMode cycleMode;
    bool isRunning;
    ControlMode controlMode;
    bool isProgramPendantHold;
    bool isAlarming;
    bool isErroring;
    bool isServoOn;
} ControllerStateData;

typedef struct ISystemInfoData {
    char* softwareVersion; /**< yours to free */
    char* modelName; /**< yours to free */
} ISystemInfoData;

typedef struct ElapsedTime {
    uint32_t seconds;
    uint32_t minutes;
    uint32_t hours;
} ElapsedTime;

typedef struct TimeData {
    int64_t startTimeEpoch;
    ElapsedTime elapsedTime;
} TimeData;

typedef struct Figure {
    FrontOrBack frontOrBack;
    UpperOrLower upperOrLower;
    FlipOrNoFlip flipOrNoFlip;
    AxisAngle sAngle;
    AxisAngle lAngle;
    AxisAngle uAngle;
    AxisAngle rAngle;
    AxisAngle bAngle;
    AxisAngle tAngle;
    AxisAngle eAngle;
    AxisAngle wAngle;
} Figure;

/** Pulses, or millimetres on axes 0 to 2 and degrees on axes 3 to 7; degrees throughout for joint angles. */
typedef struct PositionData {
    CoordinateType coordinateType;
    Figure figure;
    int32_t toolNumber;
    int32_t userCoordinateNumber;
    double axes[8];
} PositionData;

typedef struct PositionErrorData {
    int32_t axes[8]; /**< pulses */
} PositionErrorData;

typedef struct TorqueData {
    ControlGroupId controlGroup; /**< always 1 */
    int32_t axes[8];
} TorqueData;

typedef struct ByteVariableData {
    uint8_t value;
    uint16_t variableIndex;
} ByteVariableData;

typedef struct IntegerVariableData {
    int16_t value;
    uint16_t variableIndex;
} IntegerVariableData;

typedef struct DoubleIntVariableData {
    int32_t value;
    uint16_t variableIndex;
} DoubleIntVariableData;

typedef struct RealVariableData {
    float value;
    uint16_t variableIndex;
} RealVariableData;

typedef struct IStringVariableData {
    char* value; /**< yours to free after a read; only read by a write */
    uint16_t variableIndex;
} IStringVariableData;

typedef struct RobotPositionVariableData {
    PositionData positionData;
    uint16_t variableIndex;
} RobotPositionVariableData;

typedef struct BaseAxisPositionVariableData {
    PositionData positionData;
    uint16_t variableIndex;
} BaseAxisPositionVariableData;

typedef struct StationPositionVariableData {
    PositionData positionData;
    uint16_t variableIndex;
} StationPositionVariableData;

typedef struct IAlarmData {
    uint32_t code;
    uint32_t subcode;
    char* time; /**< yours to free */
    char* name; /**< yours to free */
} IAlarmData;

/** The count stands first here, unlike in the C++ record. All places have texts to free, the free ones too. */
typedef struct IActiveAlarms {
    uint32_t numberOfAlarms;
    IAlarmData alarms[4];
} IActiveAlarms;

typedef struct IAlarmHistory {
    uint32_t numberOfAlarms;
    IAlarmData alarms[100];
} IAlarmHistory;

typedef struct IJobData {
    char* name; /**< yours to free */
    uint32_t line;
    uint32_t stepNumber;
    double speedOverride; /**< per cent */
} IJobData;

/** The jobs of a task's stack; a place without a job holds "none". All twelve are yours to free. */
typedef struct IJobStack {
    char* job0;
    char* job1;
    char* job2;
    char* job3;
    char* job4;
    char* job5;
    char* job6;
    char* job7;
    char* job8;
    char* job9;
    char* job10;
    char* job11;
} IJobStack;

/** In an acceleration or deceleration ratio: leave what the controller has (the largest finite double). */
#define HARVLINK_RATIO_NOT_SPECIFIED 1.7976931348623157e308

typedef struct Motion {
    ControlGroupId controlGroup;
    double speed; /**< per cent for joint moves, mm/s otherwise */
    double accelerationRatio; /**< per cent, 20 to 100 */
    double decelerationRatio; /**< per cent, 20 to 100 */
    MoveInterpolationType moveType;
    PositionData position;
} Motion;

/**
 * Pass the address of `motion`. A motion whose `moveType` is HARVLINK_CIRCLE must be the first member of one of these: the
 * mid-point is read from behind it, and nothing can tell whether it is there.
 */
typedef struct CircularMotion {
    Motion motion;
    double auxiliaryAxes[8];
} CircularMotion;

typedef struct XyzVector {
    double x;
    double y;
    double z;
} XyzVector;

/** A frame, column by column: n, o, a, then the position p. */
typedef struct EulerMatrix {
    double nx;
    double ny;
    double nz;
    double ox;
    double oy;
    double oz;
    double ax;
    double ay;
    double az;
    double px;
    double py;
    double pz;
} EulerMatrix;

/** Angles in degrees. */
typedef struct ZyxEulerPose {
    double x;
    double y;
    double z;
    double rx;
    double ry;
    double rz;
} ZyxEulerPose;

/* ---- Connection (QuorvanController.h) ------------------------------------------------------------------------------ */

/** Opens a connection and fills `status`. Never returns null; see the notes at the top. Logging is on. */
HARVLINK_EXPORT ControllerHandle open_connection(char const* ipAddress, IStatusInfo* status,
                                                 unsigned timeoutMilliseconds, unsigned retries);

/** Closes a connection, or the handle of a failed one. Once only. */
HARVLINK_EXPORT void close_connection(ControllerHandle handle);

/* ---- Alarms (FaultInterface.h) ------------------------------------------------------------------------------------- */

/** Fills all four places; eight texts to free on every call. */
HARVLINK_EXPORT IStatusInfo fault_interface_get_active_alarms(ControllerHandle handle, IActiveAlarms* alarms);
/** Fills all hundred places; two hundred texts to free on every call, whatever the count. */
HARVLINK_EXPORT IStatusInfo fault_interface_get_alarm_history(ControllerHandle handle, AlarmCategory category,
                                                              unsigned quantity, IAlarmHistory* history);
HARVLINK_EXPORT IStatusInfo fault_interface_clear_all_faults(ControllerHandle handle);

/* ---- Control groups (ControlGroupInterface.h) ---------------------------------------------------------------------- */

HARVLINK_EXPORT IStatusInfo control_group_interface_read_position_data(ControllerHandle handle, ControlGroupId group,
                                                                       CoordinateType type,
                                                                       unsigned char userCoordinateNumber,
                                                                       unsigned char toolNumber,
                                                                       PositionData* position);
/** `configuration` points to 8 characters; a zero stands for an axis that the group does not have. */
HARVLINK_EXPORT IStatusInfo control_group_interface_read_axis_configuration(ControllerHandle handle,
                                                                            ControlGroupId group, char* configuration);
HARVLINK_EXPORT IStatusInfo control_group_interface_read_position_error(ControllerHandle handle, ControlGroupId group,
                                                                        PositionErrorData* data);
HARVLINK_EXPORT IStatusInfo control_group_interface_read_torque_data(ControllerHandle handle, ControlGroupId group,
                                                                     TorqueData* data);

/* ---- Variables (VariablesInterface.h) ------------------------------------------------------------------------------ */

HARVLINK_EXPORT IStatusInfo byte_variable_interface_read(ControllerHandle handle, unsigned short index,
                                                         ByteVariableData* variable);
HARVLINK_EXPORT IStatusInfo byte_variable_interface_write(ControllerHandle handle, ByteVariableData variable);
HARVLINK_EXPORT IStatusInfo integer_variable_interface_read(ControllerHandle handle, unsigned short index,
                                                            IntegerVariableData* variable);
HARVLINK_EXPORT IStatusInfo integer_variable_interface_write(ControllerHandle handle, IntegerVariableData variable);
HARVLINK_EXPORT IStatusInfo double_int_variable_interface_read(ControllerHandle handle, unsigned short index,
                                                               DoubleIntVariableData* variable);
HARVLINK_EXPORT IStatusInfo double_int_variable_interface_write(ControllerHandle handle,
                                                                DoubleIntVariableData variable);
HARVLINK_EXPORT IStatusInfo real_variable_interface_read(ControllerHandle handle, unsigned short index,
                                                         RealVariableData* variable);
HARVLINK_EXPORT IStatusInfo real_variable_interface_write(ControllerHandle handle, RealVariableData variable);
/** `value` is set to a fresh text, empty after a failure; what stood there is not freed. */
HARVLINK_EXPORT IStatusInfo string_variable_interface_read(ControllerHandle handle, unsigned short index,
                                                           IStringVariableData* variable);
/** A text longer than 32 bytes is cut; the message then says so. */
HARVLINK_EXPORT IStatusInfo string_variable_interface_write(ControllerHandle handle,
                                                            IStringVariableData const* variable);
HARVLINK_EXPORT IStatusInfo robot_position_variable_interface_read(ControllerHandle handle, unsigned short index,
                                                                   RobotPositionVariableData* variable);
HARVLINK_EXPORT IStatusInfo robot_position_variable_interface_write(ControllerHandle handle,
                                                                    RobotPositionVariableData const* variable);
HARVLINK_EXPORT IStatusInfo base_position_variable_interface_read(ControllerHandle handle, unsigned short index,
                                                                  BaseAxisPositionVariableData* variable);
HARVLINK_EXPORT IStatusInfo base_position_variable_interface_write(ControllerHandle handle,
                                                                   BaseAxisPositionVariableData const* variable);
HARVLINK_EXPORT IStatusInfo station_position_variable_interface_read(ControllerHandle handle, unsigned short index,
                                                                     StationPositionVariableData* variable);
HARVLINK_EXPORT IStatusInfo station_position_variable_interface_write(ControllerHandle handle,
                                                                      StationPositionVariableData const* variable);

/* ---- Controller state (ControllerStateInterface.h) ----------------------------------------------------------------- */

HARVLINK_EXPORT IStatusInfo controller_state_interface_read_state(ControllerHandle handle, ControllerStateData* state);
HARVLINK_EXPORT IStatusInfo controller_state_interface_read_system_information(ControllerHandle handle, SystemInfoId id,
                                                                               ISystemInfoData* data);
/** The one function that may end in a C++ exception: when the answer holds no readable time. C can't catch it. */
HARVLINK_EXPORT IStatusInfo controller_state_interface_read_operating_times(ControllerHandle handle,
                                                                            ControlGroupId group, TimeType type,
                                                                            TimeData* data,
                                                                            ApplicationNumber application);
HARVLINK_EXPORT IStatusInfo controller_state_read_system_param(ControllerHandle handle, SystemParameterType type,
                                                               int number, int* value);
HARVLINK_EXPORT IStatusInfo controller_state_group_read_system_param(ControllerHandle handle, SystemParameterType type,
                                                                     int number, int group, int* value);

/* ---- Jobs (JobInterface.h) ----------------------------------------------------------------------------------------- */

HARVLINK_EXPORT IStatusInfo job_interface_set_active_job(ControllerHandle handle, char const* name, unsigned line);
HARVLINK_EXPORT IStatusInfo job_interface_get_executing_job_information(ControllerHandle handle, TesselTaskNumber task,
                                                                        IJobData* data);
/** Fills all twelve places, also after a failure. */
HARVLINK_EXPORT IStatusInfo job_interface_get_job_stack(ControllerHandle handle, TesselTaskNumber task,
                                                        IJobStack* jobs);

/* ---- Files (FileInterface.h) --------------------------------------------------------------------------------------- */

HARVLINK_EXPORT IStatusInfo file_interface_LoadToControllerFromString(ControllerHandle handle, char const* fileName,
                                                                      char const* content);
HARVLINK_EXPORT IStatusInfo file_interface_LoadToControllerFromPath(ControllerHandle handle, char const* path);
/** Of `overwrite` only the low eight bits count: 256 is false. */
HARVLINK_EXPORT IStatusInfo file_interface_SaveFromControllerToFile(ControllerHandle handle, char const* fileName,
                                                                    char const* path, int overwrite);
/** Returns the file's text, yours to free; possibly empty or partial after a failure. */
HARVLINK_EXPORT char* file_interface_SaveFromControllerToString(ControllerHandle handle, char const* fileName,
                                                                IStatusInfo* status);
HARVLINK_EXPORT IStatusInfo file_interface_DeleteJobFile(ControllerHandle handle, char const* fileName);
HARVLINK_EXPORT IStatusInfo file_interface_GetFileCount(ControllerHandle handle, FileType type, int* count);
/** Returns all names, each followed by a line feed; yours to free. Empty after a failure. */
HARVLINK_EXPORT char* file_interface_ListFiles(ControllerHandle handle, FileType type, IStatusInfo* status,
                                               bool sorted);

/* ---- Input and output (IOInterface.h) ------------------------------------------------------------------------------ */

/** Bits are 0 or 1 when read; any value but 0 writes a 1. Values are 0 after a failed read. */
HARVLINK_EXPORT IStatusInfo io_interface_type_ReadBit(ControllerHandle handle, IOType type, unsigned short group,
                                                      unsigned char bit, int* value);
HARVLINK_EXPORT IStatusInfo io_interface_address_ReadBit(ControllerHandle handle, unsigned address, int* value);
HARVLINK_EXPORT IStatusInfo io_interface_type_ReadByte(ControllerHandle handle, IOType type, unsigned short group,
                                                       unsigned* value);
HARVLINK_EXPORT IStatusInfo io_interface_address_ReadByte(ControllerHandle handle, unsigned address, unsigned* value);
/** For general inputs this form reads one group above the one that io_interface_type_ReadByte reads. */
HARVLINK_EXPORT IStatusInfo io_interface_uint8_type_ReadByte(ControllerHandle handle, IOType type, unsigned short group,
                                                             unsigned char* value);
HARVLINK_EXPORT IStatusInfo io_interface_uint8_address_ReadByte(ControllerHandle handle, unsigned address,
                                                                unsigned char* value);
HARVLINK_EXPORT IStatusInfo io_interface_type_ReadWord(ControllerHandle handle, IOType type, unsigned short group,
                                                       unsigned* value);
HARVLINK_EXPORT IStatusInfo io_interface_address_ReadWord(ControllerHandle handle, unsigned address, unsigned* value);
HARVLINK_EXPORT IStatusInfo io_interface_uint16_type_ReadWord(ControllerHandle handle, IOType type,
                                                              unsigned short group, unsigned short* value);
HARVLINK_EXPORT IStatusInfo io_interface_uint16_address_ReadWord(ControllerHandle handle, unsigned address,
                                                                 unsigned short* value);
HARVLINK_EXPORT IStatusInfo io_interface_address_WriteBit(ControllerHandle handle, unsigned address, int value);
HARVLINK_EXPORT IStatusInfo io_interface_type_WriteBit(ControllerHandle handle, IOType type, unsigned short group,
                                                       unsigned char bit, int value);
/** Of `value` the low 8 or 16 bits are written. */
HARVLINK_EXPORT IStatusInfo io_interface_type_WriteByte(ControllerHandle handle, IOType type, unsigned short group,
                                                        unsigned value);
HARVLINK_EXPORT IStatusInfo io_interface_address_WriteByte(ControllerHandle handle, unsigned address, unsigned value);
HARVLINK_EXPORT IStatusInfo io_interface_uint8_type_WriteByte(ControllerHandle handle, IOType type,
                                                              unsigned short group, unsigned char value);
HARVLINK_EXPORT IStatusInfo io_interface_uint8_address_WriteByte(ControllerHandle handle, unsigned address,
                                                                 unsigned char value);
HARVLINK_EXPORT IStatusInfo io_interface_type_WriteWord(ControllerHandle handle, IOType type, unsigned short group,
                                                        unsigned value);
HARVLINK_EXPORT IStatusInfo io_interface_address_WriteWord(ControllerHandle handle, unsigned address, unsigned value);
HARVLINK_EXPORT IStatusInfo io_interface_uint16_type_WriteWord(ControllerHandle handle, IOType type,
                                                               unsigned short group, unsigned short value);
HARVLINK_EXPORT IStatusInfo io_interface_uint16_address_WriteWord(ControllerHandle handle, unsigned address,
                                                                  unsigned short value);
HARVLINK_EXPORT IStatusInfo io_interface_ReadRegister(ControllerHandle handle, unsigned short index,
                                                      unsigned short* value);
HARVLINK_EXPORT IStatusInfo io_interface_WriteRegister(ControllerHandle handle, unsigned short index,
                                                       unsigned short value);
/** In spite of the name only 16 bits are meaningful. */
HARVLINK_EXPORT IStatusInfo io_interface_uint32_ReadRegister(ControllerHandle handle, unsigned short index,
                                                             unsigned* value);
/** Takes a pointer, unlike io_interface_WriteRegister; its low 16 bits are written. */
HARVLINK_EXPORT IStatusInfo io_interface_uint32_WriteRegister(ControllerHandle handle, unsigned short index,
                                                              unsigned const* value);
/** Returns the address of a signal, 0 with a failed status if there is none. Sends nothing. */
HARVLINK_EXPORT uint32_t io_interface_ConvertIOGroupToBitAddress(ControllerHandle handle, IOType type,
                                                                 unsigned short group, unsigned char bit,
                                                                 IStatusInfo* status);

/* ---- Control commands (ControlCommandsInterface.h): they act on a real machine -------------------------------------- */

HARVLINK_EXPORT IStatusInfo control_commands_interface_SetServos(ControllerHandle handle, SignalStatus state);
HARVLINK_EXPORT IStatusInfo control_commands_interface_SetHold(ControllerHandle handle, SignalStatus state);
HARVLINK_EXPORT IStatusInfo control_commands_interface_SetCycleMode(ControllerHandle handle, CycleMode mode);
HARVLINK_EXPORT IStatusInfo control_commands_interface_DisplayStringToPendant(ControllerHandle handle,
                                                                              char const* text);
HARVLINK_EXPORT IStatusInfo control_commands_interface_StartJob(ControllerHandle handle);

/* ---- Motion (MotionManagerInterface.h): it moves a real machine ----------------------------------------------------- */

/** Only `first` can be the motion of a CircularMotion; the others are copied without a mid-point. */
HARVLINK_EXPORT IStatusInfo motion_manager_AddPointToTrajectory(ControllerHandle handle, Motion const* first);
HARVLINK_EXPORT IStatusInfo motion_manager_Add2PointsToTrajectory(ControllerHandle handle, Motion const* first,
                                                                  Motion const* second);
HARVLINK_EXPORT IStatusInfo motion_manager_Add3PointsToTrajectory(ControllerHandle handle, Motion const* first,
                                                                  Motion const* second, Motion const* third);
HARVLINK_EXPORT IStatusInfo motion_manager_Add4PointsToTrajectory(ControllerHandle handle, Motion const* first,
                                                                  Motion const* second, Motion const* third,
                                                                  Motion const* fourth);
HARVLINK_EXPORT double motion_manager_GetMotionTargetProgress(ControllerHandle handle, ControlGroupId group,
                                                              IStatusInfo* status);
HARVLINK_EXPORT IStatusInfo motion_manager_MotionStart(ControllerHandle handle);
HARVLINK_EXPORT IStatusInfo motion_manager_MotionStop(ControllerHandle handle, bool clearTrajectory);
HARVLINK_EXPORT IStatusInfo motion_manager_ClearAllTrajectory(ControllerHandle handle);

/* ---- Kinematics (KinematicsInterface.h) ----------------------------------------------------------------------------- */

/** `source` and `result` must be different records: `result` is zeroed before `source` is read. */
HARVLINK_EXPORT IStatusInfo kinematics_interface_ConvertPosition(ControllerHandle handle, ControlGroupId group,
                                                                 PositionData* source, KinematicConversions conversion,
                                                                 PositionData* result);
/** `previousAngles` points to 8 values in the controller's unit. */
HARVLINK_EXPORT IStatusInfo kinematics_interface_ConvertPositionFromCartesian(
    ControllerHandle handle, ControlGroupId group, PositionData* source, KinematicConversions conversion,
    KinematicType type, double const* previousAngles, PositionData* result);

/* ---- Frame math (FrameMath.h): no connection; no output may be the same record as an input -------------------------- */

HARVLINK_EXPORT void vector_math_inner_product(XyzVector const* first, XyzVector const* second, double* out);
HARVLINK_EXPORT void vector_math_cross_product(XyzVector const* first, XyzVector const* second, XyzVector* out);
HARVLINK_EXPORT void frame_math_invert_frame(EulerMatrix const* in, EulerMatrix* out);
/** `angle` in degrees. */
HARVLINK_EXPORT void frame_math_rotate_frame(EulerMatrix const* frame, XyzVector const* axis, EulerMatrix* out,
                                             double angle);
HARVLINK_EXPORT void frame_math_frame_to_zyx_euler(EulerMatrix const* in, ZyxEulerPose* out);
HARVLINK_EXPORT void frame_math_multiply_frames(EulerMatrix const* first, EulerMatrix const* second, EulerMatrix* out);
HARVLINK_EXPORT void frame_math_zyx_euler_to_frame(ZyxEulerPose const* in, EulerMatrix* out);
HARVLINK_EXPORT void frame_math_set_identity_matrix_in_frame(EulerMatrix* out);

#ifdef __cplusplus
}
#endif

#endif /* HARVLINK_C_H */
