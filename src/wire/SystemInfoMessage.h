#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

#include "harvlink/ControllerVersion.h"

namespace harvlink {

/// Reply to SystemInformationRead; its first letters also give the generation.
struct SystemInfoReturnMsg {
    std::array<char, 24> softwareVersion{};
    std::array<char, 16> modelName{};
    std::array<char, 8> parameterVersion{}; ///< not read
};
static_assert(sizeof(SystemInfoReturnMsg) == 48);
static_assert(offsetof(SystemInfoReturnMsg, modelName) == 24);
static_assert(offsetof(SystemInfoReturnMsg, parameterVersion) == 40);

/// The generation that the first two letters of the software version name.
inline ControllerVersion GenerationOf(SystemInfoReturnMsg const& message) {
    auto const& field = message.softwareVersion;
    std::string_view const version(field.begin(), std::ranges::find(field, '\0'));
    auto const generation =
        std::ranges::find(ControllerGenerations, version.substr(0, 2), &ControllerGeneration::letters);
    return generation == ControllerGenerations.end() ? ControllerVersion::VersionUnknown : generation->version;
}

} // namespace harvlink
