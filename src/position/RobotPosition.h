#pragma once

#include "harvlink/PositionData.h"
#include "position/PositionMessages.h"

namespace harvlink {

/// Between a position and its record in RobotPositionRead and robot position variables. The coordinate type of the source
/// decides the scaling.
PositionData FromRobotPositionMsg(RobotPositionMsg const& message);
RobotPositionMsg ToRobotPositionMsg(PositionData const& position);

} // namespace harvlink
