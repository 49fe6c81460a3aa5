#pragma once

#include <filesystem>
#include <string>

namespace harvlink::words {

/// Paths are UTF-8 in all texts of ours. On Windows a plain text would be one of the code page, which lacks most letters.
inline std::filesystem::path PathOf(std::string const& text) {
    return std::u8string(text.begin(), text.end());
}

inline std::string TextOf(std::filesystem::path const& path) {
    std::u8string const text = path.u8string();
    return {text.begin(), text.end()};
}

/// What lies beside a file under its name and an ending more.
inline std::filesystem::path Beside(std::filesystem::path file, char const* ending) {
    return file += ending;
}

} // namespace harvlink::words
