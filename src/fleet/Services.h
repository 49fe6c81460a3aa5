#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "files/SetPacket.h"
#include "fleet/ControllerRecord.h"
#include "fleet/EventQueue.h"
#include "fleet/SampleQueue.h"
#include "system/Poller.h"

namespace harvlink::fleet {

/// What the controllers of an engine share. Of the engine's thread, but for the queues.
struct Services {
    Poller& poller;
    SampleQueue& samples;
    EventQueue& events;
    Counter& systemCalls;
    int inFlight = 0; ///< requests whose answer is waited for
    std::int64_t wallOffset = 0; ///< nanoseconds from the steady clock to that of the computer
    FileReply reply; ///< the datagram that was read last; no other is longer
    std::span<std::byte const> payload{}; ///< of it, as far as it arrived and is understood

    std::int64_t WallTime(std::int64_t steadyTime) const { return steadyTime + wallOffset; }
};

} // namespace harvlink::fleet
