#include "variables/VariableRequests.h"

#include "position/AxisScaling.h"
#include "position/RobotPosition.h"
#include "wire/HelperFunction.h"

namespace harvlink {
namespace {

constexpr int undefinedCoordinateType = 3460;
constexpr int toolFileMissing = 0xB00D;
constexpr int userCoordinateNumberOutOfRange = 0xB00E;

} // namespace

StatusInfo InvalidVariableIndex() {
    return StatusInformation(ErrorStatusCodes::InvalidVariableIndex, "The requested variable index is invalid.");
}

void TranslateInstanceError(StatusInfo& status) {
    constexpr int invalidInstance = 40961;
    if (status.StatusCode == invalidInstance) {
        status = InvalidVariableIndex();
    }
}

StatusInfo StringRead::Decode(StatusInfo status, IncomingPacket<Reply> const& reply,
                              StringVariableData& variable) const {
    TranslateInstanceError(status);
    variable = {};
    variable.variableIndex = index;
    if (status.StatusCode == 0) {
        // The reply's header gives the length, so zero bytes inside stay. It is cut to the field: a header can claim more.
        std::size_t const length = std::min<std::size_t>(reply.header.payloadSize, reply.payload.size());
        variable.value.assign(reply.payload.begin(), length);
    }
    return status;
}

StringWrite::StringWrite(CommandNumber kind, StringVariableData const& variable, int rs22State)
    : VariableWrite(kind, variable.variableIndex, rs22State, {}) {
    // Only the low 16 bits of the length are looked at, on purpose.
    auto const length = static_cast<std::uint16_t>(variable.value.size());
    isTruncated = length > payload.size();
    payloadSize = isTruncated ? static_cast<std::uint16_t>(payload.size()) : length;
    std::copy_n(variable.value.begin(), payloadSize, payload.begin());
}

StatusInfo StringWrite::Decode(StatusInfo status) const {
    TranslateInstanceError(status);
    if (isTruncated && status.StatusCode == 0) {
        status.Message += " String was truncated to 32 characters";
    }
    return status;
}

StatusInfo RobotPositionVariableRead::Decode(StatusInfo status, IncomingPacket<Reply> const& reply,
                                             RobotPositionVariableData& variable) const {
    TranslateInstanceError(status);
    variable = {};
    variable.variableIndex = index;
    if (status.StatusCode == 0) {
        variable.positionData = FromRobotPositionMsg(reply.payload);
    }
    return status;
}

StatusInfo BasePositionVariableRead::Decode(StatusInfo status, IncomingPacket<Reply> const& reply,
                                            BaseAxisPositionVariableData& variable) const {
    TranslateInstanceError(status);
    variable = {};
    if (status.StatusCode != 0) {
        variable.variableIndex = index;
        return status;
    }
    PositionData& position = variable.positionData;
    position.coordinateType = static_cast<CoordinateType>(reply.payload.coordinateType);
    bool const isPulse = position.coordinateType == CoordinateType::Pulse;
    position.axes = (isPulse ? PulseScaling : BaseAxisScaling).FromWire(reply.payload.axes);
    return status;
}

StatusInfo StationPositionVariableRead::Decode(StatusInfo status, IncomingPacket<Reply> const& reply,
                                               StationPositionVariableData& variable) const {
    TranslateInstanceError(status);
    variable = {};
    if (status.StatusCode != 0) {
        variable.variableIndex = index;
        return status;
    }
    variable.positionData.coordinateType = static_cast<CoordinateType>(reply.payload.coordinateType);
    variable.positionData.axes = PulseScaling.FromWire(reply.payload.axes);
    return status;
}

VariableWrite<BasePositionVariableMsg> WriteRequest(CommandNumber kind, BaseAxisPositionVariableData const& variable,
                                                    int rs22State) {
    PositionData const& position = variable.positionData;
    BasePositionVariableMsg message{.coordinateType = static_cast<std::uint32_t>(position.coordinateType)};
    // Written in Cartesian form only: pulses go out as zeros, on purpose, though they are read.
    if (position.coordinateType != CoordinateType::Pulse) {
        message.axes = BaseAxisScaling.ToWire(position.axes);
    }
    return {kind, variable.variableIndex, rs22State, message};
}

VariableWrite<StationPositionVariableMsg> WriteRequest(CommandNumber kind, StationPositionVariableData const& variable,
                                                       int rs22State) {
    // Pulses, whatever the record says.
    return {kind, variable.variableIndex, rs22State, {.axes = PulseScaling.ToWire(variable.positionData.axes)}};
}

VariableWrite<RobotPositionMsg> WriteRequest(CommandNumber kind, RobotPositionVariableData const& variable,
                                             int rs22State) {
    return {kind, variable.variableIndex, rs22State, ToRobotPositionMsg(variable.positionData)};
}

StatusInfo CheckRobotPositionWrite(PositionData const& position, int numberOfToolFiles) {
    if (position.coordinateType == CoordinateType::JointAngle) {
        return StatusInformation(ErrorStatusCodes::InvalidCoordinateType);
    }
    if (position.coordinateType == CoordinateType::Undefined) {
        return StatusInformation(undefinedCoordinateType, "Coordinate Type is undefined.");
    }
    if (!HelperFunction::DoesToolFileExist(numberOfToolFiles, position.toolNumber)) {
        return StatusInformation(toolFileMissing, "Tool File does not exist. Check tool number.");
    }
    if (position.coordinateType == CoordinateType::UserCoordinate &&
        (position.userCoordinateNumber < 1 || position.userCoordinateNumber > 63)) {
        return StatusInformation(userCoordinateNumberOutOfRange, "User Coordinate Number is out of range.");
    }
    return StatusInformation(ErrorStatusCodes::Ok);
}

} // namespace harvlink
