#include "simulator/control/Tour.h"

#include <array>
#include <cmath>
#include <numbers>

#include "motion/MotionMessages.h"
#include "simulator/arm/ArmGeometry.h"

namespace harvlink::simulator {

namespace {

constexpr unsigned Points = 12; ///< of a round
constexpr double Speed = 0.15; ///< part of the full speed
constexpr ArmAngles Reach{55.0, 22.0, 18.0, 20.0, 25.0, 60.0}; ///< of the swing to both sides, in degrees
constexpr ArmAngles Swings{1.0, 2.0, 2.0, 1.0, 2.0, 3.0}; ///< of each axis in a round

MotionTargetSend StepTo(unsigned point) {
    double const turn = 2.0 * std::numbers::pi * (point % Points) / Points;
    MotionTargetSend step;
    step.groupBits = 1;
    step.targets[0].moveType = MoveInterpolationType::Joint;
    for (std::size_t axis = 0; axis < ArmAxes; ++axis) {
        double const degrees = HomeAngles[axis] + Reach[axis] * std::sin(Swings[axis] * turn);
        step.targets[0].axes[axis] =
            static_cast<std::int32_t>(std::lround(degrees * StandardArm.pulsesPerDegree[axis]));
    }
    return step;
}

} // namespace

void Tour::Feed(ControllerParts& parts) {
    MotionEngine& motion = parts.motion;
    if (!motion.IsRunning() && motion.Start() != Refusal::None) {
        return;
    }
    motion.Settings(TargetControlGroup::GroupOne)->jointSpeed = Speed;
    for (unsigned sent = 0; sent < StepsAhead; ++sent) {
        if (motion.SendTargets(StepTo(next_)) != Refusal::None) {
            return; // no room
        }
        ++next_;
    }
}

} // namespace harvlink::simulator
