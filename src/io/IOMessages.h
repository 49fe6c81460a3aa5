#pragma once

#include <cstddef>
#include <cstdint>

namespace harvlink {

/// Request of UAPIWriteIO: one signal.
struct UAPIIoData {
    std::uint32_t address = 0;
    std::uint32_t value = 0; ///< 0 or 1
};
static_assert(sizeof(UAPIIoData) == 8);
static_assert(offsetof(UAPIIoData, value) == 4);

} // namespace harvlink
