#pragma once

#include <cstdint>

namespace harvlink::simulator {

inline constexpr std::uint32_t Done = 0; ///< the payload of an answer to a command
inline constexpr std::uint8_t Written = 0; ///< the payload of an answer to a write

} // namespace harvlink::simulator
