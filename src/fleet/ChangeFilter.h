#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "fleet/ControllerRecord.h"
#include "fleet/Stamp.h"

namespace harvlink::fleet {

/// A stamp with its record.
struct Stamped {
    Stamp stamp{};
    std::span<std::byte const> record{};
};

/// Decides which values of the groups with `onChange` become samples.
class ChangeFilter {
public:
    explicit ChangeFilter(ControllerRecord const& watched);

    /// Whether the value is to be reported. If so, it counts as reported.
    bool Passes(std::uint32_t item, Stamped const& before, Stamped const& now);

private:
    struct Reported {
        std::array<double, 8> numbers{};
        bool isSet = false;
    };

    bool HasChanged(std::uint32_t item, Stamped const& before, Stamped const& now);
    bool LeavesDeadBand(std::uint32_t item, Stamped const& now);
    bool HasBeenSilentForLong(std::uint32_t item, std::int64_t time) const;

    ControllerRecord const& controller;
    std::vector<Reported> reported; ///< beside the dead bands of the controller
    std::vector<std::int64_t> reportedAt; ///< by item; empty if no group has a longest silence
};

} // namespace harvlink::fleet
