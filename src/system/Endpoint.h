#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace harvlink {

/// An IPv4 address and a UDP port, both in the byte order of this computer. Zero is none.
struct Endpoint {
    std::uint32_t address = 0;
    std::uint16_t port = 0;

    bool operator==(Endpoint const&) const = default;
};

/// Reads an IPv4 address in dotted form, which may end at a zero byte; nothing if the text is anything else.
std::optional<std::uint32_t> ParseAddress(std::string const& text);

std::string AddressText(std::uint32_t address);

} // namespace harvlink
