#include "variables/PositionVariableImplementations.h"

#include "position/AxisScaling.h"
#include "position/RobotPosition.h"
#include "variables/VariableFunctions.h"
#include "wire/HelperFunction.h"

namespace harvlink {
namespace {

constexpr int undefinedCoordinateType = 3460;
constexpr int toolFileMissing = 0xB00D;
constexpr int userCoordinateNumberOutOfRange = 0xB00E;

} // namespace

StatusInfo RobotPositionVariableImplementation::Read(unsigned short index, RobotPositionVariableData& variable) {
    variable = {};
    StatusInfo status;
    auto const reply = VariableFunctions::GetVariable<RobotPositionMsg>(index, CommandNumber::RobotPositionVariable,
                                                                        status, networkManager, rs22State);
    variable.variableIndex = index;
    if (status.StatusCode == 0) {
        variable.positionData = FromRobotPositionMsg(reply.payload);
    }
    return status;
}

StatusInfo RobotPositionVariableImplementation::CheckWritable(PositionData const& position) const {
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

StatusInfo RobotPositionVariableImplementation::Write(RobotPositionVariableData const& variable) {
    if (StatusInfo status = CheckWritable(variable.positionData); status.StatusCode != 0) {
        return status;
    }
    return VariableFunctions::SetVariable(variable.variableIndex, CommandNumber::RobotPositionVariable,
                                          ToRobotPositionMsg(variable.positionData), networkManager, rs22State);
}

StatusInfo BasePositionVariableImplementation::Read(unsigned short index, BaseAxisPositionVariableData& variable) {
    variable = {};
    StatusInfo status;
    auto const reply = VariableFunctions::GetVariable<BasePositionVariableMsg>(
        index, CommandNumber::BasePositionVariable, status, networkManager, rs22State);
    if (status.StatusCode != 0) {
        variable.variableIndex = index;
        return status;
    }
    // The index of a successful read is 0, on purpose, unlike that of a robot position.
    PositionData& position = variable.positionData;
    position.coordinateType = static_cast<CoordinateType>(reply.payload.coordinateType);
    bool const isPulse = position.coordinateType == CoordinateType::Pulse;
    position.axes = (isPulse ? PulseScaling : BaseAxisScaling).FromWire(reply.payload.axes);
    return status;
}

StatusInfo BasePositionVariableImplementation::Write(BaseAxisPositionVariableData const& variable) {
    PositionData const& position = variable.positionData;
    BasePositionVariableMsg message;
    message.coordinateType = static_cast<std::uint32_t>(position.coordinateType);
    // Written in Cartesian form only: pulses go out as zeros, on purpose, though they are read.
    if (position.coordinateType != CoordinateType::Pulse) {
        message.axes = BaseAxisScaling.ToWire(position.axes);
    }
    return VariableFunctions::SetVariable(variable.variableIndex, CommandNumber::BasePositionVariable, message,
                                          networkManager, rs22State);
}

StatusInfo StationPositionVariableImplementation::Read(unsigned short index, StationPositionVariableData& variable) {
    variable = {};
    StatusInfo status;
    auto const reply = VariableFunctions::GetVariable<StationPositionVariableMsg>(
        index, CommandNumber::StationPositionVariable, status, networkManager, rs22State);
    if (status.StatusCode != 0) {
        variable.variableIndex = index;
        return status;
    }
    // The index of a successful read is 0 here too.
    variable.positionData.coordinateType = static_cast<CoordinateType>(reply.payload.coordinateType);
    variable.positionData.axes = PulseScaling.FromWire(reply.payload.axes);
    return status;
}

StatusInfo StationPositionVariableImplementation::Write(StationPositionVariableData const& variable) {
    // Pulses, whatever the record says.
    StationPositionVariableMsg const message{.axes = PulseScaling.ToWire(variable.positionData.axes)};
    return VariableFunctions::SetVariable(variable.variableIndex, CommandNumber::StationPositionVariable, message,
                                          networkManager, rs22State);
}

} // namespace harvlink
