#include <algorithm>
#include <cmath>
#include <iostream>

#include "Demo.h"

namespace demo {
namespace {

using harvlink::ControlGroupId;
using harvlink::KinematicConversions;

/// Pulses. The protocol rounds to 0.001 mm and 0.0001 degrees, which is less than this.
constexpr double tolerance = 3.0;

} // namespace

void ConvertPositions(harvlink::QuorvanController& robot) {
    Title("Kinematics");
    harvlink::PositionData pulses;
    pulses.coordinateType = harvlink::CoordinateType::Pulse;
    pulses.axes = {30000, 20000, -10000, 5000, -100000, 8000};

    harvlink::PositionData cartesian;
    auto const status = robot.Kinematics->ConvertPosition(ControlGroupId::R1, pulses,
                                                          KinematicConversions::PulseToCartesianPos, cartesian);
    if (!IsSupported(status, "position conversion")) {
        return;
    }
    Require(status, "convert pulses to a Cartesian position");
    std::cout << cartesian << "\n\n";

    harvlink::PositionData back;
    Require(robot.Kinematics->ConvertPositionFromCartesian(ControlGroupId::R1, cartesian,
                                                           KinematicConversions::CartesianPosToPulse,
                                                           harvlink::KinematicType::KinematicFigure, {}, back),
            "convert the Cartesian position to pulses");
    double difference = 0.0;
    for (std::size_t axis = 0; axis < pulses.axes.size(); ++axis) {
        difference = std::max(difference, std::abs(back.axes[axis] - pulses.axes[axis]));
    }
    std::cout << back << "\n\nlargest difference after converting there and back: " << difference << " pulses\n";
    Require(difference <= tolerance, "the position came back as another");
}

} // namespace demo
