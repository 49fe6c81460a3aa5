#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "harvlink/ControllerVersion.h"
#include "position/PositionMessages.h"

namespace harvlink::simulator {

/// The number of variables of each kind. The last index is one less.
struct VariableCounts {
    std::size_t bytes, integers, doubleInts, reals, strings, robotPositions, basePositions, stationPositions;
};

VariableCounts VariableCountsOf(ControllerVersion generation);

/// The controller's variables, by index. Numbers start as 0, positions as 0 pulses. The sizes of the vectors are fixed.
struct Variables {
    explicit Variables(ControllerVersion generation);

    static constexpr std::size_t MaxStringLength = 32;

    std::vector<std::uint8_t> bytes;
    std::vector<std::int16_t> integers;
    std::vector<std::int32_t> doubleInts;
    std::vector<float> reals;
    std::vector<std::string> strings; ///< any bytes, at most MaxStringLength
    std::vector<RobotPositionMsg> robotPositions;
    std::vector<BasePositionVariableMsg> basePositions;
    std::vector<StationPositionVariableMsg> stationPositions;
};

} // namespace harvlink::simulator
