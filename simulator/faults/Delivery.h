#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "simulator/base/Clock.h"
#include "simulator/protocol/Request.h"

namespace harvlink::simulator {

/// A datagram on its way out, other than straight back.
struct Delivery {
    /// The socket it leaves from. Stray is none that a client knows.
    enum class Source : std::uint8_t { RobotPort, FilePort, Stray };

    Source source = Source::RobotPort;
    std::uint64_t peer = 0; ///< Request::peer of whom it goes to
    Clock::Duration due{0};
    std::vector<std::byte> bytes;
};

} // namespace harvlink::simulator
