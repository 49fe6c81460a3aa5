#pragma once

#include <array>
#include <bitset>

#include "harvlink/StatusInfo.h"
#include "motion/GroupNumberMap.h"
#include "motion/MotionMessages.h"

namespace harvlink {

inline constexpr int InvalidControlGroup = 3370; ///< the status of a motion for a group that has no slot

/// Settings of one group for one step. As constructed: what the controller is assumed to
/// have at the start, so that the first step sends what differs from it.
struct TargetProfile {
    double accelerationRatio = RatioNotSpecified;
    double decelerationRatio = RatioNotSpecified;
    CoordinateType coordinateType = CoordinateType::Undefined;
    std::int32_t toolNumber = -1;
    std::int32_t userCoordinateNumber = 0;
    double speed = 0.0;
    Figure figure{};
    MoveInterpolationType moveType = MoveInterpolationType::NoMove;

    static constexpr double minimumRatio = 20.0;
    static constexpr double maximumRatio = 100.0;

    TargetProfile() = default;
    explicit TargetProfile(Motion const& motion);

    /// A NaN passes each of these checks; the limits themselves do too.
    bool CheckSpeed(double speedToCheck, MoveInterpolationType type, StatusInfo& status) const;
    bool CheckAccelDecelValue(StatusInfo& status) const;
};

/// Up to four group targets that start together.
struct MotionStep {
    std::bitset<MotionSlots> groups; ///< bit i: target and profile i are valid
    std::array<Target, MotionSlots> targets{}; ///< by TargetControlGroup; all zero without a group
    std::array<TargetProfile, MotionSlots> profiles{}; ///< by TargetControlGroup

    /// Checks a motion and makes it the group's target, replacing one that stood there. A NoMove motion is accepted
    /// unchecked and changes nothing. `status` says why a motion is refused.
    bool SetTarget(Motion const& motion, TargetControlGroup group, StatusInfo& status);
    bool SetTarget(Motion const& motion, GroupNumberMap const& map, StatusInfo& status);
};

} // namespace harvlink
