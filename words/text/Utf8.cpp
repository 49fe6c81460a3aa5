#include "words/text/Utf8.h"

#include <array>

namespace harvlink::words {

namespace {

/// What the first byte of a character says.
struct Lead {
    unsigned char mask; ///< of the bits that mark it
    unsigned char mark;
    std::size_t size; ///< of the character in bytes
    char32_t least; ///< a smaller code is an overlong form
};

constexpr std::array<Lead, 4> Leads{
    {{0x80, 0x00, 1, 0x0}, {0xE0, 0xC0, 2, 0x80}, {0xF0, 0xE0, 3, 0x800}, {0xF8, 0xF0, 4, 0x10000}}};

Utf8Character Parse(std::string_view text, Lead const& lead) {
    Utf8Character const invalid{.bytes = text.substr(0, 1)};
    if (text.size() < lead.size) {
        return invalid;
    }
    char32_t code = static_cast<unsigned char>(text[0]) & static_cast<unsigned char>(~lead.mask);
    for (std::size_t i = 1; i < lead.size; ++i) {
        auto const byte = static_cast<unsigned char>(text[i]);
        if ((byte & 0xC0U) != 0x80U) {
            return invalid;
        }
        code = (code << 6U) | (byte & 0x3FU);
    }
    bool const isSurrogate = code >= 0xD800 && code <= 0xDFFF;
    bool const isValid = code >= lead.least && code <= 0x10FFFF && !isSurrogate;
    return isValid ? Utf8Character{text.substr(0, lead.size), code, true} : invalid;
}

} // namespace

Utf8Character FirstUtf8Character(std::string_view text) {
    for (Lead const& lead : Leads) {
        if (!text.empty() && (static_cast<unsigned char>(text[0]) & lead.mask) == lead.mark) {
            return Parse(text, lead);
        }
    }
    return {.bytes = text.substr(0, 1)};
}

bool IsUtf8(std::string_view text) {
    bool valid = true;
    ForEachUtf8Character(text, [&](Utf8Character const& character) { valid &= character.isValid; });
    return valid;
}

} // namespace harvlink::words
