#include "words/text/CharacterConverter.h"

#include <algorithm>

namespace harvlink::words {

std::string CharacterConverter::TakeCharacter(std::string_view& from) {
    for (std::size_t size = 1; size <= std::min(from.size(), LargestCharacter); ++size) {
        if (std::string converted = Convert(from.substr(0, size)); !converted.empty()) {
            from.remove_prefix(size);
            return converted;
        }
    }
    return {};
}

} // namespace harvlink::words
