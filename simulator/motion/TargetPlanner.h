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

/// Plans the move of one group to one target. Refuses a target that can't be reached before anything moves.
///
/// A joint move goes to the posture of the set figure; a line or an arc keeps the posture. Tool coordinates refer to
/// the tool position at the start of the move. Base coordinates refer to the positions of the base axes at the end of
/// the step.
class TargetPlanner {
public:
    /// `start` are the positions at the start of the move. `end` are the positions at the end of the step, as far as it
    /// is planned.
    TargetPlanner(Workcell const& cell, ControlGroup const& group, TargetSettings const& settings,
                  GroupPositions const& start, GroupPositions const& end);

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
    GroupPositions const& end_;
    Frame const tool_;
};

} // namespace harvlink::simulator
