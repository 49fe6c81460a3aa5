#pragma once

#include <array>
#include <cstddef>

#include "position/AxisScaling.h"
#include "simulator/arm/ArmGeometry.h"
#include "simulator/model/ControlGroups.h"

namespace harvlink::simulator {

inline constexpr std::size_t MaxAxes = 8;

/// One value per axis of a group: millimetres for linear axes, degrees for others, 0 for missing axes.
using AxisValues = std::array<double, MaxAxes>;

/// The properties of the axes of a control group.
///
/// | group | axes | unit | pulses per unit | limits | full speed |
/// |---|---|---|---|---|---|
/// | robot | S L U R B T | degree | see ArmGeometry | see ArmGeometry | see ArmGeometry |
/// | robot, 7th and 8th | E W | degree | 1000 | -180 to 180 | 180 degrees/s |
/// | base | X Y Z 1 2 3 4 5 | mm | 100 | 0 to 5000 | 1500 mm/s |
/// | station | 1 2 3 4 5 6 7 8 | degree | 800 | -3600 to 3600 | 180 degrees/s |
struct GroupAxes {
    std::size_t count = 0;
    bool isLinear = false;
    bool isArm = false; ///< a robot with the six axes of the arm, which has a pose
    std::array<char, MaxAxes> letters{};
    AxisValues pulsesPerUnit{};
    std::array<AxisLimits, MaxAxes> limits{};
    AxisValues maximumSpeed{};

    bool IsWithinLimits(AxisValues const& values) const;
    AxisValues FromPulses(WireAxes const& pulses) const;
    WireAxes ToPulses(AxisValues const& values) const;

    /// Missing axes are 0.
    AxisValues FromWire(WireAxes const& wire, AxisScaling const& scaling) const;
};

GroupAxes AxesOf(ControlGroup const& group);

ArmAngles ArmAnglesOf(AxisValues const& values);

/// `values` with the arm's six axes replaced.
AxisValues WithArmAngles(AxisValues const& values, ArmAngles const& angles);

} // namespace harvlink::simulator
