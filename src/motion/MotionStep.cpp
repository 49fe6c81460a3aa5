#include "motion/MotionStep.h"

#include "position/AxisScaling.h"

namespace harvlink {
namespace {

/// Strict comparisons that must hold to fail, so that a NaN passes.
bool IsRatioOutOfRange(double ratio) {
    return ratio != RatioNotSpecified && (TargetProfile::minimumRatio > ratio || ratio > TargetProfile::maximumRatio);
}

} // namespace

Target::Target(Motion const& motion)
    : moveType(motion.moveType), axes(ScalingOf(motion.position.coordinateType).ToWire(motion.position.axes)) {
    if (moveType == MoveInterpolationType::Circle) {
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-static-cast-downcast): only the move type says which record it is
        auto const& circular = static_cast<CircularMotion const&>(motion);
        auxiliaryAxes = ScalingOf(motion.position.coordinateType).ToWire(circular.auxiliaryAxes);
    }
}

TargetProfile::TargetProfile(Motion const& motion)
    : accelerationRatio(motion.accelerationRatio),
      decelerationRatio(motion.decelerationRatio),
      coordinateType(motion.position.coordinateType),
      toolNumber(motion.position.toolNumber),
      userCoordinateNumber(motion.position.userCoordinateNumber),
      speed(motion.speed),
      figure(motion.position.figure),
      moveType(motion.moveType) {}

bool TargetProfile::CheckSpeed(double speedToCheck, MoveInterpolationType type, StatusInfo& status) const {
    switch (type) {
    case MoveInterpolationType::Line:
    case MoveInterpolationType::Circle:
        if (speedToCheck > 1500.0 || speedToCheck < 0.1) {
            status = StatusInformation(ErrorStatusCodes::SpeedOutOfRange);
            return false;
        }
        return true;
    case MoveInterpolationType::Joint:
    case MoveInterpolationType::NoMove:
        if (speedToCheck > 100.0 || speedToCheck < 0.01) {
            status = StatusInformation(ErrorStatusCodes::JointSpeedOutOfRange);
            return false;
        }
        return true;
    default: // a move type that only the controller may know
        return true;
    }
}

bool TargetProfile::CheckAccelDecelValue(StatusInfo& status) const {
    if (IsRatioOutOfRange(accelerationRatio)) {
        status = StatusInformation(ErrorStatusCodes::AccelerationOutOfRange, "Acceleration Value Out Of Range");
        return false;
    }
    if (IsRatioOutOfRange(decelerationRatio)) {
        status = StatusInformation(ErrorStatusCodes::DecelerationOutOfRange, "Deceleration Value Out Of Range");
        return false;
    }
    status = StatusInformation(ErrorStatusCodes::Ok);
    return true;
}

bool MotionStep::SetTarget(Motion const& motion, TargetControlGroup group, StatusInfo& status) {
    status = {};
    if (motion.moveType == MoveInterpolationType::NoMove) {
        return true;
    }
    if (motion.position.coordinateType == CoordinateType::JointAngle) {
        status = StatusInformation(ErrorStatusCodes::InvalidCoordinateType);
        return false;
    }
    TargetProfile const profile(motion);
    if (!profile.CheckAccelDecelValue(status) || !profile.CheckSpeed(motion.speed, motion.moveType, status)) {
        return false;
    }
    auto const slot = static_cast<std::size_t>(group);
    targets.at(slot) = Target(motion);
    profiles.at(slot) = profile;
    groups.set(slot);
    return true;
}

bool MotionStep::SetTarget(Motion const& motion, GroupNumberMap const& map, StatusInfo& status) {
    status = {};
    TargetControlGroup const group = map.GetGroup(motion);
    if (group == TargetControlGroup::GroupNotFound) {
        status = StatusInformation(InvalidControlGroup, "Invalid control group id.");
        return false;
    }
    return SetTarget(motion, group, status);
}

} // namespace harvlink
