#include "position/AxisScaling.h"
#include "position/FigureBits.h"
#include "position/PositionMessages.h"

namespace harvlink {

UAPIPositionData::UAPIPositionData(PositionData const& position, bool axesAreJointAngles)
    : coordinateType(axesAreJointAngles ? UAPICoordType::UAPIJointAngle
                                        : UAPIUtils::CoordinateTypeToUAPICoordType(position.coordinateType)),
      userCoordinateNumber(static_cast<std::int16_t>(position.userCoordinateNumber)),
      toolNumber(static_cast<std::int16_t>(position.toolNumber)),
      figure(FigureWord(position.figure)),
      axes((axesAreJointAngles ? JointAngleScaling : ScalingOf(position.coordinateType)).ToWire(position.axes)) {}

UAPIPositionData::operator PositionData() const {
    CoordinateType const type = UAPIUtils::UAPICoordTypeToCoordinateType(coordinateType);
    bool const isJointAngle = coordinateType == UAPICoordType::UAPIJointAngle;
    return {
        .coordinateType = type,
        .figure = HelperFunction::BitsetToFigure(figure, 0),
        .toolNumber = toolNumber,
        .userCoordinateNumber = userCoordinateNumber,
        .axes = (isJointAngle ? JointAngleScaling : ScalingOf(type)).FromWire(axes),
    };
}

namespace UAPIUtils {

UAPICoordType CoordinateTypeToUAPICoordType(CoordinateType type) {
    switch (type) {
    case CoordinateType::Pulse:
        return UAPICoordType::UAPIPulse;
    case CoordinateType::BaseCoordinate:
        return UAPICoordType::UAPIBase;
    case CoordinateType::RobotCoordinate:
        return UAPICoordType::UAPIRobot;
    case CoordinateType::UserCoordinate:
        return UAPICoordType::UAPIUser;
    case CoordinateType::ToolCoordinate:
        return UAPICoordType::UAPITool;
    case CoordinateType::MasterTool:
        return UAPICoordType::UAPIMasterTool;
    default:
        return UAPICoordType::UAPIInvalid;
    }
}

CoordinateType UAPICoordTypeToCoordinateType(UAPICoordType type) {
    switch (type) {
    case UAPICoordType::UAPIPulse:
        return CoordinateType::Pulse;
    case UAPICoordType::UAPIJointAngle:
    case UAPICoordType::UAPIRobot:
        return CoordinateType::RobotCoordinate;
    case UAPICoordType::UAPIBase:
        return CoordinateType::BaseCoordinate;
    case UAPICoordType::UAPIUser:
        return CoordinateType::UserCoordinate;
    case UAPICoordType::UAPITool:
        return CoordinateType::ToolCoordinate;
    case UAPICoordType::UAPIMasterTool:
        return CoordinateType::MasterTool;
    default:
        return CoordinateType::Undefined;
    }
}

} // namespace UAPIUtils
} // namespace harvlink
