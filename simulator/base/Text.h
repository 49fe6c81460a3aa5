#pragma once

#include <algorithm>
#include <string_view>

namespace harvlink::simulator {

/// Without blanks and tabs at both ends.
inline std::string_view TrimBlanks(std::string_view text) {
    constexpr std::string_view Blanks = " \t";
    text.remove_prefix(std::min(text.find_first_not_of(Blanks), text.size()));
    return text.substr(0, text.find_last_not_of(Blanks) + 1);
}

} // namespace harvlink::simulator
