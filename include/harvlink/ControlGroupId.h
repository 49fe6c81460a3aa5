#pragma once

#include <cstdint>
#include <iosfwd>

#include "harvlink/Export.h"

namespace harvlink {

/// A control group: a robot (R1 to R8), a base axis that carries a robot (B1 to B8) or a station (S1 to S24).
/// The number is n for a robot, n + 10 for a base and n + 20 for a station.
enum class ControlGroupId : std::int32_t {
    R1 = 1,
    R2 = 2,
    R3 = 3,
    R4 = 4,
    R5 = 5,
    R6 = 6,
    R7 = 7,
    R8 = 8,
    B1 = 11,
    B2 = 12,
    B3 = 13,
    B4 = 14,
    B5 = 15,
    B6 = 16,
    B7 = 17,
    B8 = 18,
    S1 = 21,
    S2 = 22,
    S3 = 23,
    S4 = 24,
    S5 = 25,
    S6 = 26,
    S7 = 27,
    S8 = 28,
    S9 = 29,
    S10 = 30,
    S11 = 31,
    S12 = 32,
    S13 = 33,
    S14 = 34,
    S15 = 35,
    S16 = 36,
    S17 = 37,
    S18 = 38,
    S19 = 39,
    S20 = 40,
    S21 = 41,
    S22 = 42,
    S23 = 43,
    S24 = 44,
};

/// Writes the group's name, such as "R1" or "S12"; nothing for a number above 44.
HARVLINK_EXPORT std::ostream& operator<<(std::ostream& stream, ControlGroupId const& group);

} // namespace harvlink
