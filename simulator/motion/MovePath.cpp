#include "simulator/motion/MovePath.h"

#include <algorithm>
#include <cmath>

#include "simulator/arm/InverseKinematics.h"

namespace harvlink::simulator {
namespace {

// Within a step the posture can be followed safely. The number of steps is limited because all are computed at once.
constexpr double StepLength = 20.0;
constexpr double StepDegrees = 10.0;
constexpr int MostSteps = 64;

int StepsOf(CartesianPath const& tip) {
    double const steps = std::ceil(std::max(tip.Length() / StepLength, tip.Degrees() / StepDegrees));
    // A tool or user coordinate may have any values, so NaN counts as too many steps.
    return steps < MostSteps ? std::max(1, static_cast<int>(steps)) : MostSteps;
}

} // namespace

MovePath MovePath::Joint(AxisValues const& from, AxisValues const& to) {
    MovePath path;
    path.from_ = from;
    path.to_ = to;
    return path;
}

std::optional<MovePath> MovePath::Cartesian(AxisValues const& from, CartesianPath const& tip, Frame const& tool,
                                            AxisValues const& to) {
    MovePath path = Joint(from, to);
    path.tip_ = tip;
    path.flangeFromTip_ = tool.Inverse();
    path.steps_ = StepsOf(tip);
    auto const end = path.FollowTip(from, 0.0, 1.0);
    if (!end) {
        return std::nullopt;
    }
    path.to_ = *end;
    return path;
}

AxisValues MovePath::Follow(AxisValues const& at, double before, double fraction) const {
    if (fraction >= 1.0) {
        return to_;
    }
    if (!IsCartesian()) {
        return InProportion(fraction);
    }
    // The whole path was followed when it was planned. If it can't be followed at a point in between, the arm waits for
    // the next point.
    return FollowTip(at, before, fraction).value_or(at);
}

std::optional<AxisValues> MovePath::FollowTip(AxisValues const& at, double before, double fraction) const {
    int const steps = std::clamp(static_cast<int>(std::ceil((fraction - before) * steps_)), 1, MostSteps);
    ArmAngles angles = ArmAnglesOf(at);
    for (int step = 1; step <= steps; ++step) {
        double const next = before + (fraction - before) * step / steps;
        auto const followed = NearestAnglesOf(StandardArm, tip_.At(next) * flangeFromTip_, angles);
        if (!followed) {
            return std::nullopt;
        }
        angles = *followed;
    }
    return WithArmAngles(InProportion(fraction), angles);
}

AxisValues MovePath::InProportion(double fraction) const {
    AxisValues values{};
    for (std::size_t i = 0; i < values.size(); ++i) {
        values[i] = from_[i] + fraction * (to_[i] - from_[i]);
    }
    return values;
}

} // namespace harvlink::simulator
