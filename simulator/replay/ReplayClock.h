#pragma once

#include <chrono>
#include <cstdint>

namespace harvlink::simulator {

struct ReplaySpeed {
    double factor = 1.0;
    bool loops = false;
};

/// Where in a recording it is now. It begins to move with the first question that is not part of connecting, and stands still at the end of the recording
/// or begins anew. All in microseconds.
class ReplayClock {
public:
    ReplayClock(std::int64_t begin, std::int64_t end, std::int64_t start, ReplaySpeed speed)
        : begin_(begin), end_(end), start_(start), speed_(speed) {}

    std::int64_t Now(bool isConnecting) {
        auto const now = std::chrono::steady_clock::now();
        if (!hasBegun_) {
            hasBegun_ = !isConnecting;
            origin_ = now;
        }
        std::chrono::duration<double, std::micro> const passed = now - origin_;
        double const place = static_cast<double>(start_ - begin_) + passed.count() * speed_.factor;
        auto const length = static_cast<double>(end_ - begin_);
        if (place < length) {
            return begin_ + static_cast<std::int64_t>(place);
        }
        if (!speed_.loops || length < 1) {
            return end_;
        }
        return begin_ + static_cast<std::int64_t>(place) % static_cast<std::int64_t>(length);
    }

private:
    std::int64_t begin_;
    std::int64_t end_;
    std::int64_t start_;
    ReplaySpeed speed_;
    bool hasBegun_ = false;
    std::chrono::steady_clock::time_point origin_;
};

} // namespace harvlink::simulator
