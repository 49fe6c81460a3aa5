#include "cli/doctor/ProbeDatagrams.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

#include "cli/output/Words.h"
#include "words/text/Text.h"

namespace harvlink::cli {

namespace {

constexpr std::string_view Signature = "TROZ";
constexpr std::size_t HeaderSize = 32;

ProbeDatagram Request(std::uint8_t division, std::uint8_t id, std::string_view payload,
                      std::array<std::uint8_t, 6> const& tail) {
    ProbeDatagram bytes(HeaderSize);
    auto const put = [&](std::size_t offset, std::string_view text) {
        std::ranges::transform(text, bytes.begin() + static_cast<std::ptrdiff_t>(offset),
                               [](char c) { return static_cast<std::byte>(c); });
    };
    put(0, Signature);
    bytes[4] = std::byte{HeaderSize};
    bytes[6] = static_cast<std::byte>(payload.size());
    bytes[8] = std::byte{3};
    bytes[9] = std::byte{division};
    bytes[11] = std::byte{id};
    put(16, "99999999");
    std::memcpy(bytes.data() + 24, tail.data(), tail.size());
    bytes.resize(HeaderSize + payload.size());
    put(HeaderSize, payload);
    return bytes;
}

std::uint8_t Byte(std::span<std::byte const> datagram, std::size_t offset) {
    return std::to_integer<std::uint8_t>(datagram[offset]);
}

std::uint16_t Word(std::span<std::byte const> datagram, std::size_t offset) {
    return static_cast<std::uint16_t>(Byte(datagram, offset) | Byte(datagram, offset + 1) << 8);
}

} // namespace

// Command, instance, attribute and service of each.
ProbeDatagram SystemInformation(std::uint8_t id) {
    return Request(1, id, {}, {137, 0, 11, 0, 0, 1});
}

ProbeDatagram ControllerState(std::uint8_t id) {
    return Request(1, id, {}, {114, 0, 1, 0, 0, 1});
}

ProbeDatagram MissingFile(std::uint8_t id) {
    return Request(2, id, "HARVLINK.PROBE", {0, 0, 0, 0, 0, 22});
}

bool HasSignature(std::span<std::byte const> datagram) {
    return datagram.size() >= Signature.size() && std::memcmp(datagram.data(), Signature.data(), Signature.size()) == 0;
}

bool IsWhole(std::span<std::byte const> datagram) {
    return datagram.size() >= HeaderSize && HasSignature(datagram) && Word(datagram, 4) == HeaderSize &&
           datagram.size() == HeaderSize + Word(datagram, 6);
}

std::uint8_t IdOf(std::span<std::byte const> datagram) {
    return Byte(datagram, 11);
}

int CodeOf(std::span<std::byte const> datagram) {
    if (Byte(datagram, 25) == 0 && Byte(datagram, 26) == 0) {
        return 0;
    }
    int const added = Word(datagram, 28);
    return added != 0 ? added : Byte(datagram, 25);
}

bool IsConsistent(std::span<std::byte const> datagram, std::size_t leastPayload) {
    return (CodeOf(datagram) == 0) == (datagram.size() >= HeaderSize + leastPayload);
}

std::string TextOf(std::span<std::byte const> datagram, std::size_t offset, std::size_t size) {
    auto const payload = datagram.subspan(HeaderSize);
    if (offset >= payload.size()) {
        return {};
    }
    auto const field = payload.subspan(offset, std::min(size, payload.size() - offset));
    return TrimField({reinterpret_cast<char const*>(field.data()), field.size()});
}

} // namespace harvlink::cli
