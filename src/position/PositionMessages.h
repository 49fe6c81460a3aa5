#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "harvlink/PositionData.h"

namespace harvlink {

using WireAxes = std::array<std::int32_t, 8>;

/// A position as robot position variables and RobotPositionRead carry it.
struct RobotPositionMsg {
    std::uint32_t coordinateType = 0; ///< a CoordinateType
    std::uint32_t figure = 0; ///< bits 0 to 5
    std::uint32_t toolNumber = 0;
    std::uint32_t userCoordinateNumber = 0;
    std::uint32_t extendedFigure = 0; ///< bits 0 to 4
    WireAxes axes{};
};
static_assert(sizeof(RobotPositionMsg) == 52);
static_assert(offsetof(RobotPositionMsg, figure) == 4);
static_assert(offsetof(RobotPositionMsg, toolNumber) == 8);
static_assert(offsetof(RobotPositionMsg, userCoordinateNumber) == 12);
static_assert(offsetof(RobotPositionMsg, extendedFigure) == 16);
static_assert(offsetof(RobotPositionMsg, axes) == 20);

struct BasePositionVariableMsg {
    std::uint32_t coordinateType = 0; ///< a CoordinateType
    WireAxes axes{};
};
static_assert(sizeof(BasePositionVariableMsg) == 36);
static_assert(offsetof(BasePositionVariableMsg, axes) == 4);

struct StationPositionVariableMsg {
    std::uint32_t coordinateType = 0; ///< a CoordinateType
    WireAxes axes{};
};
static_assert(sizeof(StationPositionVariableMsg) == 36);
static_assert(offsetof(StationPositionVariableMsg, axes) == 4);

/// A position as the extended commands carry it. Has no extended figure: the angles L, U, B, E and W of a Figure are lost.
struct UAPIPositionData {
    UAPICoordType coordinateType{};
    std::int16_t userCoordinateNumber = 0;
    std::int16_t toolNumber = 0;
    std::uint32_t figure = 0; ///< bits 0 to 5 as in RobotPositionMsg
    std::uint32_t reserved = 0;
    WireAxes axes{};

    UAPIPositionData() = default;

    /// With `axesAreJointAngles` the axes are joint angles in degrees, whatever the position's type says.
    UAPIPositionData(PositionData const& position, bool axesAreJointAngles);

    /// Joint angles come out with type RobotCoordinate; the caller that asked for joint angles sets JointAngle.
    operator PositionData() const; // NOLINT(google-explicit-constructor): the wire form of a position is one
};
static_assert(sizeof(UAPIPositionData) == 48);
static_assert(std::is_trivially_copyable_v<UAPIPositionData>);
static_assert(offsetof(UAPIPositionData, userCoordinateNumber) == 4);
static_assert(offsetof(UAPIPositionData, toolNumber) == 6);
static_assert(offsetof(UAPIPositionData, figure) == 8);
static_assert(offsetof(UAPIPositionData, reserved) == 12);
static_assert(offsetof(UAPIPositionData, axes) == 16);

namespace UAPIUtils {

UAPICoordType CoordinateTypeToUAPICoordType(CoordinateType type);

/// Not the inverse of the above, on purpose: joint angles give RobotCoordinate. What has no counterpart gives Undefined.
CoordinateType UAPICoordTypeToCoordinateType(UAPICoordType type);

} // namespace UAPIUtils

} // namespace harvlink
