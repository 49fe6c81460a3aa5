#pragma once

#include "simulator/arm/ArmGeometry.h"
#include "simulator/arm/Frame.h"

namespace harvlink::simulator {

/// The flange in robot coordinates.
Frame FlangeOf(ArmGeometry const& arm, ArmAngles const& angles);

/// Orientation of the flange in the hand when R, B and T are 0.
Rotation const& FlangeMounting();

} // namespace harvlink::simulator
