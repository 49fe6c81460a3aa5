#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "harvlink/StatusInfo.h"
#include "harvlink/harvlink_c.h"

namespace harvlink::InteropHelper {

/// A copy that the caller frees, up to the first zero byte of the text; null if memory ran out.
char* ConvertStringToChar8(std::string_view text);

/// A null pointer ends in the standard library's logic error.
std::string ConvertChar8ToString(char const* text);

/// All names, each followed by a line feed, as one text that the caller frees; null if memory ran out.
char* ConvertStringVectorToChar8(std::vector<std::string> const& names);

inline bool ToBool(int value) {
    return value != 0;
}

inline int ToInt32(bool value) {
    return value ? 1 : 0;
}

/// The plain form of a status, with a message that the caller frees, "OK" too.
IStatusInfo ToPlain(StatusInfo const& status);

} // namespace harvlink::InteropHelper
