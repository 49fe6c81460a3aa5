#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "harvlink/ControlGroupId.h"
#include "wire/GroupAddress.h"

namespace harvlink::simulator {

struct ControlGroup {
    ControlGroupId id{};
    std::uint32_t axes = 0; ///< 1 to 8
};

/// The control groups that the controller has.
class ControlGroups {
public:
    static constexpr std::size_t MotionSlots = 4;

    explicit ControlGroups(std::vector<ControlGroup> groups) : groups_(std::move(groups)) {}

    std::vector<ControlGroup> const& All() const { return groups_; }

    /// Null if the controller has no such group.
    ControlGroup const* Find(ControlGroupId id) const;

    /// The same for a group as the extended commands name it.
    ControlGroup const* Find(GroupAddress const& address) const;

    /// The group of a motion slot, from 0; null for an empty one.
    ControlGroup const* Slot(std::size_t slot) const {
        return slot < MotionSlots && slot < groups_.size() ? &groups_[slot] : nullptr;
    }

    /// The controller's own numbering has no gaps: robots 1 to 8, bases 9 to 16, stations from 17.
    static std::uint32_t ContinuousNumber(ControlGroupId id);

    /// Reads a group such as "R1", "B2:3" or "S12:1". The number of axes follows the colon; without it a robot has 6, a
    /// base 1 and a station 2. Nothing if the text is not a group with 1 to 8 axes.
    static std::optional<ControlGroup> FromText(std::string_view text);

private:
    std::vector<ControlGroup> groups_;
};

} // namespace harvlink::simulator
