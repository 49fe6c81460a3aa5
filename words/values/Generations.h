#pragma once

#include <algorithm>
#include <array>
#include <string_view>

#include "harvlink/ControllerVersion.h"

namespace harvlink::words {

/// The names of the generations, the oldest first.
inline constexpr auto Generations = [] {
    std::array<std::string_view, ControllerGenerations.size()> names{};
    std::transform(ControllerGenerations.begin(), ControllerGenerations.end(), names.begin(),
                   [](ControllerGeneration const& generation) { return generation.letters; });
    return names;
}();

} // namespace harvlink::words
