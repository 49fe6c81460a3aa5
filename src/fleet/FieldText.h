#pragma once

#include <array>
#include <string_view>

namespace harvlink::fleet {

/// The text in a field of the wire: what stands before its first zero byte.
template <std::size_t size>
std::string_view FieldText(std::array<char, size> const& field) {
    std::string_view const text(field.data(), field.size());
    return text.substr(0, text.find('\0'));
}

} // namespace harvlink::fleet
