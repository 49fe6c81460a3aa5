#pragma once

#include <string>

#include "simulator/controller/VirtualController.h"

namespace harvlink::simulator {

/// The state of a controller as one JSON object.
std::string StateReport(VirtualController& controller);

} // namespace harvlink::simulator
