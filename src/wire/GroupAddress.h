#pragma once

#include <cstddef>
#include <cstdint>

#include "harvlink/ControlGroupId.h"

namespace harvlink {

/// How the extended commands name a control group.
struct GroupAddress {
    std::uint32_t kind = 0; ///< 0 robot, 1 base, 2 station
    std::uint32_t index = 0;

    constexpr GroupAddress() = default;

    /// Robots and bases count from 0 on the wire, stations from 1; the difference is the controller's.
    constexpr explicit GroupAddress(ControlGroupId group) {
        auto const number = static_cast<std::uint32_t>(group);
        if (group < ControlGroupId::B1) {
            *this = {0, number - 1};
        } else if (group < ControlGroupId::S1) {
            *this = {1, number - 11};
        } else {
            *this = {2, number - 20};
        }
    }

private:
    constexpr GroupAddress(std::uint32_t groupKind, std::uint32_t groupIndex) : kind(groupKind), index(groupIndex) {}
};
static_assert(sizeof(GroupAddress) == 8);
static_assert(offsetof(GroupAddress, index) == 4);

} // namespace harvlink
