#pragma once

#include "fleet/ControllerRecord.h"

namespace harvlink::fleet {

/// What watching a controller costs.
FleetControllerPlan PlanOf(ControllerRecord const& controller);

} // namespace harvlink::fleet
