#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

#include "recording/model/Records.h"

namespace harvlink::recording {

/// "2026-11-22T03:15:00.250000Z"
std::string FormatTime(Microseconds time);

/// The same without the characters that a file name can't have: "20261122T031500Z".
std::string FormatTimeForName(Microseconds time);

/// Reads "2026-11-22T03:15:00.25Z", with fewer parts too ("2026-11-22", "2026-11-22 03:15"), in UTC; "+90s" after `begin`, or
/// "-1m" before `end`. Throws InputError.
Microseconds ParseTime(std::string_view text, Microseconds begin, Microseconds end);

/// "100ms", "60s", "5m", "12h", "7d". Throws InputError.
std::chrono::microseconds ParseDuration(std::string_view text);

/// "500K", "200M", "2G" in powers of 1024, or bytes. Throws InputError.
std::uint64_t ParseSize(std::string_view text);

/// "1.5 GB" and so on, in the units of ParseSize.
std::string FormatSize(std::uint64_t bytes);

} // namespace harvlink::recording
