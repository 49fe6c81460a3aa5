#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "harvlink/MotionManagerInterface.h"
#include "position/PositionMessages.h"

/// @file
/// The records of the motion commands.

namespace harvlink {

/// The slot of a control group within a motion step.
enum class TargetControlGroup : std::int32_t {
    GroupOne = 0,
    GroupTwo = 1,
    GroupThree = 2,
    GroupFour = 3,
    GroupNotFound = -2,
};

inline constexpr std::size_t MotionSlots = 4;

static_assert(sizeof(SpeedStruct) == 12);
static_assert(offsetof(SpeedStruct, linearSpeed) == 4);
static_assert(offsetof(SpeedStruct, angularSpeed) == 8);

/// Destination of one group; also the form in which the queue holds it.
struct Target {
    std::uint32_t targetReserved = 0;
    MoveInterpolationType moveType{};
    WireAxes axes{};
    WireAxes auxiliaryAxes{}; ///< zero unless `moveType` is Circle

    Target() = default;

    /// A motion with move type Circle must be a CircularMotion: its mid-point is read from behind the fields of Motion.
    explicit Target(Motion const& motion);
};
static_assert(sizeof(Target) == 72);
static_assert(offsetof(Target, moveType) == 4);
static_assert(offsetof(Target, axes) == 8);
static_assert(offsetof(Target, auxiliaryAxes) == 40);

/// Request of MotionSendTarget.
struct MotionTargetSend {
    std::uint32_t groupBits = 0; ///< bit i: target i moves
    std::array<Target, MotionSlots> targets{};
    std::uint32_t finalWord = 1;
};
static_assert(sizeof(MotionTargetSend) == 296);
static_assert(offsetof(MotionTargetSend, targets) == 4);
static_assert(offsetof(MotionTargetSend, finalWord) == 292);

/// Request of the command of the same name.
struct MotionSetCoord {
    TargetControlGroup group{};
    UAPICoordType coordinateType{};
    std::int32_t userCoordinateNumber = 0; ///< 0 unless the type is UAPIUser
};
static_assert(sizeof(MotionSetCoord) == 12);
static_assert(offsetof(MotionSetCoord, coordinateType) == 4);
static_assert(offsetof(MotionSetCoord, userCoordinateNumber) == 8);

struct SetSpeedMsg {
    TargetControlGroup group{};
    SpeedStruct speed{};
};
static_assert(sizeof(SetSpeedMsg) == 16);
static_assert(offsetof(SetSpeedMsg, speed) == 4);

struct SetToolMsg {
    TargetControlGroup group{};
    std::int32_t toolNumber = 0;
};
static_assert(sizeof(SetToolMsg) == 8);
static_assert(offsetof(SetToolMsg, toolNumber) == 4);

struct SetAccelRatioMsg {
    TargetControlGroup group{};
    std::int32_t ratio = 0; ///< 0.01 %
};
static_assert(sizeof(SetAccelRatioMsg) == 8);
static_assert(offsetof(SetAccelRatioMsg, ratio) == 4);

struct SetDecelRatioMsg {
    TargetControlGroup group{};
    std::int32_t ratio = 0; ///< 0.01 %
};
static_assert(sizeof(SetDecelRatioMsg) == 8);
static_assert(offsetof(SetDecelRatioMsg, ratio) == 4);

struct RobotConfigMsg {
    TargetControlGroup group{};
    std::uint32_t figure = 0; ///< bits 0 to 5 of a figure word
};
static_assert(sizeof(RobotConfigMsg) == 8);
static_assert(offsetof(RobotConfigMsg, figure) == 4);

/// Request of MotionClearTargets.
struct MotionClearGroupTargets {
    std::int32_t group = 0; ///< a TargetControlGroup, or AllGroups
    std::uint32_t reserved = 0;

    static constexpr std::int32_t AllGroups = 15;
};
static_assert(sizeof(MotionClearGroupTargets) == 8);
static_assert(offsetof(MotionClearGroupTargets, reserved) == 4);

/// Request of SetAlarm.
struct SetAlarmMsg {
    std::uint16_t alarmNumber = 8015;
    std::array<char, 32> text{}; ///< at most 31 bytes, zero-filled
    std::uint8_t subCode = 0;
    std::uint8_t padding = 0;
};
static_assert(sizeof(SetAlarmMsg) == 36);
static_assert(offsetof(SetAlarmMsg, text) == 2);
static_assert(offsetof(SetAlarmMsg, subCode) == 34);
static_assert(offsetof(SetAlarmMsg, padding) == 35);

} // namespace harvlink
