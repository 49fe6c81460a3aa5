#pragma once

#include <cstddef>
#include <cstdint>

#include "simulator/protocol/Refusal.h"
#include "simulator/protocol/Request.h"

namespace harvlink::simulator {

/// All numbers of commands are below it.
inline constexpr std::size_t CommandLimit = 1024;

/// Checks a request of the robot control port against the catalogue of commands: is the command known, do attribute and
/// service go with it, is the instance in the command's range, has the payload a size that the command can have.
/// `extended` says whether the controller understands the commands from 829 up.
Refusal CheckAgainstCatalogue(Request const& request, bool extended);

} // namespace harvlink::simulator
