#include "support/WireBytes.h"

#include <algorithm>
#include <iomanip>
#include <sstream>

namespace harvlink::test {
namespace {

std::string Hex(Bytes const& bytes, std::size_t from) {
    std::ostringstream text;
    text << std::hex << std::setfill('0');
    for (std::size_t i = from; i < std::min(bytes.size(), from + 16); ++i) {
        text << ' ' << std::setw(2) << unsigned{bytes[i]};
    }
    return text.str();
}

Bytes Request(unsigned division, unsigned ack, std::uint32_t block, Bytes const& subHeader, Bytes const& payload) {
    return Text("TROZ") + U16(32) + U16(static_cast<std::int64_t>(payload.size())) + U8(3) + U8(division) + U8(ack) +
           U8(0) + U32(block) + Text("99999999") + subHeader + payload;
}

} // namespace

Bytes Little(std::int64_t value, int width) {
    Bytes bytes;
    for (int i = 0; i < width; ++i) {
        bytes.push_back(static_cast<std::uint8_t>(static_cast<std::uint64_t>(value) >> (8 * i)));
    }
    return bytes;
}

Bytes Words(std::vector<std::int64_t> const& values) {
    Bytes bytes;
    for (auto const value : values) {
        bytes = std::move(bytes) + U32(value);
    }
    return bytes;
}

Bytes Text(std::string_view text, std::size_t width) {
    Bytes bytes(text.begin(), text.end());
    bytes.resize(width == 0 ? text.size() : width);
    return bytes;
}

Bytes operator+(Bytes left, Bytes const& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

Bytes RobotRequest(unsigned command, unsigned instance, unsigned attribute, unsigned service, Bytes const& payload) {
    return Request(1, 0, 0, U16(command) + U16(instance) + U8(attribute) + U8(service) + U16(0), payload);
}

Bytes FileRequest(unsigned service, Bytes const& payload, unsigned ack, std::uint32_t block) {
    return Request(2, ack, block, U32(0) + U8(0) + U8(service) + U16(0), payload);
}

testing::AssertionResult SameBytes(Bytes const& expected, Bytes const& actual) {
    if (expected == actual) {
        return testing::AssertionSuccess();
    }
    auto const first = std::ranges::mismatch(expected, actual).in1 - expected.begin();
    auto const row = static_cast<std::size_t>(first) / 16 * 16;
    return testing::AssertionFailure() << "differ at byte " << first << " (lengths " << expected.size() << " and "
                                       << actual.size() << ")\nfrom byte " << row << "\nexpected:" << Hex(expected, row)
                                       << "\nactual:  " << Hex(actual, row);
}

testing::AssertionResult SameRequest(Bytes const& expected, Bytes const& actual) {
    Bytes masked = expected;
    if (masked.size() > idOffset && actual.size() > idOffset) {
        masked[idOffset] = actual[idOffset];
    }
    return SameBytes(masked, actual);
}

} // namespace harvlink::test
