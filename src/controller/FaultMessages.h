#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace harvlink::FaultMessages {

/// Reply to AlarmDataRead and AlarmHistoryRead.
struct AlarmDataMsg {
    std::uint32_t code = 0; ///< 0 for an empty place
    std::uint32_t subcode = 0;
    std::uint32_t subcodeType = 0; ///< not read
    std::array<char, 16> time{};
    std::array<char, 32> name{};
};
static_assert(sizeof(AlarmDataMsg) == 60);
static_assert(offsetof(AlarmDataMsg, subcode) == 4);
static_assert(offsetof(AlarmDataMsg, subcodeType) == 8);
static_assert(offsetof(AlarmDataMsg, time) == 12);
static_assert(offsetof(AlarmDataMsg, name) == 28);

} // namespace harvlink::FaultMessages
