#pragma once

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <concepts>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "words/text/InputError.h"

namespace harvlink::words {

/// The text of a fixed field of a datagram without the zero bytes that fill it up.
std::string TrimField(std::string_view field);

double RoundToMilli(double value);

std::string_view TrimBlanks(std::string_view text);
std::string LowerCase(std::string_view text);
std::string UpperCase(std::string_view text);
std::vector<std::string_view> Split(std::string_view text, char separator);

/// Cuts "name=value" at its first equals sign.
std::pair<std::string, std::string> SplitAssignment(std::string_view text);

/// A number that takes up the whole text. Integers may be hexadecimal (0x1F) or binary (0b101).
template <typename Number>
Number ParseNumber(std::string_view text, std::string_view what) {
    if (text.empty()) {
        throw InputError(fmt::format("{} is missing", what));
    }
    Number number{};
    std::string_view digits = text;
    auto parse = [&](auto... format) {
        return std::from_chars(digits.data(), digits.data() + digits.size(), number, format...);
    };
    std::from_chars_result result{};
    if constexpr (std::integral<Number>) {
        std::string const prefix = LowerCase(text.substr(0, 2));
        int const base = prefix == "0x" ? 16 : prefix == "0b" ? 2 : 10;
        digits.remove_prefix(base == 10 ? 0 : 2);
        result = parse(base);
    } else {
        result = parse();
    }
    bool const whole = result.ptr == digits.data() + digits.size();
    if (result.ec == std::errc::result_out_of_range && whole) {
        using Limits = std::numeric_limits<Number>;
        throw InputError(
            std::integral<Number> && sizeof(Number) <= sizeof(std::int32_t)
                ? fmt::format("{} {} is out of range, from {} to {}", what, text, Limits::min(), Limits::max())
                : fmt::format("{} {} is out of range", what, text));
    }
    if (result.ec != std::errc{} || !whole) {
        bool const hasComma = std::floating_point<Number> && text.find(',') != std::string_view::npos;
        throw InputError(
            fmt::format("'{}' is not a valid {}{}", text, what, hasComma ? "; the decimal sign is a point" : ""));
    }
    if constexpr (std::floating_point<Number>) {
        if (!std::isfinite(number)) {
            throw InputError(fmt::format("'{}' is not a valid {}", text, what));
        }
    }
    return number;
}

template <typename Value>
struct Named {
    std::string_view name;
    Value value;
};

template <typename Value, std::size_t Count>
std::string JoinNames(std::array<Named<Value>, Count> const& names, std::string_view separator = ", ") {
    std::string joined;
    for (Named<Value> const& named : names) {
        joined += joined.empty() ? "" : separator;
        joined += named.name;
    }
    return joined;
}

/// As the type name of an argument that takes one of the names, see UseHelpFormat.
template <typename Value, std::size_t Count>
std::string Choices(std::array<Named<Value>, Count> const& names) {
    return JoinNames(names, "|");
}

/// The value with this name, in upper or lower case. `what` says in the message what the names are for.
template <typename Value, std::size_t Count>
Value ParseName(std::array<Named<Value>, Count> const& names, std::string_view text, std::string_view what) {
    std::string const wanted = LowerCase(text);
    auto const found =
        std::find_if(names.begin(), names.end(), [&](auto const& named) { return LowerCase(named.name) == wanted; });
    if (found == names.end()) {
        throw InputError(fmt::format("'{}' is not a {}; there are: {}", text, what, JoinNames(names)));
    }
    return found->value;
}

/// The name of a value, or its number if it has none.
template <typename Value, std::size_t Count>
std::string NameOf(std::array<Named<Value>, Count> const& names, Value value) {
    for (Named<Value> const& named : names) {
        if (named.value == value) {
            return std::string(named.name);
        }
    }
    return fmt::format("{}", static_cast<int>(value));
}

} // namespace harvlink::words
