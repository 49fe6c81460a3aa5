#include "binding/InteropHelper.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

namespace harvlink::InteropHelper {

char* ConvertStringToChar8(std::string_view text) {
    std::string_view const copied = text.substr(0, text.find('\0'));
    // The room is that of the whole text, so that its size does not depend on what the bytes are.
    auto* const copy = static_cast<char*>(std::malloc(text.size() + 1));
    if (copy != nullptr) {
        *std::copy(copied.begin(), copied.end(), copy) = '\0';
    }
    return copy;
}

std::string ConvertChar8ToString(char const* text) {
    if (text == nullptr) {
        throw std::logic_error("a text is null");
    }
    return text;
}

char* ConvertStringVectorToChar8(std::vector<std::string> const& names) {
    std::size_t size = 0;
    for (std::string const& name : names) {
        size += name.size() + 1;
    }
    auto* const joined = static_cast<char*>(std::malloc(size + 1));
    if (joined == nullptr) {
        return nullptr;
    }
    char* end = joined;
    for (std::string const& name : names) {
        end = std::ranges::copy(name, end).out;
        *end++ = '\n';
    }
    *end = '\0';
    return joined;
}

IStatusInfo ToPlain(StatusInfo const& status) {
    return {status.StatusCode, ConvertStringToChar8(status.Message)};
}

} // namespace harvlink::InteropHelper
