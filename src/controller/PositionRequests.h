#pragma once

#include "controller/ControlGroupMessages.h"
#include "harvlink/ControllerVersion.h"
#include "harvlink/PositionData.h"
#include "wire/Request.h"

namespace harvlink {

/// Which of the two requests reads a position: pulses, and everything below `VersionYA`, come with RobotPositionRequest.
bool IsReadByRobotPosition(CoordinateType type, ControllerVersion version);

/// Code and text of a coordinate type in which the controller does not give positions.
StatusInfo InvalidPositionType();

/// Pulses or base coordinates with the active tool; every controller understands it.
struct RobotPositionRequest {
    using Reply = RobotPositionMsg;
    static constexpr CommandNumber command = CommandNumber::RobotPositionRead;
    static constexpr Service service = Service::ReadAll;
    std::uint16_t instance;

    /// The type must be one that Serves takes.
    RobotPositionRequest(ControlGroupId group, CoordinateType type);
    static bool Serves(CoordinateType type);

    /// The payload of a refusal is converted too.
    static StatusInfo Decode(StatusInfo status, ReplyTo<RobotPositionRequest> const& reply, PositionData& position);
};

/// Base, robot or user coordinates with any tool, from `VersionYA` up.
struct ExtendedPositionRequest {
    using Reply = UAPIGetPositionRecvData;
    static constexpr CommandNumber command = CommandNumber::UAPIPositionRead;
    static constexpr Service service = Service::ReadAll;
    static constexpr std::uint16_t instance = 0;
    UAPIGetPositionSendData payload;

    ExtendedPositionRequest(ControlGroupId group, CoordinateType type, std::uint16_t userCoordinateNumber,
                            std::uint16_t toolNumber);

    static StatusInfo Decode(StatusInfo status, ReplyTo<ExtendedPositionRequest> const& reply, PositionData& position);
};

/// The last step of either read: a refusal gets the control group table's text, the user coordinate number counts from 1,
/// and a group of fewer than eight axes has no eighth.
StatusInfo FinishPosition(StatusInfo status, CoordinateType type, std::uint32_t numberOfAxes, PositionData& position);

/// Reads it by RobotPositionRequest if that serves its type.
template <typename Engine>
StatusInfo CarryOutRobotPosition(Engine& engine, ControlGroupId group, CoordinateType type, PositionData& position) {
    return RobotPositionRequest::Serves(type) ? CarryOut(engine, RobotPositionRequest(group, type), position)
                                              : InvalidPositionType();
}

/// Reads it by the request that serves type and generation, to the last step. The two numbers are not checked.
template <typename Engine>
StatusInfo CarryOutPosition(Engine& engine, ControlGroupId group, CoordinateType type,
                            std::uint16_t userCoordinateNumber, std::uint16_t toolNumber, PositionData& position) {
    StatusInfo status =
        IsReadByRobotPosition(type, engine.controllerVersion)
            ? CarryOutRobotPosition(engine, group, type, position)
            : CarryOut(engine, ExtendedPositionRequest(group, type, userCoordinateNumber, toolNumber), position);
    return FinishPosition(std::move(status), type, engine.GetNumberOfAxesInGroup(group), position);
}

} // namespace harvlink
