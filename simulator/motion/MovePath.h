#pragma once

#include <optional>

#include "simulator/arm/Workcell.h"
#include "simulator/motion/CartesianPath.h"

namespace harvlink::simulator {

/// The path of one group's axes to a target. Along a Cartesian path the arm keeps its posture, so the joint angles are
/// computed in steps, each from the previous one.
class MovePath {
public:
    MovePath() = default;

    /// All axes in proportion.
    static MovePath Joint(AxisValues const& from, AxisValues const& to);

    /// The tool tip moves along `tip`, which is in robot coordinates; the 7th and 8th axis move in proportion to those
    /// of `to`. Nothing if the arm can't follow.
    static std::optional<MovePath> Cartesian(AxisValues const& from, CartesianPath const& tip, Frame const& tool,
                                             AxisValues const& to);

    AxisValues const& From() const { return from_; }
    AxisValues const& To() const { return to_; }

    /// The axes at `fraction` of the path. At the fraction `before` they have the values `at`.
    AxisValues Follow(AxisValues const& at, double before, double fraction) const;

    bool IsCartesian() const { return steps_ > 0; }
    CartesianPath const& Tip() const { return tip_; }

private:
    std::optional<AxisValues> FollowTip(AxisValues const& at, double before, double fraction) const;
    AxisValues InProportion(double fraction) const;

    AxisValues from_{};
    AxisValues to_{};
    CartesianPath tip_{};
    Frame flangeFromTip_{};
    int steps_ = 0; ///< least number of steps of a Cartesian path; 0 for a joint move
};

} // namespace harvlink::simulator
