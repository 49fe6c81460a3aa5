#pragma once

#include "simulator/arm/Workcell.h"

namespace harvlink::simulator {

/// Computes what servo amplifiers would report: position error and torque of the axes.
class ServoMonitor {
public:
    explicit ServoMonitor(Workcell const& cell);

    /// Takes the positions after `seconds` more.
    void Update(GroupPositions const& positions, double seconds);

    bool IsAtRest() const { return isAtRest_; }

    /// In pulses. An axis lags behind by its travel in a hundredth of a second.
    WireAxes PositionError(ControlGroup const& group) const;

    /// In 0.01 % of the rated torque: friction by speed, and gravity on the arm's axes.
    WireAxes Torque(ControlGroup const& group) const;

private:
    AxisValues Speed(ControlGroup const& group) const { return speed_[cell_.Index(group)]; }

    Workcell const& cell_;
    GroupPositions stance_;
    GroupPositions speed_; ///< units per second
    bool isAtRest_ = true;
};

} // namespace harvlink::simulator
