#include "controller/PositionRequests.h"

#include "controller/ControlGroupRequests.h"
#include "position/RobotPosition.h"

namespace harvlink {
namespace {

constexpr int baseCoordinateOffset = 100;

std::uint16_t CoordinateSelector(CoordinateType type, std::uint16_t userCoordinateNumber) {
    switch (type) {
    case CoordinateType::UserCoordinate:
        return static_cast<std::uint16_t>(userCoordinateNumber + 1);
    case CoordinateType::RobotCoordinate:
        return 1;
    default:
        return 0;
    }
}

} // namespace

/// Compared signed: an unknown generation counts as an older one here.
bool IsReadByRobotPosition(CoordinateType type, ControllerVersion version) {
    return type == CoordinateType::Pulse || version < ControllerVersion::VersionYA;
}

StatusInfo InvalidPositionType() {
    return StatusInformation(ErrorStatusCodes::InvalidCoordinateType,
                             "Coordinate type is not valid for position data retrieval.");
}

RobotPositionRequest::RobotPositionRequest(ControlGroupId group, CoordinateType type)
    : instance(static_cast<std::uint16_t>(static_cast<int>(group) +
                                          (type == CoordinateType::BaseCoordinate ? baseCoordinateOffset : 0))) {}

bool RobotPositionRequest::Serves(CoordinateType type) {
    return type == CoordinateType::Pulse || type == CoordinateType::BaseCoordinate;
}

StatusInfo RobotPositionRequest::Decode(StatusInfo status, ReplyTo<RobotPositionRequest> const& reply,
                                        PositionData& position) {
    position = FromRobotPositionMsg(reply.payload);
    return status;
}

ExtendedPositionRequest::ExtendedPositionRequest(ControlGroupId group, CoordinateType type,
                                                 std::uint16_t userCoordinateNumber, std::uint16_t toolNumber)
    : payload{.group = GroupAddress(group),
              .coordinateSelector = CoordinateSelector(type, userCoordinateNumber),
              .toolNumber = toolNumber} {}

StatusInfo ExtendedPositionRequest::Decode(StatusInfo status, ReplyTo<ExtendedPositionRequest> const& reply,
                                           PositionData& position) {
    position = status.StatusCode == 0 ? PositionData(reply.payload) : PositionData{};
    ApplyControlGroupTable(status);
    return status;
}

StatusInfo FinishPosition(StatusInfo status, CoordinateType type, std::uint32_t numberOfAxes, PositionData& position) {
    if (status.StatusCode != 0) {
        ApplyControlGroupTable(status);
        return status;
    }
    if (type == CoordinateType::UserCoordinate) {
        ++position.userCoordinateNumber;
    }
    if (numberOfAxes != position.axes.size()) {
        position.axes.back() = 0.0;
    }
    return status;
}

} // namespace harvlink
