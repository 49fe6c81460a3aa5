#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <ctime>
#include <string>
#include <string_view>

namespace harvlink::simulator {

/// Copies text into a character field of a wire record. Longer text is cut, shorter text is filled up with zero bytes.
/// A full field has no terminator.
template <std::size_t Size>
void FillText(std::array<char, Size>& field, std::string_view text) {
    auto const end = std::copy_n(text.begin(), std::min(text.size(), Size), field.begin());
    std::fill(end, field.end(), '\0');
}

/// The text of a character field up to its first zero byte.
template <std::size_t Size>
std::string_view FieldText(std::array<char, Size> const& field) {
    return {field.data(), static_cast<std::size_t>(std::find(field.begin(), field.end(), '\0') - field.begin())};
}

/// A time stamp in the controller's format, "2024/03/11 08:15": local time, 16 characters.
std::string CalendarText(std::time_t when);

} // namespace harvlink::simulator
