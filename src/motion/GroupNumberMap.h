#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "motion/MotionMessages.h"

namespace harvlink {

/// Which control group each of the controller's four motion slots stands for. Filled slots come first.
class GroupNumberMap {
public:
    void SetGroupOne(ControlGroupId group) { groups[0] = group; }
    void SetGroupTwo(ControlGroupId group) { groups[1] = group; }
    void SetGroupThree(ControlGroupId group) { groups[2] = group; }
    void SetGroupFour(ControlGroupId group) { groups[3] = group; }

    /// The first slot that holds the group, GroupNotFound if none does.
    TargetControlGroup GetGroup(ControlGroupId group) const;
    TargetControlGroup GetGroup(Motion const& motion) const { return GetGroup(motion.controlGroup); }
    std::optional<TargetControlGroup> GetTargetControlGroup(ControlGroupId group) const;

    std::int32_t groupCount = MotionSlots; ///< how many slots a search walks
    std::array<std::optional<ControlGroupId>, MotionSlots> groups;
};

} // namespace harvlink
