#include "words/values/SafeName.h"

#include <algorithm>
#include <charconv>
#include <cstdint>

#include <fmt/format.h>

namespace harvlink::words {

namespace {

bool IsSafe(char byte) {
    constexpr std::string_view Marks = " !#()+,-.=@[]_{}~";
    bool const isLetter = (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z');
    return isLetter || (byte >= '0' && byte <= '9') || Marks.find(byte) != std::string_view::npos;
}

std::string EscapeUnsafe(std::string_view name) {
    std::string safe;
    for (char const byte : name) {
        // A leading dot would hide the file, or make the name that of a folder.
        bool const isHidden = safe.empty() && byte == '.';
        safe +=
            IsSafe(byte) && !isHidden ? std::string(1, byte) : fmt::format("%{:02X}", static_cast<unsigned char>(byte));
    }
    return safe;
}

/// FNV-1a: it only has to tell long names apart.
std::uint64_t Checksum(std::string_view text) {
    std::uint64_t sum = 0xCBF29CE484222325;
    for (char const byte : text) {
        sum = (sum ^ static_cast<unsigned char>(byte)) * 0x100000001B3;
    }
    return sum;
}

} // namespace

std::string SafeName(std::string_view name) {
    std::string safe = EscapeUnsafe(name);
    if (safe.size() > LongestSafeName) {
        std::string const checksum = fmt::format("~{:016x}", Checksum(name));
        safe.resize(LongestSafeName - checksum.size());
        safe += checksum;
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

} // namespace harvlink::words
