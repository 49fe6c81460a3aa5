#pragma once

#include <cstdint>
#include <string>

#include "harvlink/ControlGroupId.h"

namespace harvlink {

/// One entry of the list of groups that the controller has.
struct AttachedControlGroup {
    AttachedControlGroup(ControlGroupId id, std::uint32_t numberOfAxes) : Id(id), NumberOfAxes(numberOfAxes) {}

    /// From the text form of a group; the id is 0 if the first letter names no kind of group.
    explicit AttachedControlGroup(std::string const& text);

    ControlGroupId Id{};
    std::uint32_t NumberOfAxes = 0; ///< -1 as unsigned if the controller did not answer
};

} // namespace harvlink
