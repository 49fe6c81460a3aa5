#pragma once

#include <string>
#include <string_view>

#include <windows.h>

namespace harvlink::cli {

/// Names of files may hold invalid UTF-16. Each invalid unit becomes the replacement character U+FFFD.
inline std::string Utf8(std::wstring_view wide) {
    auto const convert = [wide](char* to, int size) {
        return ::WideCharToMultiByte(CP_UTF8, 0, wide.data(), static_cast<int>(wide.size()), to, size, nullptr,
                                     nullptr);
    };
    std::string text(static_cast<std::size_t>(wide.empty() ? 0 : convert(nullptr, 0)), '\0');
    if (!text.empty()) {
        convert(text.data(), static_cast<int>(text.size()));
    }
    return text;
}

} // namespace harvlink::cli
