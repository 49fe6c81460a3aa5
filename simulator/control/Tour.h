#pragma once

#include <cstdint>

#include "simulator/controller/ControllerParts.h"

namespace harvlink::simulator {

/// Keeps the arm of a controller on a round of points, as a program that sends targets does. For demonstrations: something
/// has to move there without a client.
class Tour {
public:
    /// Tours of different numbers are at different places at the same time.
    explicit Tour(unsigned number) : next_(number) {}

    /// Sends what has room in the buffer and sees to it that it is played. To be called every second or so. Does nothing while
    /// the controller is not ready: after an alarm or a hold the tour goes on by itself.
    void Feed(ControllerParts& parts);

private:
    static constexpr unsigned StepsAhead = 3;

    unsigned next_; ///< counts the points that were sent
};

} // namespace harvlink::simulator
