#pragma once

#include <cstddef>
#include <cstdint>

namespace harvlink {

/// Request of SystemParameterRead; the reply is a signed 32-bit value.
struct SytemParamMsgOut {
    std::uint32_t type = 0;
    std::uint32_t group = 0;
    std::uint32_t number = 0;
};
static_assert(sizeof(SytemParamMsgOut) == 12);
static_assert(offsetof(SytemParamMsgOut, group) == 4);
static_assert(offsetof(SytemParamMsgOut, number) == 8);

} // namespace harvlink
