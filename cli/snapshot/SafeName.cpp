#include "cli/snapshot/SafeName.h"

#include <algorithm>
#include <charconv>

#include <fmt/format.h>

namespace harvlink::cli::snapshot {

namespace {

bool IsSafe(char byte) {
    constexpr std::string_view Marks = " !#()+,-.=@[]_{}~";
    bool const isLetter = (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z');
    return isLetter || (byte >= '0' && byte <= '9') || Marks.find(byte) != std::string_view::npos;
}

} // namespace

std::string SafeName(std::string_view name) {
    std::string safe;
    for (char const byte : name) {
        // A leading dot would hide the file, or make the name that of a folder.
        bool const isHidden = safe.empty() && byte == '.';
        safe +=
            IsSafe(byte) && !isHidden ? std::string(1, byte) : fmt::format("%{:02X}", static_cast<unsigned char>(byte));
    }
    return safe;
}

std::string OriginalName(std::string_view safeName) {
    std::string name;
    for (std::size_t i = 0; i < safeName.size(); ++i) {
        unsigned char byte = 0;
        char const* const digits = safeName.data() + i + 1;
        if (safeName[i] == '%' && i + 2 < safeName.size() &&
            std::from_chars(digits, digits + 2, byte, 16).ptr == digits + 2) {
            name += static_cast<char>(byte);
            i += 2;
        } else {
            name += safeName[i];
        }
    }
    return name;
}

} // namespace harvlink::cli::snapshot
