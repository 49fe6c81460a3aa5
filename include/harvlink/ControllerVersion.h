#pragma once

#include <array>
#include <cstdint>
#include <string_view>

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

/// A generation and the two letters that its software version begins with, which are also its name.
struct ControllerGeneration {
    ControllerVersion version;
    std::string_view letters;
};

/// Every generation that the library knows, the oldest first.
inline constexpr std::array<ControllerGeneration, 6> ControllerGenerations{{
    {ControllerVersion::VersionDS, "DS"},
    {ControllerVersion::VersionDN, "DN"},
    {ControllerVersion::VersionFS, "FS"},
    {ControllerVersion::VersionYA, "YA"},
    {ControllerVersion::VersionYB, "YB"},
    {ControllerVersion::VersionYN, "YN"},
}};

} // namespace harvlink
