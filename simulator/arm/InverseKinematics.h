#pragma once

#include <optional>

#include "simulator/arm/ArmFigure.h"
#include "simulator/arm/ArmGeometry.h"
#include "simulator/arm/Frame.h"

namespace harvlink::simulator {

/// The angles that bring the flange to a frame in the posture of `figure`. Nothing if there are none within the joint
/// limits. Where the frame doesn't determine an axis (the wrist centre on the S axis, or B at 0) the angle of
/// `reference` is kept as far as the figure allows.
std::optional<ArmAngles> AnglesOf(ArmGeometry const& arm, Frame const& flange, ArmFigure const& figure,
                                  ArmAngles const& reference = HomeAngles);

/// The angles, of all postures, that are nearest to `reference`. Used to follow a path.
std::optional<ArmAngles> NearestAnglesOf(ArmGeometry const& arm, Frame const& flange, ArmAngles const& reference);

} // namespace harvlink::simulator
