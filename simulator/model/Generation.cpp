#include "simulator/model/Generation.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>

namespace harvlink::simulator {

namespace {

/// In the order of ControllerGenerations.
constexpr std::array<GenerationTexts, ControllerGenerations.size()> Texts{{
    {"DS3.53.01A(EN/JP)-00", "3.53", "VRK6000"},
    {"DN2.41.00A(EN/JP)-00", "2.41", "VRK7000"},
    {"FS1.30.00B(EN/JP)-00", "1.30", "VRK8000"},
    {"YAS4.10.00A(EN/JP)-00", "4.10", "VRK9000"},
    {"YBS2.30.00A(EN/JP)-00", "2.30", "VRK9500"},
    {"YNS1.12.00A(EN/JP)-00", "1.12", "VRK9800"},
}};

} // namespace

GenerationTexts const& TextsOf(ControllerVersion generation) {
    return Texts.at(static_cast<std::size_t>(generation));
}

std::string GenerationNames() {
    std::string names;
    for (ControllerGeneration const& generation : ControllerGenerations) {
        names.append(names.empty() ? "" : ", ").append(generation.letters);
    }
    return names;
}

std::optional<ControllerVersion> GenerationFromName(std::string_view name) {
    auto const found = std::ranges::find_if(ControllerGenerations, [&](ControllerGeneration const& generation) {
        return std::ranges::equal(generation.letters, name, {}, {},
                                  [](unsigned char letter) { return std::toupper(letter); });
    });
    if (found == ControllerGenerations.end()) {
        return std::nullopt;
    }
    return found->version;
}

} // namespace harvlink::simulator
