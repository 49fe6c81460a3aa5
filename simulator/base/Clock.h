#pragma once

#include <chrono>
#include <ctime>

namespace harvlink::simulator {

/// The time since a controller was switched on. It follows the computer's monotonic clock, multiplied by a scale, or
/// moves only by Advance.
class Clock {
public:
    using Duration = std::chrono::nanoseconds;

    explicit Clock(double scale = 1.0);

    /// A clock that only Advance moves.
    static Clock Manual();

    Duration Now() const;

    /// Moves the clock forward, whether it runs or not.
    void Advance(Duration step) { offset_ += step; }

    /// The calendar time that belongs to Now, in seconds since the epoch.
    std::time_t WallTime() const;

private:
    double scale_ = 1.0;
    Duration offset_{0};
    std::chrono::steady_clock::time_point start_;
    std::time_t wallStart_ = 0;
};

} // namespace harvlink::simulator
