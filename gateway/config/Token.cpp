#include "gateway/config/Token.h"

#include <fstream>

#include <fmt/format.h>

#include "words/text/InputError.h"
#include "words/text/Text.h"

namespace harvlink::gateway {

std::string ReadToken(std::filesystem::path const& file) {
    constexpr std::size_t Shortest = 16;
    std::ifstream stream(file);
    std::string line;
    std::getline(stream, line);
    std::string token(words::TrimBlanks(line));
    if (token.size() < Shortest) {
        throw words::InputError(
            fmt::format("{}: its first line must be a token of at least {} characters", file.string(), Shortest));
    }
    return token;
}

} // namespace harvlink::gateway
