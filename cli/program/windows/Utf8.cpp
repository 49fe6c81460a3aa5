#include "cli/program/windows/Utf8.h"

#include <windows.h>

namespace harvlink::cli {

std::string Utf8(std::wstring_view wide) {
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
