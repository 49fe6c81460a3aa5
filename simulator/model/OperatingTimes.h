#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "simulator/base/Clock.h"

namespace harvlink::simulator {

/// The counters of operating time. They start at the values of a used machine. Each counts while its condition holds.
class OperatingTimes {
public:
    enum class Counter : std::uint8_t { ControlPower, Servo, Playback, Moving, Application };

    struct Running {
        bool servo = false;
        bool playback = false;
        bool moving = false;
    };

    /// Adds the time since the last update to the counters that were running. From now on the counters of `running`
    /// run.
    void Update(Clock::Duration now, Running running);

    std::uint64_t Seconds(Counter counter) const;

private:
    static constexpr std::size_t Counters = 5;

    std::array<Clock::Duration, Counters> totals_{std::chrono::hours(9876), std::chrono::hours(4321),
                                                  std::chrono::hours(2468), std::chrono::hours(1357),
                                                  std::chrono::hours(864)};
    Running running_{};
    Clock::Duration updated_{0};
};

} // namespace harvlink::simulator
