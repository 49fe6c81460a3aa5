#include "simulator/motion/TargetSettings.h"

#include "simulator/motion/MotionRefusal.h"

namespace harvlink::simulator {
namespace {

constexpr std::int32_t HighestJointSpeed = 10000; // 0.01 %
constexpr std::int32_t HighestLinearSpeed = 15000; // 0.1 mm/s
constexpr std::int32_t LowestRatio = 2000; // 0.01 %
constexpr std::int32_t HighestRatio = 10000;

bool IsUsable(UAPICoordType type) {
    switch (type) {
    case UAPICoordType::UAPIPulse:
    case UAPICoordType::UAPIJointAngle:
    case UAPICoordType::UAPIBase:
    case UAPICoordType::UAPIRobot:
    case UAPICoordType::UAPIUser:
    case UAPICoordType::UAPITool:
        return true;
    default:
        return false;
    }
}

Refusal SetRatio(std::int32_t ratio, Refusal outOfRange, double& setting) {
    if (ratio < LowestRatio || ratio > HighestRatio) {
        return outOfRange;
    }
    setting = ratio / double{HighestRatio};
    return Refusal::None;
}

Refusal CheckUser(std::int32_t number, Workcell const& cell) {
    if (number < 0 || number > static_cast<std::int32_t>(TaughtFrames::HighestUser)) {
        return MotionRefusal::UserFrameOutOfRange;
    }
    return cell.HasUser(number) ? Refusal::None : MotionRefusal::UserFrameUnspecified;
}

} // namespace

Refusal TargetSettings::SetCoordinates(harvlink::MotionSetCoord const& message, Workcell const& cell) {
    if (!IsUsable(message.coordinateType)) {
        return MotionRefusal::CoordinateSystemError;
    }
    if (message.coordinateType == UAPICoordType::UAPIUser) {
        auto const refusal = CheckUser(message.userCoordinateNumber, cell);
        if (refusal != Refusal::None) {
            return refusal;
        }
        userNumber = message.userCoordinateNumber;
    }
    coordinateType = message.coordinateType;
    return Refusal::None;
}

Refusal TargetSettings::SetTool(std::int32_t number, Workcell const& cell) {
    if (!cell.HasTool(number)) {
        return MotionRefusal::ToolOutOfRange;
    }
    tool = number;
    return Refusal::None;
}

Refusal TargetSettings::SetSpeed(SpeedStruct const& speed) {
    if (speed.jointSpeed < 0 || speed.jointSpeed > HighestJointSpeed || speed.linearSpeed < 0 ||
        speed.linearSpeed > HighestLinearSpeed) {
        return Refusal::DataOutOfRange;
    }
    jointSpeed = speed.jointSpeed > 0 ? speed.jointSpeed / double{HighestJointSpeed} : jointSpeed;
    linearSpeed = speed.linearSpeed > 0 ? speed.linearSpeed / 10.0 : linearSpeed;
    return Refusal::None;
}

Refusal TargetSettings::SetAccelerationRatio(std::int32_t ratio) {
    return SetRatio(ratio, MotionRefusal::AccelerationOutOfRange, accelerationRatio);
}

Refusal TargetSettings::SetDecelerationRatio(std::int32_t ratio) {
    return SetRatio(ratio, MotionRefusal::DecelerationOutOfRange, decelerationRatio);
}

} // namespace harvlink::simulator
