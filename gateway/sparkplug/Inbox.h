#pragma once

#include <cstdint>
#include <mutex>
#include <vector>

#include "gateway/model/Batch.h"

namespace harvlink::gateway::sparkplug {

/// What the dispatcher gave since the last look, in its order.
struct Delivery {
    enum class Kind { Added, Removed, Batch };

    Kind kind = Kind::Batch;
    ControllerPtr controller; ///< of Added and Removed
    std::vector<SamplePtr> samples;
    std::vector<Event> events;
};

/// Hands deliveries from the dispatcher's thread to the node's, without ever blocking for long.
class Inbox {
public:
    void Add(Delivery delivery);
    std::vector<Delivery> TakeAll();
    std::uint64_t Dropped() const;

private:
    /// Beyond this the node's thread is stuck, as on a disk that does not answer.
    static constexpr std::size_t MostSamples = 200'000;

    mutable std::mutex mutex_;
    std::vector<Delivery> deliveries_;
    std::size_t samples_ = 0;
    std::uint64_t dropped_ = 0;
};

} // namespace harvlink::gateway::sparkplug
