#pragma once

#include <cstddef>
#include <cstdint>

#include "simulator/protocol/Refusal.h"
#include "simulator/protocol/Request.h"

namespace harvlink::simulator {

/// All command numbers are below this limit.
inline constexpr std::size_t CommandLimit = 1024;

/// Checks a request of the robot control port against the catalogue of commands: command, attribute, service, range of
/// the instance and size of the payload. `extended` says whether the controller knows the commands from 829 up.
Refusal CheckAgainstCatalogue(Request const& request, bool extended);

} // namespace harvlink::simulator
