#include "simulator/motion/Pace.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace harvlink::simulator {

double Pace::Advance(double seconds, double end) {
    double const left = AdvanceRamp(seconds, end);
    if (!run_) {
        return left;
    }
    double const step = std::clamp(end - time_, 0.0, left);
    time_ = step < left ? end : time_ + step;
    return left - step;
}

double Pace::SecondsTo(double way, double slope) const {
    // Under the square root is the squared rate at the end of the way. If it is negative, the ramp ends earlier.
    double const square = rate_ * rate_ + 2.0 * slope * way;
    double const sum = square >= 0.0 ? rate_ + std::sqrt(square) : 0.0;
    return sum > 0.0 ? 2.0 * way / sum : std::numeric_limits<double>::infinity();
}

double Pace::AdvanceRamp(double seconds, double end) {
    double const wanted = run_ ? 1.0 : 0.0;
    double const slope = (run_ ? 1.0 : -1.0) / RampSeconds;
    double const way = end - time_;
    double const toEnd = SecondsTo(way, slope);
    double const toWanted = std::abs(wanted - rate_) * RampSeconds;
    double const step = std::max(0.0, std::min({seconds, toEnd, toWanted}));
    time_ = step < toEnd ? std::min(end, time_ + rate_ * step + 0.5 * slope * step * step) : end;
    rate_ = step < toWanted ? std::clamp(rate_ + slope * step, 0.0, 1.0) : wanted;
    return seconds - step;
}

} // namespace harvlink::simulator
