#pragma once

#include <cstdint>

namespace harvlink {

/// Generation of a controller, found at connection time from the first two letters of its system software version.
/// `VersionYA` and up, the VRK9000 and newer, understand the extended commands: motion, conversion, job stack, extended
/// positions, parameters.
enum class ControllerVersion : std::int32_t {
    VersionUnknown = -1, ///< the version probe failed, or named a generation that is not in this list
    VersionDS = 0,
    VersionDN = 1,
    VersionFS = 2,
    VersionYA = 3,
    VersionYB = 4,
    VersionYN = 5,
};

} // namespace harvlink
