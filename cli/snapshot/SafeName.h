#pragma once

#include <string>
#include <string_view>

namespace harvlink::cli::snapshot {

/// A file name of a controller as one that every computer takes and that leads into no other folder: bytes other than
/// letters, digits, blanks and a few marks become "%" and two hexadecimal digits.
std::string SafeName(std::string_view name);

/// The name that SafeName made it of. A '%' that no two digits follow stays.
std::string OriginalName(std::string_view safeName);

} // namespace harvlink::cli::snapshot
