#ifndef HARVLINK_C_H
#define HARVLINK_C_H

/**
 * @file
 * The plain C interface of Harvlink (C11), for C programs and for callers of other languages.
 *
 * Handle. `open_connection` always returns a handle that is not null; only its status says whether there is a
 * connection. On a handle of a failed connection nothing but `close_connection` may be called. After `close_connection`
 * the handle must not be used again. Its cell of 16 bytes is never released. A handle of `harvlink_connect` is the same.
 *
 * Ownership. Every `Message` of an `IStatusInfo` that is returned or filled, every text inside a record that is filled,
 * and every text that is returned, is allocated with malloc and is yours. Release it with `free`, also after success, also
 * if it is empty. A program that may use another C library than this one, as on Windows, calls `harvlink_free` instead. A
 * text is null only if memory ran out, which a strict connection of `harvlink_connect` reports by its status too, unless that
 * is a failure already. What you pass in stays yours; the library copies what it keeps.
 *
 * Arguments. Handles, texts and pointers must not be null; nothing checks this. Texts end at their first zero byte.
 * Enumerations are 32-bit integers; the numbers are those of the constants below, and any other number is passed on.
 *
 * Status. `StatusCode` 0 is success, up to 0xFFFF the controller's, 0x10000 and up the library's, 0x40000000 and up a
 * file on this computer, large negative numbers a controller's code read by a subsystem (add 50000000 for motion,
 * 60000000 for control groups, 80000000 for jobs, 0x70000000 for conversions).
 *
 * Time and threads. An exchange with the controller takes at most (1 + retries) x time-out. Functions may be called from
 * several threads at once on one handle, except `close_connection`. Units and failures of each operation are those of
 * the C++ header that is named at its family.
 */

#include <stdbool.h>
#include <stdint.h>

#include "harvlink/Export.h"

struct ControllerCell;

#ifdef __cplusplus
/* Many names are those of the C++ interface. In a namespace of their own, which is part of the global one, they find each
 * other even where `using namespace harvlink` stands before this file. A name that both have is then `::Motion` or
 * `harvlink::Motion` to a program. */
inline namespace harvlink_c {
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

/** What the thread that sends queued steps is doing; TrajectoryState.h says more. */
typedef int32_t TrajectoryMonitorState;
enum {
    HARVLINK_MONITOR_NOT_STARTED = 0,
    HARVLINK_MONITOR_IDLE = 1,
    HARVLINK_MONITOR_SENDING = 2,
    HARVLINK_MONITOR_HELD_BACK = 3,
    HARVLINK_MONITOR_FAILED = 4,
    HARVLINK_MONITOR_STOPPED = 5
};

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

/** What a connection of harvlink_connect may send. */
typedef int32_t HarvlinkAccess;
enum { HARVLINK_OBSERVE = 0, HARVLINK_OPERATE = 1, HARVLINK_FULL = 2 };

/** The rules of a strict connection, to be added up. See ConnectOptions.h. */
enum {
    HARVLINK_NO_RULES = 0, /**< the behaviour of open_connection */
    HARVLINK_RULE_SILENCE_IS_TIMEOUT = 1 << 0,
    HARVLINK_RULE_KNOWN_SENDER = 1 << 1,
    HARVLINK_RULE_REPEAT_READS = 1 << 2,
    HARVLINK_RULE_FITTING_ANSWER = 1 << 3,
    HARVLINK_RULE_DEADLINE = 1 << 4,
    HARVLINK_RULE_NEW_PORT = 1 << 5,
    HARVLINK_RULE_WHOLE_ANSWER = 1 << 6,
    HARVLINK_RULE_BLOCK_ORDER = 1 << 7,
    HARVLINK_RULE_WHOLE_START_UP = 1 << 8,
    HARVLINK_RULE_IDLE_MONITOR = 1 << 9,
    HARVLINK_RULE_SENT_STEP = 1 << 10,
    HARVLINK_RULE_BOUNDED_CLOSE = 1 << 11,
    HARVLINK_RULE_NO_EXCEPTIONS = 1 << 12,
    HARVLINK_STRICT_RULES = 0x1fff
};
#define HARVLINK_RULE_COUNT 13

typedef int32_t HarvlinkLinkState;
enum { HARVLINK_ONLINE = 0, HARVLINK_SILENT = 1 };

/** How harvlink_connect connects; see ConnectOptions.h. Fill it with harvlink_connect_options_init and change what differs. */
typedef struct HarvlinkConnectOptions {
    /** sizeof(HarvlinkConnectOptions) where the caller was compiled: the record can grow behind its end. */
    uint32_t size;
    uint32_t timeout; /**< milliseconds, 1 to 3600000 */
    char const* address; /**< IPv4 address in dotted form, or the name of a host */
    uint32_t retries; /**< at most 1000 */
    int32_t logging; /**< 1 or 0 */
    HarvlinkAccess access;
    uint32_t rules;
    int32_t audit; /**< 1 or 0 */
    uint32_t reserved; /**< 0 */
    uint64_t largestFile; /**< bytes, not 0 */
    int32_t clearTargets; /**< 1, or 0 to keep the motion targets when opening with HARVLINK_FULL */
    uint32_t reserved2; /**< 0 */
} HarvlinkConnectOptions;

/** What a connection has seen of its link since it was opened; see ConnectionStatistics.h. */
typedef struct HarvlinkConnectionStatistics {
    /** Set it to sizeof(HarvlinkConnectionStatistics) before the call; the number of bytes that were filled afterwards. */
    uint32_t size;
    HarvlinkLinkState linkState;
    int64_t linkStateSince; /**< microseconds since 1970-01-01 00:00 UTC */
    uint64_t exchanges;
    uint64_t timeouts;
    uint64_t lateAnswers;
    uint64_t doubledAnswers;
    uint64_t foreignAnswers; /**< told apart where the rule KnownSender is audited */
    uint64_t malformedAnswers;
    uint64_t repeatedRequests;
    uint64_t startUpRetries;
    uint64_t blocksReceived;
    uint64_t blocksSent;
    uint64_t bytesReceived;
    uint64_t bytesSent;
    uint32_t roundTripCount; /**< answered exchanges that the times below are of, 1024 at most */
    uint32_t leastMicroseconds;
    uint32_t medianMicroseconds;
    uint32_t percentile95Microseconds;
    uint32_t mostMicroseconds;
    uint32_t reserved;
    uint64_t ruleCounts[13]; /**< by bit: how often each rule refused, or in an audit would have */
} HarvlinkConnectionStatistics;

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
 * Pass the address of `motion`. A motion whose `moveType` is HARVLINK_CIRCLE must be the first member of one of these:
 * the mid-point is read from behind it, and nothing can tell whether it is there.
 */
typedef struct CircularMotion {
    Motion motion;
    double auxiliaryAxes[8];
} CircularMotion;

/** The steps of a connection, numbered 1, 2, 3 and so on as they were queued. */
typedef struct HarvlinkTrajectoryState {
    uint32_t size; /**< set it to sizeof(HarvlinkTrajectoryState): the record may grow in later versions */
    TrajectoryMonitorState monitor;
    uint64_t queued; /**< in all; the number of the last one too */
    uint64_t sent; /**< taken by the controller */
    uint64_t refused; /**< refused by the controller, or not answered */
    uint64_t withdrawn; /**< dropped before the controller took them */
    int64_t heldBackSince; /**< milliseconds since 1970 in UTC while held back, otherwise 0 */
    uint64_t failedStep; /**< the last step that failed; 0 if none did */
    ControlGroupId failedGroup;
    int32_t failureCode;
    char* failureMessage; /**< yours to free; empty if no step failed */
} HarvlinkTrajectoryState;

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

/* ---- Records of fleets (Fleet.h) ------------------------------------------------------------------------------------ */

/** A fleet; null for none. */
typedef struct HarvlinkFleetCell* HarvlinkFleet;

/** The kinds of value; FleetItemKind says what `index` means. */
typedef int32_t HarvlinkFleetItemKind;
enum {
    HARVLINK_FLEET_STATE = 0,
    HARVLINK_FLEET_JOB = 1,
    HARVLINK_FLEET_ALARMS = 2,
    HARVLINK_FLEET_POSITION = 3,
    HARVLINK_FLEET_TORQUE = 4,
    HARVLINK_FLEET_POSITION_ERROR = 5,
    HARVLINK_FLEET_BYTE = 6,
    HARVLINK_FLEET_INTEGER = 7,
    HARVLINK_FLEET_DOUBLE_INT = 8,
    HARVLINK_FLEET_REAL = 9,
    HARVLINK_FLEET_STRING = 10,
    HARVLINK_FLEET_ROBOT_POSITION = 11,
    HARVLINK_FLEET_BASE_POSITION = 12,
    HARVLINK_FLEET_STATION_POSITION = 13,
    HARVLINK_FLEET_SIGNAL = 14,
    HARVLINK_FLEET_SIGNAL_GROUP = 15,
    HARVLINK_FLEET_REGISTER = 16,
    HARVLINK_FLEET_OPERATING_TIME = 17,
    HARVLINK_FLEET_SOFTWARE = 18,
    HARVLINK_FLEET_TARGET_PROGRESS = 19
};

typedef int32_t HarvlinkFleetState;
enum {
    HARVLINK_FLEET_CONNECTING = 0,
    HARVLINK_FLEET_ONLINE = 1,
    HARVLINK_FLEET_LATE = 2,
    HARVLINK_FLEET_SILENT = 3,
    HARVLINK_FLEET_REFUSED = 4
};

typedef int32_t HarvlinkFleetQuality;
enum {
    HARVLINK_FLEET_GOOD = 0,
    HARVLINK_FLEET_NOT_GIVEN = 1, /**< FleetQuality::Refused; in C that name is taken by the state of a link */
    HARVLINK_FLEET_STALE = 2,
    HARVLINK_FLEET_NEVER_READ = 3
};

/** One thing to read; see FleetItem. All zero but `count` 1, `group` 1 and `axis` -1 reads the state. */
typedef struct HarvlinkFleetItem {
    HarvlinkFleetItemKind kind;
    uint32_t index;
    uint32_t count; /**< 1, or several variables, registers, signals or signal groups in a row */
    ControlGroupId group;
    CoordinateType coordinate;
    int32_t toolNumber;
    int32_t userCoordinateNumber;
    int32_t axis; /**< 0 to 7, or -1 for all */
    int32_t detail;
    uint32_t reserved; /**< 0 */
    double deadBand;
} HarvlinkFleetItem;

/** Items that are read together. */
typedef struct HarvlinkFleetGroup {
    int64_t period; /**< nanoseconds, from 1000000 up */
    HarvlinkFleetItem const* items;
    uint32_t itemCount;
    int32_t onChange; /**< 1 or 0 */
    int64_t longestSilence; /**< milliseconds, 0 for none */
} HarvlinkFleetGroup;

/** How a fleet talks to one controller. */
typedef struct HarvlinkFleetOptions {
    uint32_t size; /**< sizeof(HarvlinkFleetOptions) where the caller was compiled */
    uint32_t timeout; /**< milliseconds */
    char const* address; /**< IPv4 address in dotted form, or the name of a host */
    uint32_t retries;
    uint32_t lanes; /**< 1 to 4 */
    uint32_t gap; /**< microseconds from one request to the next, 0 for none */
    int32_t generation; /**< -1 if it is not known, otherwise a ControllerVersion */
    double mostRequestsPerSecond; /**< 0 for no limit */
} HarvlinkFleetOptions;

/** One place of the active alarms; the texts end with a zero byte. */
typedef struct HarvlinkFleetAlarm {
    uint32_t code; /**< 0 for an empty place */
    uint32_t subcode;
    char time[20];
    char name[36];
} HarvlinkFleetAlarm;

/** One value of one item. By `item.kind`, the value is in: `state`; `text` (name), `line`, `step` and `real` (speed in per
 * cent) of a job; `alarms`; `position`; `axes` of a torque or position error; `text` of a string; `integer` of a signal (0 or
 * 1) and all whole numbers; `real` of a real variable, a progress and an axis of a position; `integer` (start, seconds since
 * the epoch) and `elapsedTime`; `text` (model) and `software`. It is there if the quality is good or stale. */
typedef struct HarvlinkFleetSample {
    char controller[64]; /**< its name */
    HarvlinkFleetItem item;
    uint32_t group; /**< place in the groups of the controller */
    HarvlinkFleetQuality quality;
    int32_t code; /**< 0, or why there is no new value */
    uint32_t textLength; /**< bytes of `text`: a string variable may have zero bytes inside */
    int64_t requestTime; /**< nanoseconds since 1970-01-01 00:00 UTC */
    int64_t answerTime;
    int64_t integer;
    double real;
    ControllerStateData state;
    int32_t axes[8];
    PositionData position;
    ElapsedTime elapsedTime;
    uint32_t line;
    uint32_t step;
    char text[36];
    char software[28];
    HarvlinkFleetAlarm alarms[4];
} HarvlinkFleetSample;

/** What happened to a controller; see FleetEvent. */
typedef struct HarvlinkFleetEvent {
    char controller[64];
    int32_t kind; /**< a FleetEventKind */
    int32_t code;
    int64_t time; /**< nanoseconds since 1970-01-01 00:00 UTC */
    int64_t before;
    int64_t after;
    char text[48];
} HarvlinkFleetEvent;

/** What watching a controller costs; see FleetControllerPlan. */
typedef struct HarvlinkFleetPlan {
    char controller[64];
    double exchangesPerSecond;
    int64_t longestRoundTrip; /**< nanoseconds; 0 if its periods can't be kept */
} HarvlinkFleetPlan;

/** How a controller does; see FleetControllerStatistics. */
typedef struct HarvlinkFleetStatistics {
    char controller[64];
    HarvlinkFleetState state;
    uint32_t groups;
    int64_t stateSince; /**< nanoseconds since 1970-01-01 00:00 UTC */
    uint64_t exchanges;
    uint64_t timeouts;
    uint64_t repeatedRequests;
    uint64_t lateAnswers;
    uint64_t malformedAnswers;
    uint64_t refusals;
    uint64_t startUps;
    uint64_t rounds[16]; /**< by group */
    uint64_t overruns[16];
    double effectiveRates[16]; /**< rounds a second */
} HarvlinkFleetStatistics;

/* ---- Connection (QuorvanController.h) ------------------------------------------------------------------------------ */

/** Opens a connection and fills `status`. Never returns null; see the notes at the top. Logging is on. Takes an IPv4 address:
 * names are resolved by harvlink_connect alone. */
HARVLINK_EXPORT ControllerHandle open_connection(char const* ipAddress, IStatusInfo* status,
                                                 unsigned timeoutMilliseconds, unsigned retries);

/** Fills the whole record with the defaults: observes, strictly, 500 ms, 3 retries, logging on, files up to 256 MiB,
 * full access clears the motion targets; no address yet. */
HARVLINK_EXPORT void harvlink_connect_options_init(HarvlinkConnectOptions* options);

/** Connects with options and fills `status`: what Connect in ConnectOptions.h says, and 0x50000 for a `size` that is 0 or too
 * small for the address, or for set bytes beyond what this library knows. Of a shorter record the rest takes its defaults.
 * Returns a handle that is not null and goes to close_connection, as open_connection does. */
HARVLINK_EXPORT ControllerHandle harvlink_connect(HarvlinkConnectOptions const* options, IStatusInfo* status);

/** Reads the statistics of a connection, however it was opened. Sends nothing and does not wait. 0x50000 if `size` is less
 * than 8, and then nothing is filled; all zero for the handle of a failed connection. */
HARVLINK_EXPORT IStatusInfo harvlink_get_connection_statistics(ControllerHandle handle,
                                                               HarvlinkConnectionStatistics* statistics);

/** Closes a connection, or the handle of a failed one. Once only. */
HARVLINK_EXPORT void close_connection(ControllerHandle handle);

/** Releases a text that is yours, by the `free` of the C library that this library uses. Null is ignored. */
HARVLINK_EXPORT void harvlink_free(void* text);

/* ---- Alarms (FaultInterface.h) ------------------------------------------------------------------------------------- */

/** Reads the four alarm places. Always fills all four: eight texts to free on every call, also after a failure. A
 * failure keeps the places read so far; the others are empty. */
HARVLINK_EXPORT IStatusInfo fault_interface_get_active_alarms(ControllerHandle handle, IActiveAlarms* alarms);
/** Reads up to `quantity` alarms (at most 100) of a category, the newest first. Always fills all hundred places: two
 * hundred texts to free on every call. A failure keeps what was read. 0x30017 for an unknown category. */
HARVLINK_EXPORT IStatusInfo fault_interface_get_alarm_history(ControllerHandle handle, AlarmCategory category,
                                                              unsigned quantity, IAlarmHistory* history);
/** Cancels the error and resets the alarms, always both. The status is that of the reset alone. */
HARVLINK_EXPORT IStatusInfo fault_interface_clear_all_faults(ControllerHandle handle);

/* ---- Control groups (ControlGroupInterface.h) ---------------------------------------------------------------------- */

/* `group` is one that the controller has, else code -59959039, "Invalid Control Group Id". Records are zero after a
 * failure, except that a refused read of torque, or of a position by the older command, fills in what the refusal
 * carried. */

/** Reads where a group is, in the units of PositionData. `userCoordinateNumber` (1 to 63) counts for
 * HARVLINK_USER_COORDINATE, `toolNumber` for all types but HARVLINK_PULSE. 0x20015 for a type that can't be read,
 * 0x20016 for a tool other than 0 below YA, 0x30015 for a group that is not attached, 45069 and 45070 for a number
 * out of range with user coordinates. With base and robot coordinates a tool out of range gives zeros and code 0. */
HARVLINK_EXPORT IStatusInfo control_group_interface_read_position_data(ControllerHandle handle, ControlGroupId group,
                                                                       CoordinateType type,
                                                                       unsigned char userCoordinateNumber,
                                                                       unsigned char toolNumber,
                                                                       PositionData* position);
/** Reads the axis letters into the 8 characters at `configuration`; a zero stands for an axis that the group does
 * not have. */
HARVLINK_EXPORT IStatusInfo control_group_interface_read_axis_configuration(ControllerHandle handle,
                                                                            ControlGroupId group, char* configuration);
/** Reads the difference between commanded and reached position of each axis, in pulses. */
HARVLINK_EXPORT IStatusInfo control_group_interface_read_position_error(ControllerHandle handle, ControlGroupId group,
                                                                        PositionErrorData* data);
/** Reads the torque of each axis, in the controller's unit. */
HARVLINK_EXPORT IStatusInfo control_group_interface_read_torque_data(ControllerHandle handle, ControlGroupId group,
                                                                     TorqueData* data);

/* ---- Variables (VariablesInterface.h) ------------------------------------------------------------------------------ */

/* Indexes are those of the pendant, 0 to 2048. One above, or that the controller does not have, gives 0x30008. After
 * a failed read the record holds the index and is zero otherwise. After a write without an answer it is not known
 * whether the value was stored; writing it again does no harm. */

/** Reads B`index`: 0 to 255. */
HARVLINK_EXPORT IStatusInfo byte_variable_interface_read(ControllerHandle handle, unsigned short index,
                                                         ByteVariableData* variable);
/** Writes the byte `variable.value` to B`variable.variableIndex`. */
HARVLINK_EXPORT IStatusInfo byte_variable_interface_write(ControllerHandle handle, ByteVariableData variable);
/** Reads I`index`: 16 bits, signed. */
HARVLINK_EXPORT IStatusInfo integer_variable_interface_read(ControllerHandle handle, unsigned short index,
                                                            IntegerVariableData* variable);
/** Writes the 16-bit integer `variable.value` to I`variable.variableIndex`. */
HARVLINK_EXPORT IStatusInfo integer_variable_interface_write(ControllerHandle handle, IntegerVariableData variable);
/** Reads D`index`: 32 bits, signed. */
HARVLINK_EXPORT IStatusInfo double_int_variable_interface_read(ControllerHandle handle, unsigned short index,
                                                               DoubleIntVariableData* variable);
/** Writes the 32-bit integer `variable.value` to D`variable.variableIndex`. */
HARVLINK_EXPORT IStatusInfo double_int_variable_interface_write(ControllerHandle handle,
                                                                DoubleIntVariableData variable);
/** Reads R`index`: 32-bit floating point. */
HARVLINK_EXPORT IStatusInfo real_variable_interface_read(ControllerHandle handle, unsigned short index,
                                                         RealVariableData* variable);
/** Writes the floating point number `variable.value` to R`variable.variableIndex`. */
HARVLINK_EXPORT IStatusInfo real_variable_interface_write(ControllerHandle handle, RealVariableData variable);
/** Reads S`index`. `value` is set to a new text, yours to free, empty after a failure; an old text there is not
 * freed. The text ends at its first zero byte. */
HARVLINK_EXPORT IStatusInfo string_variable_interface_read(ControllerHandle handle, unsigned short index,
                                                           IStringVariableData* variable);
/** Writes the text `value` to S`variableIndex`. A text of more than 32 bytes is cut; code 0 then, and the message
 * says so. */
HARVLINK_EXPORT IStatusInfo string_variable_interface_write(ControllerHandle handle,
                                                            IStringVariableData const* variable);
/** Reads P`index`, a position of a robot in the units of PositionData. */
HARVLINK_EXPORT IStatusInfo robot_position_variable_interface_read(ControllerHandle handle, unsigned short index,
                                                                   RobotPositionVariableData* variable);
/** Writes a position of a robot. Nothing is sent after 0x20015 (joint angles), 3460 (undefined type), 45069 (tool
 * below 0 or above the number of tool files) and 45070 (user coordinate not 1 to 63). */
HARVLINK_EXPORT IStatusInfo robot_position_variable_interface_write(ControllerHandle handle,
                                                                    RobotPositionVariableData const* variable);
/** Reads BP`index`, a position of a base axis. All axes that are not pulses have a resolution of 0.001. After
 * success `variableIndex` is 0. */
HARVLINK_EXPORT IStatusInfo base_position_variable_interface_read(ControllerHandle handle, unsigned short index,
                                                                  BaseAxisPositionVariableData* variable);
/** Writes a position of a base axis. In pulses all eight axes are written as 0. */
HARVLINK_EXPORT IStatusInfo base_position_variable_interface_write(ControllerHandle handle,
                                                                   BaseAxisPositionVariableData const* variable);
/** Reads EX`index`, a position of a station in pulses. After success `variableIndex` is 0. */
HARVLINK_EXPORT IStatusInfo station_position_variable_interface_read(ControllerHandle handle, unsigned short index,
                                                                     StationPositionVariableData* variable);
/** Writes a position of a station, in pulses whatever its type says, truncated to whole numbers. */
HARVLINK_EXPORT IStatusInfo station_position_variable_interface_write(ControllerHandle handle,
                                                                      StationPositionVariableData const* variable);

/* ---- Controller state (ControllerStateInterface.h) ----------------------------------------------------------------- */

/* Records are zero after a failure. */

/** Reads mode, cycle, running, hold, alarm, error and servo power. */
HARVLINK_EXPORT IStatusInfo controller_state_interface_read_state(ControllerHandle handle, ControllerStateData* state);
/** Reads software version and model name: two texts to free on every call, empty after a failure. 45063 for an
 * unknown id. */
HARVLINK_EXPORT IStatusInfo controller_state_interface_read_system_information(ControllerHandle handle, SystemInfoId id,
                                                                               ISystemInfoData* data);
/** Reads an operating time: start in seconds since the epoch, and the time counted. `application` counts for
 * HARVLINK_APPLICATION_TIME only. 40961 for a type that does not exist or does not fit `group`, 51200 for a group
 * that the controller does not have. On a handle of open_connection, the one function with a valid argument that may end
 * in a C++ exception: when the answer holds no readable time. C can't catch it; a strict connection gives 0x50008. */
HARVLINK_EXPORT IStatusInfo controller_state_interface_read_operating_times(ControllerHandle handle,
                                                                            ControlGroupId group, TimeType type,
                                                                            TimeData* data,
                                                                            ApplicationNumber application);
/** Reads a parameter of the whole controller. 0x30012 for HARVLINK_S1C, _S1E and _S2E, which need a group; 0x30011
 * for an unknown parameter; 0x30005 below YA. `value` is 0 after a failure. */
HARVLINK_EXPORT IStatusInfo controller_state_read_system_param(ControllerHandle handle, SystemParameterType type,
                                                               int number, int* value);
/** Reads a parameter of a group, by the controller's number, from 1. Codes as above; 0x30016 for an unknown group.
 * */
HARVLINK_EXPORT IStatusInfo controller_state_group_read_system_param(ControllerHandle handle, SystemParameterType type,
                                                                     int number, int group, int* value);

/* ---- Jobs (JobInterface.h) ----------------------------------------------------------------------------------------- */

/** Selects the job that a start will run, from `line` (0 to 9999) on. Upper or lower case, with or without ".JBI",
 * at most 32 characters. 0x20007 for a longer name, -79979008 for a line that is not there, -79983552 for an unknown
 * job. */
HARVLINK_EXPORT IStatusInfo job_interface_set_active_job(ControllerHandle handle, char const* name, unsigned line);
/** Reads name, line, step and speed override of the job that a task runs. `name` is yours to free on every call.
 * 40961 for an unknown task. */
HARVLINK_EXPORT IStatusInfo job_interface_get_executing_job_information(ControllerHandle handle, TesselTaskNumber task,
                                                                        IJobData* data);
/** Reads the call stack of a task. Fills all twelve places, also after a failure: twelve texts to free on every
 * call. -79934465 for an unknown task, 0x30005 below YA. */
HARVLINK_EXPORT IStatusInfo job_interface_get_job_stack(ControllerHandle handle, TesselTaskNumber task,
                                                        IJobStack* jobs);

/* ---- Files (FileInterface.h) --------------------------------------------------------------------------------------- */

/* Blocks until the file is through, one exchange per 479 bytes; one transfer at a time, or they mix up on the
 * controller. A name ends in .JBI, .DAT, .CND, .PRM, .SYS, .LST or .LOG, in upper or lower case. A fetched
 * file loses the rest of each block behind its first zero byte. */

/** Writes the text `content` to the controller as `fileName`. 0x20001 for an unknown extension, 0x20008 for .PRM,
 * .SYS and .LOG, 0x30014 for a job without its "//NAME" line, 0x20007 for a name above 32 characters. */
HARVLINK_EXPORT IStatusInfo file_interface_LoadToControllerFromString(ControllerHandle handle, char const* fileName,
                                                                      char const* content);
/** Writes a file of this computer to the controller, under its own name. Codes as above; 0x20003 if there is no such
 * file, 0x40000000 + error value if it can't be read. A job is then looked for in the controller's list, for about
 * half a second; if it is not there the code stays 0 and the message says so. */
HARVLINK_EXPORT IStatusInfo file_interface_LoadToControllerFromPath(ControllerHandle handle, char const* path);
/** Writes the controller's file to `path`. Of `overwrite` only the low eight bits count: 256 is false. 0x20002 if
 * `path` exists and `overwrite` is false, 0x40000000 + error value if it can't be written. Nothing is written before
 * the whole file has arrived. */
HARVLINK_EXPORT IStatusInfo file_interface_SaveFromControllerToFile(ControllerHandle handle, char const* fileName,
                                                                    char const* path, int overwrite);
/** Returns the controller's file as a text, yours to free; possibly empty or partial after a failure. */
HARVLINK_EXPORT char* file_interface_SaveFromControllerToString(ControllerHandle handle, char const* fileName,
                                                                IStatusInfo* status);
/** Deletes a job; ".JBI" is added to a name that does not end in it. */
HARVLINK_EXPORT IStatusInfo file_interface_DeleteJobFile(ControllerHandle handle, char const* fileName);
/** Counts the files of a kind; 0 after a failure. */
HARVLINK_EXPORT IStatusInfo file_interface_GetFileCount(ControllerHandle handle, FileType type, int* count);
/** Returns the names of the files of a kind, each followed by a line feed, in byte order if `sorted`; yours to free.
 * Empty after a failure. */
HARVLINK_EXPORT char* file_interface_ListFiles(ControllerHandle handle, FileType type, IStatusInfo* status,
                                               bool sorted);

/* ---- Input and output (IOInterface.h) ------------------------------------------------------------------------------ */

/* A group is eight signals; groups of a class count from 1. An address is the number of a group in the map of
 * all classes, times ten, plus the bit, 0 to 7. Network inputs are written on every generation, general outputs and
 * interface panel inputs from YA up, in remote mode (else 65535). 0x20009 for a group outside its class, 0x10004 for a
 * bit that does not exist, 40961 for an address that is not in the map, and below YA for all that is not written;
 * 0x30007 for these from YA up. `*value` is 0 after a failed read. */

/** Reads signal `bit` (0 to 7) of a group as 0 or 1. */
HARVLINK_EXPORT IStatusInfo io_interface_type_ReadBit(ControllerHandle handle, IOType type, unsigned short group,
                                                      unsigned char bit, int* value);
/** Reads the signal at an address as 0 or 1. */
HARVLINK_EXPORT IStatusInfo io_interface_address_ReadBit(ControllerHandle handle, unsigned address, int* value);
/** Reads a group, its first signal in bit 0. */
HARVLINK_EXPORT IStatusInfo io_interface_type_ReadByte(ControllerHandle handle, IOType type, unsigned short group,
                                                       unsigned* value);
/** Reads the group that begins at an address. */
HARVLINK_EXPORT IStatusInfo io_interface_address_ReadByte(ControllerHandle handle, unsigned address, unsigned* value);
/** Reads a group. For general inputs this is one group above the one that io_interface_type_ReadByte reads. */
HARVLINK_EXPORT IStatusInfo io_interface_uint8_type_ReadByte(ControllerHandle handle, IOType type, unsigned short group,
                                                             unsigned char* value);
/** Reads the group that begins at an address. */
HARVLINK_EXPORT IStatusInfo io_interface_uint8_address_ReadByte(ControllerHandle handle, unsigned address,
                                                                unsigned char* value);
/** Reads two groups, the first in the low byte. */
HARVLINK_EXPORT IStatusInfo io_interface_type_ReadWord(ControllerHandle handle, IOType type, unsigned short group,
                                                       unsigned* value);
/** Reads the two groups that begin at an address. */
HARVLINK_EXPORT IStatusInfo io_interface_address_ReadWord(ControllerHandle handle, unsigned address, unsigned* value);
/** Reads two groups, the first in the low byte. */
HARVLINK_EXPORT IStatusInfo io_interface_uint16_type_ReadWord(ControllerHandle handle, IOType type,
                                                              unsigned short group, unsigned short* value);
/** Reads the two groups that begin at an address. */
HARVLINK_EXPORT IStatusInfo io_interface_uint16_address_ReadWord(ControllerHandle handle, unsigned address,
                                                                 unsigned short* value);
/** Writes the signal at an address: 0, or 1 for any other `value`. */
HARVLINK_EXPORT IStatusInfo io_interface_address_WriteBit(ControllerHandle handle, unsigned address, int value);
/** Writes signal `bit` (0 to 7) of a group: 0, or 1 for any other `value`. */
HARVLINK_EXPORT IStatusInfo io_interface_type_WriteBit(ControllerHandle handle, IOType type, unsigned short group,
                                                       unsigned char bit, int value);
/** Writes the low 8 bits of `value` to a group. */
HARVLINK_EXPORT IStatusInfo io_interface_type_WriteByte(ControllerHandle handle, IOType type, unsigned short group,
                                                        unsigned value);
/** Writes the low 8 bits of `value` to the group that begins at an address. */
HARVLINK_EXPORT IStatusInfo io_interface_address_WriteByte(ControllerHandle handle, unsigned address, unsigned value);
/** Writes `value` to a group. */
HARVLINK_EXPORT IStatusInfo io_interface_uint8_type_WriteByte(ControllerHandle handle, IOType type,
                                                              unsigned short group, unsigned char value);
/** Writes `value` to the group that begins at an address. */
HARVLINK_EXPORT IStatusInfo io_interface_uint8_address_WriteByte(ControllerHandle handle, unsigned address,
                                                                 unsigned char value);
/** Writes the low 16 bits of `value` to two groups, the low byte to the first. */
HARVLINK_EXPORT IStatusInfo io_interface_type_WriteWord(ControllerHandle handle, IOType type, unsigned short group,
                                                        unsigned value);
/** Writes the low 16 bits of `value` to the two groups that begin at an address. */
HARVLINK_EXPORT IStatusInfo io_interface_address_WriteWord(ControllerHandle handle, unsigned address, unsigned value);
/** Writes `value` to two groups, the low byte to the first. */
HARVLINK_EXPORT IStatusInfo io_interface_uint16_type_WriteWord(ControllerHandle handle, IOType type,
                                                               unsigned short group, unsigned short value);
/** Writes `value` to the two groups that begin at an address. */
HARVLINK_EXPORT IStatusInfo io_interface_uint16_address_WriteWord(ControllerHandle handle, unsigned address,
                                                                  unsigned short value);
/** Reads a register: 16 bits. 65535 for one that the controller does not have. */
HARVLINK_EXPORT IStatusInfo io_interface_ReadRegister(ControllerHandle handle, unsigned short index,
                                                      unsigned short* value);
/** Writes a register. 0x30008 for one above 2048 or that the controller does not have. */
HARVLINK_EXPORT IStatusInfo io_interface_WriteRegister(ControllerHandle handle, unsigned short index,
                                                       unsigned short value);
/** Reads a register into the low 16 bits of `*value`; in spite of the name the others are 0. */
HARVLINK_EXPORT IStatusInfo io_interface_uint32_ReadRegister(ControllerHandle handle, unsigned short index,
                                                             unsigned* value);
/** Writes the low 16 bits of `*value`, which is a pointer here, unlike in io_interface_WriteRegister. */
HARVLINK_EXPORT IStatusInfo io_interface_uint32_WriteRegister(ControllerHandle handle, unsigned short index,
                                                              unsigned const* value);
/** Returns the address of a signal, or 0 with a failed status if there is none. Sends nothing. */
HARVLINK_EXPORT uint32_t io_interface_ConvertIOGroupToBitAddress(ControllerHandle handle, IOType type,
                                                                 unsigned short group, unsigned char bit,
                                                                 IStatusInfo* status);

/* ---- Control commands (ControlCommandsInterface.h): they act on a real machine -------------------------------------- */

/* Remote mode is needed for most. After no answer (0x30006) read the state: the command may have taken effect. */

/** Turns servo power on or off (HARVLINK_ON, HARVLINK_OFF). It may wait up to four times as long as others. */
HARVLINK_EXPORT IStatusInfo control_commands_interface_SetServos(ControllerHandle handle, SignalStatus state);
/** Holds the running job and motion, or releases the hold (HARVLINK_ON, HARVLINK_OFF). */
HARVLINK_EXPORT IStatusInfo control_commands_interface_SetHold(ControllerHandle handle, SignalStatus state);
/** Sets how a started job runs: one step, once to its end, or again and again. */
HARVLINK_EXPORT IStatusInfo control_commands_interface_SetCycleMode(ControllerHandle handle, CycleMode mode);
/** Shows a line on the pendant, cut to 30 bytes. */
HARVLINK_EXPORT IStatusInfo control_commands_interface_DisplayStringToPendant(ControllerHandle handle,
                                                                              char const* text);
/** Starts the selected job. A repetition may start it twice. */
HARVLINK_EXPORT IStatusInfo control_commands_interface_StartJob(ControllerHandle handle);

/* ---- Motion (MotionManagerInterface.h): it moves a real machine ----------------------------------------------------- */

/* From YA up, else 0x30005. A thread of the library sends the queue after the first start. Only `first` can be the
 * `motion` of a CircularMotion; the others are copied without a mid-point. The controller's codes come with 50000000
 * subtracted. */

/** Checks a motion and queues it as a step; sends nothing. Codes, with an unchanged queue: 3370 for a group without
 * a motion slot, 0x20015 for joint angles, 0x30001 and 0x30002 for the speed, 0x30009 and 0x30010 for a ratio. */
HARVLINK_EXPORT IStatusInfo motion_manager_AddPointToTrajectory(ControllerHandle handle, Motion const* first);
/** Queues a step of two motions that start together. Of two for one group the second counts. */
HARVLINK_EXPORT IStatusInfo motion_manager_Add2PointsToTrajectory(ControllerHandle handle, Motion const* first,
                                                                  Motion const* second);
/** Queues a step of three motions that start together. */
HARVLINK_EXPORT IStatusInfo motion_manager_Add3PointsToTrajectory(ControllerHandle handle, Motion const* first,
                                                                  Motion const* second, Motion const* third);
/** Queues a step of four motions that start together. */
HARVLINK_EXPORT IStatusInfo motion_manager_Add4PointsToTrajectory(ControllerHandle handle, Motion const* first,
                                                                  Motion const* second, Motion const* third,
                                                                  Motion const* fourth);
/** Returns how far a group has come, the controller's number unchanged; 0.0 after a failure. 65504 for a group
 * without a motion slot. */
HARVLINK_EXPORT double motion_manager_GetMotionTargetProgress(ControllerHandle handle, ControlGroupId group,
                                                              IStatusInfo* status);
/** Lets the controller move to its targets, and starts to send the queue. */
HARVLINK_EXPORT IStatusInfo motion_manager_MotionStart(ControllerHandle handle);
/** Stops the motion. With `clearTrajectory` a stop that succeeded also clears the queue and the controller's
 * targets. Without it the queue goes on being sent; the rule BoundedClose holds it until the next start, also if the answer
 * to the stop is lost. */
HARVLINK_EXPORT IStatusInfo motion_manager_MotionStop(ControllerHandle handle, bool clearTrajectory);
/** Clears the queue and the controller's targets. */
HARVLINK_EXPORT IStatusInfo motion_manager_ClearAllTrajectory(ControllerHandle handle);
/** Queues a step of one to four motions and sets `*stepNumber`; 0 after a failure. The later motions may be null. */
HARVLINK_EXPORT IStatusInfo harvlink_motion_add(ControllerHandle handle, uint64_t* stepNumber, Motion const* first,
                                                Motion const* second, Motion const* third, Motion const* fourth);
/** Fills `*state`, whose `size` has to be set. 0x50000 with nothing filled if it is smaller than in the first version. */
HARVLINK_EXPORT IStatusInfo harvlink_motion_get_state(ControllerHandle handle, HarvlinkTrajectoryState* state);
/** Waits until all groups of a step are within `tolerance` (pulses or millimetres) of their targets, or have gone on.
 * 0x50010 if that takes longer, the code of an alarm, 0x50009 for a step that was dropped, 0x50011 for an unknown one. */
HARVLINK_EXPORT IStatusInfo harvlink_motion_wait_for_target(ControllerHandle handle, uint64_t stepNumber,
                                                            uint32_t timeoutMilliseconds, double tolerance);
/** Waits until the controller has taken a step; the codes are those of harvlink_motion_wait_for_target. */
HARVLINK_EXPORT IStatusInfo harvlink_motion_wait_until_sent(ControllerHandle handle, uint64_t stepNumber,
                                                            uint32_t timeoutMilliseconds);

/* ---- Kinematics (KinematicsInterface.h) ----------------------------------------------------------------------------- */

/* From YA up, else 0x30005. The controller converts; nothing moves. `source` and `result` must be different records:
 * `result` is zeroed before `source` is read, and stays zero after a failure. The controller's codes come with
 * 0x70000000 subtracted. */

/** Converts pulses or joint angles: the conversions 0 to 3, any other gives 0x20014. */
HARVLINK_EXPORT IStatusInfo kinematics_interface_ConvertPosition(ControllerHandle handle, ControlGroupId group,
                                                                 PositionData* source, KinematicConversions conversion,
                                                                 PositionData* result);
/** Converts a Cartesian position: the conversions 4 and 5, any other gives 0x20013. `previousAngles` points to 8
 * values in the controller's unit, which are truncated to whole numbers. */
HARVLINK_EXPORT IStatusInfo kinematics_interface_ConvertPositionFromCartesian(
    ControllerHandle handle, ControlGroupId group, PositionData* source, KinematicConversions conversion,
    KinematicType type, double const* previousAngles, PositionData* result);

/* ---- Fleets (Fleet.h) ------------------------------------------------------------------------------------------------ */

/* One thread watches any number of controllers and only reads. May be called from any thread, but for create and destroy.
 * A function that fills an array returns how many there are to be filled, which may be more than `capacity`, unless it says
 * otherwise. A null fleet has no controllers. A null text is an empty one, a null array has no room or holds nothing: where
 * that can't be, the status says what is missing. */

/** Makes a fleet that keeps up to `queueCapacity` samples, 0 for 16384. Null, with a status, if memory or descriptors end. */
HARVLINK_EXPORT HarvlinkFleet harvlink_fleet_create(uint32_t queueCapacity, IStatusInfo* status);
/** Adds a controller. 0x50013 and a text that names the item if something is not valid; see Fleet::Add. */
HARVLINK_EXPORT IStatusInfo harvlink_fleet_add(HarvlinkFleet fleet, char const* name,
                                               HarvlinkFleetOptions const* options, HarvlinkFleetGroup const* groups,
                                               uint32_t groupCount);
/** Replaces options and groups of a controller; 0x50014 if there is none of this name. */
HARVLINK_EXPORT IStatusInfo harvlink_fleet_change(HarvlinkFleet fleet, char const* name,
                                                  HarvlinkFleetOptions const* options, HarvlinkFleetGroup const* groups,
                                                  uint32_t groupCount);
/** Ends watching a controller; 0x50014 if there is none of this name. */
HARVLINK_EXPORT IStatusInfo harvlink_fleet_remove(HarvlinkFleet fleet, char const* name);
/** What each controller costs. Sends nothing. */
HARVLINK_EXPORT uint32_t harvlink_fleet_plan(HarvlinkFleet fleet, HarvlinkFleetPlan* plans, uint32_t capacity);
/** Begins to read. 0x50007 if this computer gives no thread or no descriptor for it. */
HARVLINK_EXPORT IStatusInfo harvlink_fleet_start(HarvlinkFleet fleet);
/** Ends reading. What waits to be taken stays. */
HARVLINK_EXPORT void harvlink_fleet_stop(HarvlinkFleet fleet);
/** Moves the oldest samples into an array and returns how many. Waits for the first at most `waitMilliseconds`. */
HARVLINK_EXPORT uint32_t harvlink_fleet_take(HarvlinkFleet fleet, HarvlinkFleetSample* samples, uint32_t capacity,
                                             uint32_t waitMilliseconds);
/** The same for events. */
HARVLINK_EXPORT uint32_t harvlink_fleet_take_events(HarvlinkFleet fleet, HarvlinkFleetEvent* events, uint32_t capacity,
                                                    uint32_t waitMilliseconds);
/** The last value of each item, of one controller or, with a null name, of all. */
HARVLINK_EXPORT uint32_t harvlink_fleet_latest(HarvlinkFleet fleet, char const* name, HarvlinkFleetSample* samples,
                                               uint32_t capacity);
/** Statistics of each controller. `*droppedSamples`, which may be null, counts samples that nobody took in time. */
HARVLINK_EXPORT uint32_t harvlink_fleet_statistics(HarvlinkFleet fleet, HarvlinkFleetStatistics* statistics,
                                                   uint32_t capacity, uint64_t* droppedSamples);
/** Stops, and frees the fleet. Null is ignored. No other function of it may run. */
HARVLINK_EXPORT void harvlink_fleet_destroy(HarvlinkFleet fleet);

/* ---- Frame math (FrameMath.h): no connection; no output may be the same record as an input -------------------------- */

/* Each fills `out` and can't fail. Null pointers are not looked for. */

/** The scalar product. */
HARVLINK_EXPORT void vector_math_inner_product(XyzVector const* first, XyzVector const* second, double* out);
/** The vector product, first x second. */
HARVLINK_EXPORT void vector_math_cross_product(XyzVector const* first, XyzVector const* second, XyzVector* out);
/** The inverse of a frame whose rotation is orthonormal. */
HARVLINK_EXPORT void frame_math_invert_frame(EulerMatrix const* in, EulerMatrix* out);
/** Turns a frame by `angle` degrees, right-handed, about a unit vector through its own origin, given in its own
 * coordinates. */
HARVLINK_EXPORT void frame_math_rotate_frame(EulerMatrix const* frame, XyzVector const* axis, EulerMatrix* out,
                                             double angle);
/** The position and the angles of a frame, in degrees: rx and rz from -180 to 180, ry from -90 to 90. */
HARVLINK_EXPORT void frame_math_frame_to_zyx_euler(EulerMatrix const* in, ZyxEulerPose* out);
/** The matrix product, first x second. */
HARVLINK_EXPORT void frame_math_multiply_frames(EulerMatrix const* first, EulerMatrix const* second, EulerMatrix* out);
/** The frame of a position and angles in degrees, Rz(rz) Ry(ry) Rx(rx). */
HARVLINK_EXPORT void frame_math_zyx_euler_to_frame(ZyxEulerPose const* in, EulerMatrix* out);
/** Makes `out` the identity: no rotation and no translation. */
HARVLINK_EXPORT void frame_math_set_identity_matrix_in_frame(EulerMatrix* out);

#ifdef __cplusplus
} /* extern "C" */
} /* namespace harvlink_c */
#endif

#endif /* HARVLINK_C_H */
