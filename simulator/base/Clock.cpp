#include "simulator/base/Clock.h"

namespace harvlink::simulator {

Clock::Clock(double scale) : scale_(scale), start_(std::chrono::steady_clock::now()), wallStart_(std::time(nullptr)) {}

Clock Clock::Manual() {
    return Clock(0.0);
}

Clock::Duration Clock::Now() const {
    if (scale_ == 0.0) {
        return offset_;
    }
    auto const elapsed = std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - start_);
    return offset_ + std::chrono::duration_cast<Duration>(elapsed * scale_);
}

std::time_t Clock::WallTime() const {
    return wallStart_ + static_cast<std::time_t>(std::chrono::duration_cast<std::chrono::seconds>(Now()).count());
}

} // namespace harvlink::simulator
