#pragma once

#include <string>
#include <string_view>

namespace harvlink::words {

/// Converts one character after the other, by the tables of the system. One of the two encodings is UTF-8.
class CharacterConverter {
public:
    /// Throws std::runtime_error if the system has no table.
    CharacterConverter(char const* from, char const* to);
    CharacterConverter(CharacterConverter const&) = delete;
    CharacterConverter& operator=(CharacterConverter const&) = delete;
    ~CharacterConverter();

    /// Converts the first character and takes it off `from`; empty if none begins there.
    std::string TakeCharacter(std::string_view& from);

private:
    static constexpr std::size_t LargestCharacter = 4; ///< in bytes, in all of the encodings and in UTF-8

    /// Converts one whole character; empty for anything else.
    std::string Convert(std::string_view bytes);

#if defined(_WIN32)
    unsigned from_ = 0;
    unsigned to_ = 0;
#else
    void* handle_ = nullptr;
#endif
};

} // namespace harvlink::words
