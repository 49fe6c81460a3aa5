#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "harvlink/ControllerVersion.h"

namespace harvlink::simulator {

/// The texts by which a controller describes itself. A client recognises the generation by the software version.
struct GenerationTexts {
    std::string_view softwareVersion;
    std::string_view parameterVersion;
    std::string_view controllerModel;
};

/// Of a known generation, not of VersionUnknown.
GenerationTexts const& TextsOf(ControllerVersion generation);

/// "DS, DN, ...": what GenerationFromName knows.
std::string GenerationNames();

/// From "YA" and the like, in any case.
std::optional<ControllerVersion> GenerationFromName(std::string_view name);

} // namespace harvlink::simulator
