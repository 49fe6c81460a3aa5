#pragma once

#include <string>

#include "harvlink/Fleet.h"

namespace harvlink::fleet {

/// Why an item can't be read, by any controller or by one of this generation; empty if it can.
std::string WhyNot(FleetItem const& item, ControllerVersion generation);

} // namespace harvlink::fleet
