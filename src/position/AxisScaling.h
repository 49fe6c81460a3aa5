#pragma once

#include <array>

#include "harvlink/PositionData.h"
#include "position/PositionMessages.h"

namespace harvlink {

/// How eight axes are scaled between doubles and the wire. A factor of 0 stands for an axis that is not scaled: it is
/// truncated toward the wire and never rounded.
struct AxisScaling {
    double firstThree = 0.0; ///< axes 0 to 2
    double others = 0.0; ///< axes 3 to 7

    std::array<double, 8> FromWire(WireAxes const& wire) const;
    WireAxes ToWire(std::array<double, 8> const& axes) const;
};

inline constexpr AxisScaling PulseScaling{0.0, 0.0};
inline constexpr AxisScaling CartesianScaling{1000.0, 10000.0};
inline constexpr AxisScaling JointAngleScaling{10000.0, 10000.0};
/// Of base-axis variables that are not in pulses: all eight axes count in thousandths, on purpose.
inline constexpr AxisScaling BaseAxisScaling{1000.0, 1000.0};

/// The scaling of the robot messages and of motion targets: pulses for Pulse, Cartesian for anything else.
constexpr AxisScaling const& ScalingOf(CoordinateType type) {
    return type == CoordinateType::Pulse ? PulseScaling : CartesianScaling;
}

} // namespace harvlink
