#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

namespace harvlink {

/// The one place where a double becomes a wire integer: truncated toward zero. Defined for every input: what does not fit
/// 32 bits, NaN included, gives the most negative value.
inline std::int32_t TruncateToInt32(double value) {
    if (value > -2147483649.0 && value < 2147483648.0) {
        return static_cast<std::int32_t>(value);
    }
    return std::numeric_limits<std::int32_t>::min();
}

/// Scales and rounds to the nearest integer, halves away from zero.
inline std::int32_t ScaleToInt32(double value, double factor) {
    return TruncateToInt32(std::round(value * factor));
}

} // namespace harvlink
