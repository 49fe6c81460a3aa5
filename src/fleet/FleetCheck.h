#pragma once

#include <string>
#include <vector>

#include "harvlink/Fleet.h"

namespace harvlink::fleet {

/// Whether all that can be watched: InvalidFleet otherwise, and the text says which controller, which item and why. Whether
/// name and address are free is not asked here.
StatusInfo CheckController(std::string const& name, FleetControllerOptions const& options,
                           std::vector<FleetGroup> const& groups);

/// InvalidFleet with a text that names the controller.
StatusInfo InvalidController(std::string const& name, std::string const& what);

} // namespace harvlink::fleet
