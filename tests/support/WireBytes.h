#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

/// @file
/// Datagrams, written byte by byte. They do not use the records of the library, so that they detect mistakes there.

namespace harvlink::test {

using Bytes = std::vector<std::uint8_t>;

/// `width` bytes of `value`, lowest first; negative values as two's complement.
Bytes Little(std::int64_t value, int width);
inline Bytes U8(std::int64_t value) {
    return Little(value, 1);
}
inline Bytes U16(std::int64_t value) {
    return Little(value, 2);
}
inline Bytes U32(std::int64_t value) {
    return Little(value, 4);
}
/// Several 32-bit words.
Bytes Words(std::vector<std::int64_t> const& values);
/// The text, filled up with zero bytes or cut to `width`; with its own length if `width` is 0.
Bytes Text(std::string_view text, std::size_t width = 0);
Bytes operator+(Bytes left, Bytes const& right);

inline constexpr std::size_t idOffset = 11;

/// Requests, with id 0.
Bytes RobotRequest(unsigned command, unsigned instance, unsigned attribute, unsigned service,
                   Bytes const& payload = {});
Bytes FileRequest(unsigned service, Bytes const& payload = {}, unsigned ack = 0, std::uint32_t block = 0);

/// Whether two datagrams are equal, apart from the id. The message shows where they differ.
testing::AssertionResult SameRequest(Bytes const& expected, Bytes const& actual);
testing::AssertionResult SameBytes(Bytes const& expected, Bytes const& actual);

} // namespace harvlink::test
