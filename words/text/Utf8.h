#pragma once

#include <cstddef>
#include <string_view>

namespace harvlink::words {

/// The first character of a text in UTF-8, or its first byte if no character begins there.
struct Utf8Character {
    std::string_view bytes; ///< a view of the text; empty at its end
    char32_t code = 0; ///< 0 if it is not valid
    bool isValid = false;
};

/// Overlong forms, surrogates and codes above U+10FFFF are not valid.
Utf8Character FirstUtf8Character(std::string_view text);

/// Calls `use` with one Utf8Character after the other.
template <typename Use>
void ForEachUtf8Character(std::string_view text, Use const& use) {
    while (!text.empty()) {
        Utf8Character const character = FirstUtf8Character(text);
        use(character);
        text.remove_prefix(character.bytes.size());
    }
}

/// Whether all of it is characters.
bool IsUtf8(std::string_view text);

} // namespace harvlink::words
