#pragma once

#include <cstddef>
#include <cstdint>

#include "harvlink/KinematicsInterface.h"
#include "position/PositionMessages.h"
#include "wire/GroupAddress.h"

namespace harvlink {

/// Request of all conversions but the one from Cartesian.
struct ConversionMsg {
    GroupAddress group{};
    UAPIPositionData position{};
};
static_assert(sizeof(ConversionMsg) == 56);
static_assert(offsetof(ConversionMsg, position) == 8);

/// Request of ConvertCartesianToJointAngle.
struct ConvertCartPosToJointAngleMsg {
    GroupAddress group{};
    UAPIPositionData position{};
    WireAxes previousAngles{}; ///< in the controller's unit
    KinematicType kinematicType{};
};
static_assert(sizeof(ConvertCartPosToJointAngleMsg) == 92);
static_assert(offsetof(ConvertCartPosToJointAngleMsg, position) == 8);
static_assert(offsetof(ConvertCartPosToJointAngleMsg, previousAngles) == 56);
static_assert(offsetof(ConvertCartPosToJointAngleMsg, kinematicType) == 88);

} // namespace harvlink
