#pragma once

#include <string_view>

#include "harvlink/Fleet.h"

namespace harvlink::gateway {

inline constexpr char const* ItemHelp =
    "state, job, alarms, position R1 base, position R1 pulse axis 2, torque R1, position error R1, B5, B0..B9, "
    "signal 10010, signal 10010..10017, signal group 10010, register 3, register 3..7, software, time 1 R1, progress 0";

/// What one text of a list of items names, in upper or lower case. A row is one item with a count: "B0..B9" or "B000 x 10".
/// Throws InputError.
FleetItem ParseItem(std::string_view text);

} // namespace harvlink::gateway
