#pragma once

#include <array>
#include <cstdint>

#include "harvlink/ControlGroupId.h"
#include "harvlink/ControllerVersion.h"

namespace harvlink::fleet {

/// What has to be known of a controller before its items can be read. Read again after each silence.
struct ControllerFacts {
    static constexpr std::size_t groupNumbers = 45;

    ControllerVersion generation = ControllerVersion::VersionUnknown;
    int rs22 = 1; ///< see VariableInstance
    std::array<std::uint8_t, groupNumbers> axes{}; ///< by ControlGroupId; 0 if not known
    std::array<char, 24> software{};
    std::array<char, 16> model{};

    std::uint8_t AxesOf(ControlGroupId group) const { return axes.at(static_cast<std::size_t>(group)); }
};

} // namespace harvlink::fleet
