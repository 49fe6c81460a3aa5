#pragma once

#include <cstdint>
#include <map>
#include <tuple>

#include "harvlink/ControllerStateInterface.h"
#include "simulator/model/ControlGroups.h"
#include "simulator/protocol/Refusal.h"

namespace harvlink::simulator {

/// System parameters. Every number of a family exists and is 0 until it is set.
class Parameters {
public:
    Parameters(ControlGroups const& groups, int rs022);

    /// Whether each group has its own parameters of this family.
    static bool BelongsToGroup(std::uint32_t type);

    /// `group` is a number of the continuous kind, for the families that belong to a group; 0 or 1 for the others.
    Refusal Read(std::uint32_t type, std::uint32_t group, std::uint32_t number, std::int32_t& value) const;

    /// Sets a parameter of a family other than MotionSlot. Refuses like Read.
    Refusal Set(SystemParameterType type, std::uint32_t group, std::uint32_t number, std::int32_t value);

    int Rs022() const;

private:
    using Key = std::tuple<std::uint32_t, std::uint32_t, std::uint32_t>;

    Refusal Check(std::uint32_t type, std::uint32_t group, std::uint32_t number) const;
    std::int32_t MotionSlot(std::uint32_t number) const;

    ControlGroups const& groups_;
    std::map<Key, std::int32_t> values_;
};

} // namespace harvlink::simulator
