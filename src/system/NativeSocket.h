#pragma once

#include <cstdint>

namespace harvlink {

/// What the system knows a socket by. Its own headers stay in the sources: those of Windows define common words as macros.
#if defined(_WIN32)
using NativeSocket = std::uintptr_t;
#else
using NativeSocket = int;
#endif

inline constexpr NativeSocket NoSocket = static_cast<NativeSocket>(-1);

} // namespace harvlink
