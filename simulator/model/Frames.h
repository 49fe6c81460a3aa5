#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace harvlink::simulator {

/// A frame: X, Y, Z in millimetres, then Rx, Ry, Rz in degrees.
struct FrameEntry {
    static constexpr std::size_t NameLength = 32;

    std::array<double, 6> pose{};
    std::string name;
    bool isDefined = false;
};

/// Tools and user coordinates. Tool 0 is always defined; a user coordinate is one only when it was taught.
struct Frames {
    explicit Frames(std::size_t toolCount) : tools(toolCount) {
        if (!tools.empty()) {
            tools.front().isDefined = true;
        }
    }

    static constexpr std::size_t HighestUser = 63;

    std::vector<FrameEntry> tools; ///< by tool number, from 0
    std::array<FrameEntry, HighestUser + 1> users; ///< by user coordinate number, from 1
};

} // namespace harvlink::simulator
