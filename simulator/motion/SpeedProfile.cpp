#include "simulator/motion/SpeedProfile.h"

#include <algorithm>
#include <cmath>

namespace harvlink::simulator {

SpeedProfile::SpeedProfile(double length, double speed, double acceleration, double deceleration) {
    if (!(length > 0.0) || !std::isfinite(length)) {
        return;
    }
    length_ = length;
    // Both ramps together have the length peak^2 (1 / a + 1 / d) / 2.
    double const rampsPerSquare = 0.5 * (1.0 / acceleration + 1.0 / deceleration);
    peak_ = std::min(speed, std::sqrt(length / rampsPerSquare));
    rampUp_ = peak_ / acceleration;
    rampDown_ = peak_ / deceleration;
    cruise_ = std::max(0.0, length / peak_ - 0.5 * (rampUp_ + rampDown_));
}

double SpeedProfile::DistanceAt(double seconds) const {
    if (!(seconds > 0.0)) {
        return 0.0;
    }
    if (seconds >= Duration()) {
        return length_;
    }
    if (seconds < rampUp_) {
        return 0.5 * peak_ * seconds * seconds / rampUp_;
    }
    if (seconds < rampUp_ + cruise_) {
        return peak_ * (seconds - 0.5 * rampUp_);
    }
    double const left = Duration() - seconds;
    return length_ - 0.5 * peak_ * left * left / rampDown_;
}

double SpeedProfile::FractionAt(double seconds) const {
    return length_ > 0.0 ? std::clamp(DistanceAt(seconds) / length_, 0.0, 1.0) : 1.0;
}

} // namespace harvlink::simulator
