#include "simulator/motion/TargetPlanner.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "simulator/arm/ForwardKinematics.h"
#include "simulator/arm/InverseKinematics.h"
#include "simulator/motion/MotionRefusal.h"

namespace harvlink::simulator {
namespace {

// At a ratio of 100 %.
constexpr double SecondsToFullSpeed = 0.3; // of an axis
constexpr double LinearAcceleration = 5000.0; // mm/s^2
// One degree of rotation of the hand counts as this length, so that the fastest line turns it by 180 degrees per
// second.
constexpr double LengthOfDegree = 1500.0 / 180.0; // mm

Frame FrameOfWire(WireAxes const& wire) {
    AxisValues const axes = CartesianScaling.FromWire(wire);
    return FrameOfPose({axes[0], axes[1], axes[2], axes[3], axes[4], axes[5]});
}

/// The unit of length is the time that an axis needs at full speed.
SpeedProfile JointProfile(GroupAxes const& axes, TargetSettings const& settings, MovePath const& path) {
    double longest = 0.0;
    for (std::size_t i = 0; i < axes.count; ++i) {
        longest = std::max(longest, std::abs(path.To()[i] - path.From()[i]) / axes.maximumSpeed[i]);
    }
    return {longest, settings.jointSpeed, settings.accelerationRatio / SecondsToFullSpeed,
            settings.decelerationRatio / SecondsToFullSpeed};
}

SpeedProfile LinearProfile(TargetSettings const& settings, double length) {
    return {length, settings.linearSpeed, LinearAcceleration * settings.accelerationRatio,
            LinearAcceleration * settings.decelerationRatio};
}

double BaseLength(MovePath const& path) {
    double square = 0.0;
    for (std::size_t i = 0; i < MaxAxes; ++i) {
        square += (path.To()[i] - path.From()[i]) * (path.To()[i] - path.From()[i]);
    }
    return std::sqrt(square);
}

double TipPathLength(MovePath const& path) {
    double degrees = path.Tip().Degrees();
    for (std::size_t i = ArmAxes; i < MaxAxes; ++i) {
        degrees = std::max(degrees, std::abs(path.To()[i] - path.From()[i]));
    }
    return std::max(path.Tip().Length(), degrees * LengthOfDegree);
}

} // namespace

TargetPlanner::TargetPlanner(Workcell const& cell, ControlGroup const& group, TargetSettings const& settings,
                             GroupPositions const& start, GroupPositions const& end)
    : cell_(cell),
      group_(group),
      axes_(cell.Axes(group)),
      settings_(settings),
      from_(start[cell.Index(group)]),
      end_(end),
      tool_(cell.Tool(settings.tool.value_or(0))) {}

Refusal TargetPlanner::Plan(Target const& target, PlannedMove& move) const {
    auto const refusal = CheckCoordinates();
    if (refusal != Refusal::None) {
        return refusal;
    }
    switch (target.moveType) {
    case MoveInterpolationType::Joint:
        return PlanJoint(target, move);
    case MoveInterpolationType::Line:
        if (axes_.isLinear) {
            return PlanBaseLine(target, move);
        }
        [[fallthrough]];
    case MoveInterpolationType::Circle:
        return axes_.isArm ? PlanTipPath(target, move) : MotionRefusal::InterpolationOutOfRange;
    default:
        return MotionRefusal::InterpolationOutOfRange;
    }
}

bool TargetPlanner::IsCartesian() const {
    return settings_.coordinateType != UAPICoordType::UAPIPulse &&
           settings_.coordinateType != UAPICoordType::UAPIJointAngle;
}

Refusal TargetPlanner::CheckCoordinates() const {
    auto const type = settings_.coordinateType;
    bool const isTool = type == UAPICoordType::UAPITool;
    bool const isUser = type == UAPICoordType::UAPIUser;
    if (IsCartesian() && !axes_.isArm && (!axes_.isLinear || isTool || isUser)) {
        return MotionRefusal::CoordinateSystemError;
    }
    if (isTool && !settings_.tool) {
        return MotionRefusal::ToolUnspecified;
    }
    return isUser && !cell_.HasUser(settings_.userNumber) ? MotionRefusal::UserFrameUnspecified : Refusal::None;
}

AxisValues TargetPlanner::AxesOf(WireAxes const& wire) const {
    if (settings_.coordinateType == UAPICoordType::UAPIPulse) {
        return axes_.FromPulses(wire);
    }
    return axes_.FromWire(wire, IsCartesian() ? CartesianScaling : JointAngleScaling);
}

Frame TargetPlanner::TipOf(WireAxes const& wire) const {
    switch (settings_.coordinateType) {
    case UAPICoordType::UAPIPulse:
    case UAPICoordType::UAPIJointAngle:
        return FlangeOf(StandardArm, ArmAnglesOf(AxesOf(wire))) * tool_;
    case UAPICoordType::UAPITool:
        return FlangeOf(StandardArm, ArmAnglesOf(from_)) * tool_ * FrameOfWire(wire);
    case UAPICoordType::UAPIRobot:
        return FrameOfWire(wire);
    case UAPICoordType::UAPIUser:
        return cell_.SystemFromRobot(group_, CoordinateSystem::User(settings_.userNumber), end_) * FrameOfWire(wire);
    default:
        return cell_.SystemFromRobot(group_, {}, end_) * FrameOfWire(wire);
    }
}

Refusal TargetPlanner::PlanJoint(Target const& target, PlannedMove& move) const {
    AxisValues to = AxesOf(target.axes);
    if (axes_.isArm && IsCartesian()) {
        auto const angles = AnglesOf(StandardArm, TipOf(target.axes) * tool_.Inverse(),
                                     ArmFigure::FromWord(settings_.figure), ArmAnglesOf(from_));
        if (!angles) {
            return MotionRefusal::PositionDataError;
        }
        to = WithArmAngles(to, *angles);
    }
    move.path = MovePath::Joint(from_, to);
    move.profile = JointProfile(axes_, settings_, move.path);
    return axes_.IsWithinLimits(to) ? Refusal::None : MotionRefusal::PositionDataError;
}

Refusal TargetPlanner::PlanBaseLine(Target const& target, PlannedMove& move) const {
    move.path = MovePath::Joint(from_, AxesOf(target.axes));
    move.profile = LinearProfile(settings_, BaseLength(move.path));
    return axes_.IsWithinLimits(move.path.To()) ? Refusal::None : MotionRefusal::PositionDataError;
}

Refusal TargetPlanner::PlanTipPath(Target const& target, PlannedMove& move) const {
    Frame const start = FlangeOf(StandardArm, ArmAnglesOf(from_)) * tool_;
    Frame const end = TipOf(target.axes);
    auto const tip = target.moveType == MoveInterpolationType::Line
                         ? CartesianPath::Line(start, end)
                         : CartesianPath::Arc(start, TipOf(target.auxiliaryAxes), end);
    if (!tip) {
        return MotionRefusal::InterpolationOutOfRange;
    }
    auto const path = MovePath::Cartesian(from_, *tip, tool_, AxesOf(target.axes));
    if (!path || !axes_.IsWithinLimits(path->To())) {
        return MotionRefusal::PositionDataError;
    }
    move.path = *path;
    move.profile = LinearProfile(settings_, TipPathLength(*path));
    return Refusal::None;
}

} // namespace harvlink::simulator
