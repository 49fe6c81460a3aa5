#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace harvlink::simulator {

/// A frame: X, Y, Z in millimetres, then Rx, Ry, Rz in degrees.
struct TaughtFrame {
    static constexpr std::size_t NameLength = 32;

    std::array<double, 6> pose{};
    std::string name;
    bool isDefined = false;
};

/// Tools and user coordinates. Tool 0 is always defined; a user coordinate is defined only after it was taught.
struct TaughtFrames {
    explicit TaughtFrames(std::size_t toolCount) : tools(toolCount) {
        if (!tools.empty()) {
            tools.front().isDefined = true;
        }
    }

    static constexpr std::size_t HighestUser = 63;

    std::vector<TaughtFrame> tools; ///< by tool number, from 0
    std::array<TaughtFrame, HighestUser + 1> users; ///< by user coordinate number, from 1
};

} // namespace harvlink::simulator
