#pragma once

#include "simulator/arm/Workcell.h"

namespace harvlink::simulator {

/// What the servo amplifiers would report: how far the axes lag behind, and how hard they push.
class ServoMonitor {
public:
    explicit ServoMonitor(Workcell const& cell);

    /// Sees where the axes are after `seconds` more.
    void Update(Stance const& stance, double seconds);

    bool IsAtRest() const { return isAtRest_; }

    /// In pulses: an axis lags by the way of a hundredth of a second.
    WireAxes PositionError(ControlGroup const& group) const;

    /// In 0.01 % of the rated torque: friction by speed, and gravity on the arm's axes.
    WireAxes Torque(ControlGroup const& group) const;

private:
    AxisValues Speed(ControlGroup const& group) const { return speed_[cell_.Index(group)]; }

    Workcell const& cell_;
    Stance stance_;
    Stance speed_; ///< units per second
    bool isAtRest_ = true;
};

} // namespace harvlink::simulator
