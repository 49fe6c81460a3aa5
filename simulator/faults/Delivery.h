#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "simulator/base/Clock.h"
#include "simulator/protocol/Request.h"

namespace harvlink::simulator {

/// A datagram to be sent other than as the direct answer to a request.
struct Delivery {
    /// The socket that sends it. UnknownPort is a port that no client knows.
    enum class Source : std::uint8_t { RobotPort, FilePort, UnknownPort };

    Source source = Source::RobotPort;
    std::uint64_t peer = 0; ///< Request::peer of whom it goes to
    Clock::Duration due{0};
    std::vector<std::byte> bytes;
};

} // namespace harvlink::simulator
