#include "simulator/model/JobName.h"

#include <algorithm>

#include "wire/Packets.h"

namespace harvlink::simulator {

namespace {

constexpr bool IsLetterOrDigit(char character) {
    return (character >= 'A' && character <= 'Z') || (character >= '0' && character <= '9');
}

constexpr bool IsNameCharacter(char character) {
    return IsLetterOrDigit(character) || std::string_view("-_#$.+&%").find(character) != std::string_view::npos;
}

constexpr char Upper(char character) {
    return character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A') : character;
}

} // namespace

std::string UpperCase(std::string_view text) {
    std::string result(text);
    std::ranges::transform(result, result.begin(), Upper);
    return result;
}

bool IsJobName(std::string_view text) {
    return !text.empty() && text.size() <= FileNameSize && text.front() != '.' &&
           std::ranges::all_of(text, IsNameCharacter);
}

} // namespace harvlink::simulator
