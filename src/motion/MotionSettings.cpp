#include "motion/MotionManager.h"
#include "motion/MotionRequests.h"
#include "position/FigureBits.h"
#include "wire/HelperFunction.h"
#include "wire/WireInteger.h"

// The settings of a group: before a target only those that changed are sent; the direct setters always send.

namespace harvlink {
namespace {

/// The first nine fields: E and W are not compared, though they are remembered, on purpose.
bool IsSameConfiguration(Figure const& a, Figure const& b) {
    return a.frontOrBack == b.frontOrBack && a.upperOrLower == b.upperOrLower && a.flipOrNoFlip == b.flipOrNoFlip &&
           a.sAngle == b.sAngle && a.lAngle == b.lAngle && a.uAngle == b.uAngle && a.rAngle == b.rAngle &&
           a.bAngle == b.bAngle && a.tAngle == b.tAngle;
}

bool IsRatioInRange(double ratio) {
    return !(ratio < TargetProfile::minimumRatio || ratio > TargetProfile::maximumRatio);
}

SpeedStruct WireSpeed(double speed, MoveInterpolationType type) {
    return type == MoveInterpolationType::Joint ? SpeedStruct{.jointSpeed = TruncateToInt32(speed * 100.0)}
                                                : SpeedStruct{.linearSpeed = TruncateToInt32(speed * 10.0)};
}

SetCoordRequest CoordRequest(TargetControlGroup group, CoordinateType type, int userCoordinateNumber) {
    UAPICoordType const wireType = UAPIUtils::CoordinateTypeToUAPICoordType(type);
    bool const isUser = wireType == UAPICoordType::UAPIUser;
    return {{group, wireType, isUser ? userCoordinateNumber : 0}};
}

} // namespace

TargetProfile& MotionManager::Cached(TargetControlGroup group) {
    return cachedProfiles.at(static_cast<std::size_t>(group));
}

std::optional<TargetProfile> MotionManager::GetCachedValues(TargetControlGroup group) const {
    auto const slot = static_cast<std::size_t>(group);
    return slot < cachedProfiles.size() ? std::optional(cachedProfiles[slot]) : std::nullopt;
}

bool MotionManager::SetTargetProfile(MotionStep const& step, StatusInfo& status) {
    for (std::size_t slot = 0; slot < MotionSlots; ++slot) {
        if (!step.groups[slot]) {
            continue;
        }
        auto const group = static_cast<TargetControlGroup>(slot);
        groupBeingSet = group;
        TargetProfile const& profile = step.profiles[slot];
        bool const isPulse = profile.coordinateType == CoordinateType::Pulse;
        // Asked before each: under Rule::BoundedClose no setting goes out any more once the connection closes.
        auto const goesOn = [&] { return MayGoOn(status); };
        bool const isSet = goesOn() && SetTargetCoords(profile, group, status) && goesOn() &&
                           SetTargetSpeed(profile, group, profile.moveType, status) && goesOn() &&
                           (isPulse || SetTargetConfig(profile, group, status)) && goesOn() &&
                           SetTargetTool(profile, group, status) && goesOn() &&
                           SetTargetAccelRatio(profile, group, status) && goesOn() &&
                           SetTargetDecelRatio(profile, group, status);
        if (!isSet) {
            return false;
        }
    }
    groupBeingSet.reset();
    return true;
}

bool MotionManager::MayGoOn(StatusInfo& status) const {
    bool const isEnding = Enforces(Rule::BoundedClose) && progress.IsClosing();
    if (isEnding) {
        status = StatusInformation(ErrorStatusCodes::StepWithdrawn);
    }
    return !isEnding;
}

bool MotionManager::SetTargetCoords(TargetProfile const& profile, TargetControlGroup group, StatusInfo& status) {
    TargetProfile& cached = Cached(group);
    // A user coordinate number that alone changes is not sent, on purpose.
    if (profile.coordinateType == cached.coordinateType) {
        return true;
    }
    status = CarryOut(*networkManager, CoordRequest(group, profile.coordinateType, profile.userCoordinateNumber));
    if (status.StatusCode != 0) {
        return false;
    }
    cached.coordinateType = profile.coordinateType;
    return true;
}

bool MotionManager::SetTargetSpeed(TargetProfile const& profile, TargetControlGroup group, MoveInterpolationType type,
                                   StatusInfo& status) {
    TargetProfile& cached = Cached(group);
    // Only the number is compared, on purpose: a joint move at 50 and a line at 50 count as the same speed.
    if (profile.speed == cached.speed) {
        return true;
    }
    status = CarryOut(*networkManager, SetSpeedRequest{{group, WireSpeed(profile.speed, type)}});
    if (status.StatusCode != 0) {
        return false;
    }
    cached.speed = profile.speed;
    return true;
}

bool MotionManager::SetTargetConfig(TargetProfile const& profile, TargetControlGroup group, StatusInfo& status) {
    TargetProfile& cached = Cached(group);
    if (!IsSameConfiguration(profile.figure, cached.figure)) {
        status = CarryOut(*networkManager, SetConfigRequest{{group, FigureWord(profile.figure)}});
        if (status.StatusCode != 0) {
            return false;
        }
    }
    cached.figure = profile.figure;
    return true;
}

bool MotionManager::SetTargetTool(TargetProfile const& profile, TargetControlGroup group, StatusInfo& status) {
    TargetProfile& cached = Cached(group);
    if (profile.toolNumber == cached.toolNumber) {
        return true;
    }
    status = CarryOut(*networkManager, SetToolRequest{{group, profile.toolNumber}});
    if (status.StatusCode != 0) {
        return false;
    }
    cached.toolNumber = profile.toolNumber;
    return true;
}

bool MotionManager::SetTargetAccelRatio(TargetProfile const& profile, TargetControlGroup group, StatusInfo& status) {
    TargetProfile& cached = Cached(group);
    double const ratio = profile.accelerationRatio;
    if (ratio == RatioNotSpecified || ratio == cached.accelerationRatio) {
        return true;
    }
    if (!IsRatioInRange(ratio)) {
        status = StatusInformation(ErrorStatusCodes::AccelerationOutOfRange,
                                   "Acceleration ratio out of range. Valid ranges are 20.0%-100.00%.");
        return false;
    }
    status = CarryOut(*networkManager, SetAccelRatioRequest{{group, HelperFunction::ConvertDoubleToInt32(ratio)}});
    if (status.StatusCode != 0) {
        return false;
    }
    cached.accelerationRatio = ratio;
    return true;
}

bool MotionManager::SetTargetDecelRatio(TargetProfile const& profile, TargetControlGroup group, StatusInfo& status) {
    TargetProfile& cached = Cached(group);
    double const ratio = profile.decelerationRatio;
    if (ratio == RatioNotSpecified || ratio == cached.decelerationRatio) {
        return true;
    }
    if (!IsRatioInRange(ratio)) {
        status = StatusInformation(ErrorStatusCodes::DecelerationOutOfRange,
                                   "Deceleration ratio out of range. Valid ranges are 20.00%-100.00%.");
        return false;
    }
    status = CarryOut(*networkManager, SetDecelRatioRequest{{group, HelperFunction::ConvertDoubleToInt32(ratio)}});
    if (status.StatusCode != 0) {
        return false;
    }
    cached.decelerationRatio = ratio;
    return true;
}

StatusInfo MotionManager::SetCoord(TargetControlGroup group, CoordinateType type, int userCoordinateNumber) {
    return CarryOut(*networkManager, CoordRequest(group, type, userCoordinateNumber));
}

StatusInfo MotionManager::SetSpeed(TargetControlGroup group, SpeedStruct speed) {
    return CarryOut(*networkManager, SetSpeedRequest{{group, speed}});
}

StatusInfo MotionManager::SetConfig(TargetControlGroup group, Figure const& figure) {
    return CarryOut(*networkManager, SetConfigRequest{{group, FigureWord(figure)}});
}

StatusInfo MotionManager::SetTool(TargetControlGroup group, int toolNumber) {
    return CarryOut(*networkManager, SetToolRequest{{group, toolNumber}});
}

StatusInfo MotionManager::SetAccelRatio(TargetControlGroup group, int ratio) {
    return CarryOut(*networkManager, SetAccelRatioRequest{{group, ratio}});
}

StatusInfo MotionManager::SetDecelRatio(TargetControlGroup group, int ratio) {
    return CarryOut(*networkManager, SetDecelRatioRequest{{group, ratio}});
}

} // namespace harvlink
