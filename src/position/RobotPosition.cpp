#include "position/RobotPosition.h"

#include "position/AxisScaling.h"
#include "position/FigureBits.h"

namespace harvlink {

PositionData FromRobotPositionMsg(RobotPositionMsg const& message) {
    auto const type = static_cast<CoordinateType>(message.coordinateType);
    return {
        .coordinateType = type,
        .figure = HelperFunction::BitsetToFigure(message.figure, message.extendedFigure),
        .toolNumber = static_cast<std::int32_t>(message.toolNumber),
        .userCoordinateNumber = static_cast<std::int32_t>(message.userCoordinateNumber),
        .axes = ScalingOf(type).FromWire(message.axes),
    };
}

RobotPositionMsg ToRobotPositionMsg(PositionData const& position) {
    std::bitset<8> figure;
    std::bitset<8> extendedFigure;
    HelperFunction::FigureToBitsets(position.figure, figure, extendedFigure);
    return {
        .coordinateType = static_cast<std::uint32_t>(position.coordinateType),
        .figure = static_cast<std::uint32_t>(figure.to_ulong()),
        .toolNumber = static_cast<std::uint32_t>(position.toolNumber),
        .userCoordinateNumber = static_cast<std::uint32_t>(position.userCoordinateNumber),
        .extendedFigure = static_cast<std::uint32_t>(extendedFigure.to_ulong()),
        .axes = ScalingOf(position.coordinateType).ToWire(position.axes),
    };
}

} // namespace harvlink
