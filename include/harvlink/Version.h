#pragma once

#include <string_view>

namespace harvlink {

/// The version of these headers. `OpenConnection` refuses to work with headers of any other version than its own, so
/// that a program never talks to a library with another record layout.
inline constexpr std::string_view HeaderVersion = "1.1.3";

} // namespace harvlink
