#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace harvlink::cli::snapshot {

/// A line that only one of two texts has.
struct LineChange {
    char sign = '-'; ///< '-' only in the older text, '+' only in the newer
    std::size_t line = 0; ///< in its text, from 1
    std::string text; ///< without its end

    bool operator==(LineChange const&) const = default;
};

/// The fewest lines whose removal and addition turn one text into the other, in order; for long texts that have almost nothing
/// in common it may be more than the fewest. Empty for texts with zero bytes.
std::vector<LineChange> LineDifference(std::string_view before, std::string_view after);

} // namespace harvlink::cli::snapshot
