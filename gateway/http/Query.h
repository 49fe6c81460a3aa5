#pragma once

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <limits>
#include <string>

#include <fmt/format.h>

#include "gateway/http/Request.h"
#include "words/text/InputError.h"

namespace harvlink::gateway {

/// A whole number of the query, `without` if it is not there. Throws InputError.
inline std::int64_t NumberOf(Request const& request, std::string const& name, std::int64_t without, std::int64_t least,
                             std::int64_t most) {
    auto const found = request.query.find(name);
    if (found == request.query.end() || found->second.empty()) {
        return without;
    }
    std::int64_t number = 0;
    std::string const& text = found->second;
    auto const result = std::from_chars(text.data(), text.data() + text.size(), number);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size() || number < least || number > most) {
        throw words::InputError(fmt::format("{} must be a whole number from {} to {}", name, least, most));
    }
    return number;
}

inline std::string TextOf(Request const& request, std::string const& name) {
    auto const found = request.query.find(name);
    return found == request.query.end() ? "" : found->second;
}

/// The latest time that is taken, the year 9999, in milliseconds.
inline constexpr std::int64_t LatestTime = 253'402'300'799'000;

} // namespace harvlink::gateway
