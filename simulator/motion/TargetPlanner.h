#pragma once

#include "motion/MotionMessages.h"
#include "simulator/arm/Workcell.h"
#include "simulator/motion/MovePath.h"
#include "simulator/motion/SpeedProfile.h"
#include "simulator/motion/TargetSettings.h"
#include "simulator/protocol/Refusal.h"

namespace harvlink::simulator {

/// A target of one group, ready to be played.
struct PlannedMove {
    MovePath path{};
    SpeedProfile profile{};
};

/// Turns one target of one group into a move, or refuses what can't be moved to, before anything moves.
///
/// A joint move goes to the posture that the set figure tells; a line or an arc keeps the posture. Coordinates of type
/// tool count from the tool's place at the start of the move. Base coordinates refer to where the base axes stand at the
/// end of the step.
class TargetPlanner {
public:
    /// `start` is where the groups stand when the move begins, `end` where those stand that were planned before in the
    /// same step.
    TargetPlanner(Workcell const& cell, ControlGroup const& group, TargetSettings const& settings, Stance const& start,
                  Stance const& end);

    Refusal Plan(Target const& target, PlannedMove& move) const;

private:
    Refusal CheckCoordinates() const;
    Refusal PlanJoint(Target const& target, PlannedMove& move) const;
    Refusal PlanBaseLine(Target const& target, PlannedMove& move) const;
    Refusal PlanTipPath(Target const& target, PlannedMove& move) const;
    bool IsCartesian() const;
    AxisValues AxesOf(WireAxes const& wire) const;
    Frame TipOf(WireAxes const& wire) const;

    Workcell const& cell_;
    ControlGroup const& group_;
    GroupAxes const& axes_;
    TargetSettings const& settings_;
    AxisValues const& from_;
    Stance const& end_;
    Frame const tool_;
};

} // namespace harvlink::simulator
