#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace harvlink::words {

/// The name that is meant by a mistyped word, for the end of a message: "; is status meant?". If none is near, all of them if
/// they are few: "; there are: get, set". Else empty.
std::string Suggestion(std::string_view word, std::vector<std::string> const& names);

} // namespace harvlink::words
