#include "simulator/model/OperatingTimes.h"

#include <algorithm>

namespace harvlink::simulator {

void OperatingTimes::Update(Clock::Duration now, Activity activity) {
    auto const step = std::max(now - updated_, Clock::Duration{0});
    // An application is at work while a job plays.
    std::array<bool, Counters> const runs{true, activity_.servo, activity_.playback, activity_.moving,
                                          activity_.playback};
    for (std::size_t i = 0; i < Counters; ++i) {
        totals_[i] += runs[i] ? step : Clock::Duration{0};
    }
    updated_ = now;
    activity_ = activity;
}

std::uint64_t OperatingTimes::Seconds(Counter counter) const {
    auto const total = totals_.at(static_cast<std::size_t>(counter));
    return static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::seconds>(total).count());
}

} // namespace harvlink::simulator
