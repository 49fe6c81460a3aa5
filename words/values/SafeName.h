#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace harvlink::words {

/// The name under which a file of a controller is stored here. It is valid on every computer and can't lead into another
/// folder: bytes other than letters, digits, blanks and a few marks become "%" and two hexadecimal digits.
std::string SafeName(std::string_view name);

/// The longest name that SafeName returns, in bytes. A longer one ends in a checksum, and can't be turned back.
inline constexpr std::size_t LongestSafeName = 200;

/// The name from which SafeName made it. A '%' without two digits after it stays.
std::string OriginalName(std::string_view safeName);

} // namespace harvlink::words
