#include "simulator/model/OperatingTimes.h"

#include <algorithm>

namespace harvlink::simulator {

void OperatingTimes::Update(Clock::Duration now, Running running) {
    auto const step = std::max(now - updated_, Clock::Duration{0});
    // An application is counted as active while a job runs.
    std::array<bool, Counters> const runs{true, running_.servo, running_.playback, running_.moving, running_.playback};
    for (std::size_t i = 0; i < Counters; ++i) {
        totals_[i] += runs[i] ? step : Clock::Duration{0};
    }
    updated_ = now;
    running_ = running;
}

std::uint64_t OperatingTimes::Seconds(Counter counter) const {
    auto const total = totals_.at(static_cast<std::size_t>(counter));
    return static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::seconds>(total).count());
}

} // namespace harvlink::simulator
