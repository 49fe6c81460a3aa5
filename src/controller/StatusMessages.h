#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "harvlink/ControllerStateInterface.h"

namespace harvlink {

/// Reply to StatusRead; of each word the low 8 bits are read.
struct StatusInformationReturnData {
    std::uint32_t first = 0; ///< bits 0, 1 cycle mode; 3 running; 6, 7 control mode
    std::uint32_t second = 0; ///< bits 1 to 3 hold; 4 alarm; 5 error; 6 servo power
};
static_assert(sizeof(StatusInformationReturnData) == 8);
static_assert(offsetof(StatusInformationReturnData, second) == 4);

/// Reply to StatusRead of the first attribute alone.
struct CheckControlModeReturnData {
    std::uint32_t first = 0; ///< bit 7: remote mode
};
static_assert(sizeof(CheckControlModeReturnData) == 4);

/// Reply to OperatingTimeRead.
struct TimeReturnMsg {
    std::array<char, 16> startTime{}; ///< "%Y/%m/%d %H:%M", the controller's local time
    std::array<char, 12> elapsedTime{}; ///< hours:minutes'seconds

    /// Throws std::invalid_argument or std::out_of_range if the elapsed time is not readable.
    operator TimeData() const; // NOLINT(google-explicit-constructor): the wire form of a time is one
};
static_assert(sizeof(TimeReturnMsg) == 28);
static_assert(offsetof(TimeReturnMsg, elapsedTime) == 16);

} // namespace harvlink
