#include "words/text/Text.h"

#include <cctype>

namespace harvlink::words {

std::string TrimField(std::string_view field) {
    std::size_t const last = field.find_last_not_of('\0');
    return std::string(field.substr(0, last == std::string_view::npos ? 0 : last + 1));
}

double RoundToMilli(double value) {
    return std::round(value * 1000.0) / 1000.0;
}

std::string_view TrimBlanks(std::string_view text) {
    constexpr std::string_view Blanks = " \t\r";
    std::size_t const first = text.find_first_not_of(Blanks);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(Blanks) - first + 1);
}

std::string LowerCase(std::string_view text) {
    std::string lower(text);
    for (char& character : lower) {
        character = static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
    }
    return lower;
}

std::string UpperCase(std::string_view text) {
    std::string upper(text);
    for (char& character : upper) {
        character = static_cast<char>(std::toupper(static_cast<unsigned char>(character)));
    }
    return upper;
}

std::vector<std::string_view> Split(std::string_view text, char separator) {
    std::vector<std::string_view> pieces;
    while (true) {
        std::size_t const end = text.find(separator);
        pieces.push_back(text.substr(0, end));
        if (end == std::string_view::npos) {
            return pieces;
        }
        text.remove_prefix(end + 1);
    }
}

std::pair<std::string, std::string> SplitAssignment(std::string_view text) {
    std::size_t const equals = text.find('=');
    if (equals == std::string_view::npos) {
        throw InputError(fmt::format("'{0}' has no value; write {0}=VALUE, without blanks", text));
    }
    return {std::string(text.substr(0, equals)), std::string(text.substr(equals + 1))};
}

} // namespace harvlink::words
