#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

#include "harvlink/PositionData.h"

namespace harvlink::soak {

/// A value as the bytes of its reply, in their order. So values of all kinds are compared in the same way.
using WireImage = std::vector<std::uint8_t>;

std::string ToHex(WireImage const& image);

template <typename Value>
void Append(WireImage& image, Value const& value) {
    static_assert(std::is_trivially_copyable_v<Value>);
    auto const* const bytes = reinterpret_cast<std::uint8_t const*>(&value);
    image.insert(image.end(), bytes, bytes + sizeof(Value));
}

template <typename Value>
WireImage ImageOf(Value const& value) {
    WireImage image;
    Append(image, value);
    return image;
}

template <typename Value>
Value ValueAt(WireImage const& image, std::size_t offset = 0) {
    Value value;
    std::memcpy(&value, image.data() + offset, sizeof(Value));
    return value;
}

/// The text in a field of `width` bytes.
void AppendText(WireImage& image, std::string const& text, std::size_t width);

/// A position as in the replies of the robot port, in the units of the controller.
WireImage ImageOfPosition(PositionData const& position);
PositionData PositionOf(WireImage const& image);

} // namespace harvlink::soak
