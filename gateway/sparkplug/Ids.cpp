#include "gateway/sparkplug/Ids.h"

#include <fmt/format.h>

#include "words/text/Utf8.h"

namespace harvlink::gateway::sparkplug {

namespace {

constexpr std::size_t LongestId = 1024; ///< bytes; a topic has at most 65,535

bool IsControl(char32_t code) {
    return code < 0x20 || (code >= 0x7F && code < 0xA0);
}

bool IsNonCharacter(char32_t code) {
    return (code & 0xFFFE) == 0xFFFE || (code >= 0xFDD0 && code <= 0xFDEF);
}

std::string ProblemOfCharacter(words::Utf8Character const& character) {
    if (!character.isValid) {
        return "it is not valid UTF-8";
    }
    if (character.code == U'+' || character.code == U'/' || character.code == U'#') {
        return fmt::format("it contains '{}'", character.bytes);
    }
    if (IsControl(character.code) || IsNonCharacter(character.code)) {
        return fmt::format("it contains the character U+{:04X}", static_cast<unsigned>(character.code));
    }
    return {};
}

} // namespace

std::string ProblemOfId(std::string_view id) {
    if (id.empty()) {
        return "it is empty";
    }
    if (id.size() > LongestId) {
        return fmt::format("it is longer than {} bytes", LongestId);
    }
    std::string problem;
    words::ForEachUtf8Character(id, [&](words::Utf8Character const& character) {
        if (problem.empty()) {
            problem = ProblemOfCharacter(character);
        }
    });
    return problem;
}

std::string DeviceIdOf(std::string_view controllerName) {
    std::string id;
    words::ForEachUtf8Character(controllerName, [&](words::Utf8Character const& character) {
        if (ProblemOfCharacter(character).empty()) {
            id += character.bytes;
            return;
        }
        for (char const byte : character.bytes) {
            id += fmt::format("%{:02X}", static_cast<unsigned char>(byte));
        }
    });
    return id;
}

std::string RepairedUtf8(std::string_view text) {
    std::string repaired;
    repaired.reserve(text.size());
    words::ForEachUtf8Character(text, [&](words::Utf8Character const& character) {
        repaired += character.isValid ? character.bytes : std::string_view("\xEF\xBF\xBD");
    });
    return repaired;
}

} // namespace harvlink::gateway::sparkplug
