#include "motion/GroupNumberMap.h"

#include <algorithm>

namespace harvlink {

TargetControlGroup GroupNumberMap::GetGroup(ControlGroupId group) const {
    return GetTargetControlGroup(group).value_or(TargetControlGroup::GroupNotFound);
}

std::optional<TargetControlGroup> GroupNumberMap::GetTargetControlGroup(ControlGroupId group) const {
    auto const walked = std::clamp<std::int32_t>(groupCount, 0, MotionSlots);
    for (std::int32_t slot = 0; slot < walked; ++slot) {
        if (groups[static_cast<std::size_t>(slot)] == group) {
            return static_cast<TargetControlGroup>(slot);
        }
    }
    return std::nullopt;
}

} // namespace harvlink
