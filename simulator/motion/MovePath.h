#pragma once

#include <optional>

#include "simulator/arm/Workcell.h"
#include "simulator/motion/CartesianPath.h"

namespace harvlink::simulator {

/// The way of one group's axes from where they are to a target. Along a Cartesian way the arm goes on in the posture in
/// which it is, so the joints follow by steps, each from the one before.
class MovePath {
public:
    MovePath() = default;

    /// All axes in proportion.
    static MovePath Joint(AxisValues const& from, AxisValues const& to);

    /// The tool's tip, in robot coordinates, along `tip`; the 7th and 8th axis in proportion to those of `to`. Nothing if
    /// the arm can't follow.
    static std::optional<MovePath> Cartesian(AxisValues const& from, CartesianPath const& tip, Frame const& tool,
                                             AxisValues const& to);

    AxisValues const& From() const { return from_; }
    AxisValues const& To() const { return to_; }

    /// The axes at `fraction` of the way, for axes that stand at `fraction` `before` with the values `at`.
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
    int steps_ = 0; ///< into which a Cartesian way is divided at least
};

} // namespace harvlink::simulator
