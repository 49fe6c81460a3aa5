#pragma once

#include <array>
#include <cstddef>

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

} // namespace harvlink
