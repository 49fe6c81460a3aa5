#include "simulator/motion/ServoMonitor.h"

#include <cmath>

#include "wire/WireInteger.h"

namespace harvlink::simulator {
namespace {

constexpr double LagSeconds = 0.01;

// In 0.01 %.
constexpr double FrictionAtFullSpeed = 2500.0;
constexpr double GravityOfUpperArm = 2000.0;
constexpr double GravityOfForearm = 1800.0;
constexpr double GravityOfHand = 500.0;

AxisValues GravityOf(AxisValues const& values) {
    double const lean = values[1] * RadiansPerDegree;
    double const forearm = (values[2] - values[1]) * RadiansPerDegree;
    double const hand = forearm + values[4] * RadiansPerDegree * std::cos(values[3] * RadiansPerDegree);
    AxisValues torque{};
    torque[4] = GravityOfHand * std::cos(hand);
    torque[2] = GravityOfForearm * std::cos(forearm) + torque[4];
    torque[1] = -GravityOfUpperArm * std::sin(lean) - torque[2];
    return torque;
}

} // namespace

ServoMonitor::ServoMonitor(Workcell const& cell) : cell_(cell), stance_(cell.Home()), speed_(stance_.size()) {}

void ServoMonitor::Update(GroupPositions const& positions, double seconds) {
    if (!(seconds > 0.0)) {
        return;
    }
    isAtRest_ = true;
    for (std::size_t group = 0; group < positions.size(); ++group) {
        for (std::size_t axis = 0; axis < MaxAxes; ++axis) {
            double const way = positions[group][axis] - stance_[group][axis];
            speed_[group][axis] = way / seconds;
            isAtRest_ = isAtRest_ && way == 0.0;
        }
    }
    stance_ = positions;
}

WireAxes ServoMonitor::PositionError(ControlGroup const& group) const {
    AxisValues lag = Speed(group);
    for (double& value : lag) {
        value *= LagSeconds;
    }
    return cell_.Axes(group).ToPulses(lag);
}

WireAxes ServoMonitor::Torque(ControlGroup const& group) const {
    GroupAxes const& axes = cell_.Axes(group);
    AxisValues const speed = Speed(group);
    AxisValues const gravity = axes.isArm ? GravityOf(stance_[cell_.Index(group)]) : AxisValues{};
    WireAxes torque{};
    for (std::size_t i = 0; i < axes.count; ++i) {
        torque[i] = ScaleToInt32(gravity[i] + FrictionAtFullSpeed * speed[i] / axes.maximumSpeed[i], 1.0);
    }
    return torque;
}

} // namespace harvlink::simulator
