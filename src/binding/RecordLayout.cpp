#include <cstddef>

#include "harvlink/harvlink.h"
#include "harvlink/harvlink_c.h"

// The plain records and their C++ twins have one layout: size and offset of every field.

#define SAME_SIZE(record) static_assert(sizeof(::record) == sizeof(harvlink::record))
#define SAME_FIELD(record, field) static_assert(offsetof(::record, field) == offsetof(harvlink::record, field))

namespace {

SAME_SIZE(ControllerStateData);
SAME_FIELD(ControllerStateData, cycleMode);
SAME_FIELD(ControllerStateData, isRunning);
SAME_FIELD(ControllerStateData, controlMode);
SAME_FIELD(ControllerStateData, isProgramPendantHold);
SAME_FIELD(ControllerStateData, isAlarming);
SAME_FIELD(ControllerStateData, isErroring);
SAME_FIELD(ControllerStateData, isServoOn);

SAME_SIZE(ElapsedTime);
SAME_FIELD(ElapsedTime, seconds);
SAME_FIELD(ElapsedTime, minutes);
SAME_FIELD(ElapsedTime, hours);

SAME_SIZE(TimeData);
SAME_FIELD(TimeData, startTimeEpoch);
SAME_FIELD(TimeData, elapsedTime);

SAME_SIZE(Figure);
SAME_FIELD(Figure, frontOrBack);
SAME_FIELD(Figure, upperOrLower);
SAME_FIELD(Figure, flipOrNoFlip);
SAME_FIELD(Figure, sAngle);
SAME_FIELD(Figure, lAngle);
SAME_FIELD(Figure, uAngle);
SAME_FIELD(Figure, rAngle);
SAME_FIELD(Figure, bAngle);
SAME_FIELD(Figure, tAngle);
SAME_FIELD(Figure, eAngle);
SAME_FIELD(Figure, wAngle);

SAME_SIZE(PositionData);
SAME_FIELD(PositionData, coordinateType);
SAME_FIELD(PositionData, figure);
SAME_FIELD(PositionData, toolNumber);
SAME_FIELD(PositionData, userCoordinateNumber);
SAME_FIELD(PositionData, axes);

SAME_SIZE(PositionErrorData);
SAME_FIELD(PositionErrorData, axes);

SAME_SIZE(TorqueData);
SAME_FIELD(TorqueData, controlGroup);
SAME_FIELD(TorqueData, axes);

SAME_SIZE(ByteVariableData);
SAME_FIELD(ByteVariableData, value);
SAME_FIELD(ByteVariableData, variableIndex);
SAME_SIZE(IntegerVariableData);
SAME_FIELD(IntegerVariableData, value);
SAME_FIELD(IntegerVariableData, variableIndex);
SAME_SIZE(DoubleIntVariableData);
SAME_FIELD(DoubleIntVariableData, value);
SAME_FIELD(DoubleIntVariableData, variableIndex);
SAME_SIZE(RealVariableData);
SAME_FIELD(RealVariableData, value);
SAME_FIELD(RealVariableData, variableIndex);
SAME_SIZE(RobotPositionVariableData);
SAME_FIELD(RobotPositionVariableData, positionData);
SAME_FIELD(RobotPositionVariableData, variableIndex);
SAME_SIZE(BaseAxisPositionVariableData);
SAME_FIELD(BaseAxisPositionVariableData, positionData);
SAME_FIELD(BaseAxisPositionVariableData, variableIndex);
SAME_SIZE(StationPositionVariableData);
SAME_FIELD(StationPositionVariableData, positionData);
SAME_FIELD(StationPositionVariableData, variableIndex);

SAME_SIZE(Motion);
SAME_FIELD(Motion, controlGroup);
SAME_FIELD(Motion, speed);
SAME_FIELD(Motion, accelerationRatio);
SAME_FIELD(Motion, decelerationRatio);
SAME_FIELD(Motion, moveType);
SAME_FIELD(Motion, position);

// The C++ record derives from its motion, the plain one holds it: the eight values stand directly behind it in both.
SAME_SIZE(CircularMotion);
static_assert(offsetof(::CircularMotion, motion) == 0);
static_assert(offsetof(::CircularMotion, auxiliaryAxes) == sizeof(harvlink::Motion));

SAME_SIZE(XyzVector);
SAME_FIELD(XyzVector, x);
SAME_FIELD(XyzVector, y);
SAME_FIELD(XyzVector, z);

SAME_SIZE(EulerMatrix);
SAME_FIELD(EulerMatrix, nx);
SAME_FIELD(EulerMatrix, ny);
SAME_FIELD(EulerMatrix, nz);
SAME_FIELD(EulerMatrix, ox);
SAME_FIELD(EulerMatrix, oy);
SAME_FIELD(EulerMatrix, oz);
SAME_FIELD(EulerMatrix, ax);
SAME_FIELD(EulerMatrix, ay);
SAME_FIELD(EulerMatrix, az);
SAME_FIELD(EulerMatrix, px);
SAME_FIELD(EulerMatrix, py);
SAME_FIELD(EulerMatrix, pz);

SAME_SIZE(ZyxEulerPose);
SAME_FIELD(ZyxEulerPose, x);
SAME_FIELD(ZyxEulerPose, y);
SAME_FIELD(ZyxEulerPose, z);
SAME_FIELD(ZyxEulerPose, rx);
SAME_FIELD(ZyxEulerPose, ry);
SAME_FIELD(ZyxEulerPose, rz);

// These have no C++ twin. They may grow at their end only: every field keeps its place. On a 32-bit processor what stands
// behind a pointer moves up, as its C compiler sees too.
constexpr bool isNarrow = sizeof(char const*) == 4;
static_assert(sizeof(HarvlinkConnectOptions) == 56);
static_assert(offsetof(HarvlinkConnectOptions, address) == 8);
static_assert(isNarrow || offsetof(HarvlinkConnectOptions, retries) == 16);
static_assert(isNarrow || offsetof(HarvlinkConnectOptions, access) == 24);
static_assert(isNarrow || offsetof(HarvlinkConnectOptions, audit) == 32);
static_assert(offsetof(HarvlinkConnectOptions, largestFile) == 40);
static_assert(offsetof(HarvlinkConnectOptions, clearTargets) == 48);
static_assert(offsetof(HarvlinkConnectionStatistics, linkStateSince) == 8);
static_assert(offsetof(HarvlinkConnectionStatistics, exchanges) == 16);
static_assert(offsetof(HarvlinkConnectionStatistics, bytesSent) == 104);
static_assert(offsetof(HarvlinkConnectionStatistics, roundTripCount) == 112);
static_assert(offsetof(HarvlinkConnectionStatistics, ruleCounts) == 136);
static_assert(sizeof(HarvlinkConnectionStatistics) == 136 + 8 * HARVLINK_RULE_COUNT);
static_assert(HARVLINK_RULE_COUNT == harvlink::RuleCount);

} // namespace
