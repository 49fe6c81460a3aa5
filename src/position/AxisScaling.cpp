#include "position/AxisScaling.h"

#include <cstddef>

#include "wire/WireInteger.h"

namespace harvlink {

std::array<double, 8> AxisScaling::FromWire(WireAxes const& wire) const {
    std::array<double, 8> axes{};
    for (std::size_t i = 0; i < axes.size(); ++i) {
        double const factor = i < 3 ? firstThree : others;
        axes[i] = factor == 0.0 ? wire[i] : wire[i] / factor;
    }
    return axes;
}

WireAxes AxisScaling::ToWire(std::array<double, 8> const& axes) const {
    WireAxes wire{};
    for (std::size_t i = 0; i < axes.size(); ++i) {
        double const factor = i < 3 ? firstThree : others;
        wire[i] = factor == 0.0 ? TruncateToInt32(axes[i]) : ScaleToInt32(axes[i], factor);
    }
    return wire;
}

} // namespace harvlink
