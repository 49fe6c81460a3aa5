#pragma once

#include <cstdint>
#include <optional>

#include "motion/MotionMessages.h"
#include "position/PositionMessages.h"
#include "simulator/arm/Workcell.h"
#include "simulator/protocol/Refusal.h"

namespace harvlink::simulator {

/// The settings of one motion slot. Each applies to the targets that come after it, until it is set again. Clearing
/// targets and stopping don't change it.
struct TargetSettings {
    UAPICoordType coordinateType = UAPICoordType::UAPIPulse;
    std::int32_t userNumber = 0;
    std::optional<std::int32_t> tool; ///< unspecified until a tool is set; targets then use tool 0
    std::uint32_t figure = 0;
    double jointSpeed = 0.1; ///< part of the full speed
    double linearSpeed = 100.0; ///< mm/s
    double accelerationRatio = 1.0; ///< part of the full acceleration
    double decelerationRatio = 1.0;

    Refusal SetCoordinates(harvlink::MotionSetCoord const& message, Workcell const& cell);
    Refusal SetTool(std::int32_t number, Workcell const& cell);
    Refusal SetSpeed(SpeedStruct const& speed); ///< a speed of 0 keeps the former one
    Refusal SetAccelerationRatio(std::int32_t ratio); ///< 20 to 100 % in 0.01 %
    Refusal SetDecelerationRatio(std::int32_t ratio);
};

} // namespace harvlink::simulator
