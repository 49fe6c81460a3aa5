#include "gateway/http/Request.h"

#include <charconv>

#include "words/text/Text.h"

namespace harvlink::gateway {

std::string DecodeUrl(std::string_view text, bool isQuery) {
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        unsigned char code = 0;
        char const* const digits = text.data() + i + 1;
        bool const isCode =
            text[i] == '%' && i + 2 < text.size() && std::from_chars(digits, digits + 2, code, 16).ptr == digits + 2;
        if (isCode) {
            decoded += static_cast<char>(code);
            i += 2;
        } else {
            decoded += isQuery && text[i] == '+' ? ' ' : text[i];
        }
    }
    return decoded;
}

std::map<std::string, std::string> ParseQuery(std::string_view text) {
    std::map<std::string, std::string> query;
    for (std::string_view const part : words::Split(text, '&')) {
        std::size_t const equals = std::min(part.find('='), part.size());
        if (equals > 0) {
            query[DecodeUrl(part.substr(0, equals), true)] =
                DecodeUrl(part.substr(std::min(equals + 1, part.size())), true);
        }
    }
    return query;
}

} // namespace harvlink::gateway
