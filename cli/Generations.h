#pragma once

#include <array>
#include <string_view>

namespace harvlink::cli {

/// The controllers that the library knows, by the first letters of their software version. The oldest first.
inline constexpr std::array<std::string_view, 6> Generations{"DS", "DN", "FS", "YA", "YB", "YN"};

} // namespace harvlink::cli
