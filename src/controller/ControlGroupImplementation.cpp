#include "controller/ControlGroupImplementation.h"

#include <algorithm>

#include "controller/ControlGroupMessages.h"
#include "position/RobotPosition.h"
#include "status/ErrorTables.h"
#include "status/GetStatusInfo.h"
#include "wire/HelperFunction.h"

namespace harvlink {
namespace {

constexpr int toolNumberOutOfRange = 45069;
constexpr int userCoordinateNumberOutOfRange = 45070;

void ApplyControlGroupTable(StatusInfo& status) {
    HelperFunction::GetStatusInfo(status, ControlGroupErrorTable, ControlGroupErrorOffset);
}

StatusInfo InvalidType() {
    return StatusInformation(ErrorStatusCodes::InvalidCoordinateType,
                             "Coordinate type is not valid for position data retrieval.");
}

std::uint16_t CoordinateSelector(CoordinateType type, unsigned short userCoordinateNumber) {
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

template <typename In>
IncomingPacket<In> ControlGroupImplementation::Read(CommandNumber command, unsigned short instance,
                                                    StatusInfo& status) {
    return networkManager->SimpleRequest<In>(instance, command, status, FixedField::WholeRecord, ServiceReadAll);
}

StatusInfo ControlGroupImplementation::ReadPositionData(ControlGroupId group, CoordinateType type,
                                                        unsigned char userCoordinateNumber, unsigned char toolNumber,
                                                        PositionData& position) {
    position = {};
    StatusInfo status = StatusInformation(ErrorStatusCodes::Ok);
    if (!networkManager->IsControlGroupAttached(group)) {
        return StatusInformation(ErrorStatusCodes::ControlGroupNotAttached);
    }
    bool const isOlder = networkManager->controllerVersion < ControllerVersion::VersionYA;
    if (toolNumber != 0 && isOlder) {
        return StatusInformation(ErrorStatusCodes::ActiveToolOnly,
                                 "This controller generation only returns position data for the active tool. Please "
                                 "pass 0 for the tool selection.");
    }
    position = type == CoordinateType::Pulse || isOlder
                   ? HSEReadPositionData(group, type, status)
                   : UAPIReadPositionData(group, type, userCoordinateNumber, toolNumber, status);
    if (status.StatusCode != 0) {
        ApplyControlGroupTable(status);
        return status;
    }
    if (type == CoordinateType::UserCoordinate) {
        ++position.userCoordinateNumber;
    }
    if (networkManager->GetNumberOfAxesInGroup(group) != position.axes.size()) {
        position.axes.back() = 0.0;
    }
    return status;
}

PositionData ControlGroupImplementation::HSEReadPositionData(ControlGroupId group, CoordinateType type,
                                                             StatusInfo& status) {
    if (type != CoordinateType::Pulse && type != CoordinateType::BaseCoordinate) {
        status = InvalidType();
        return {};
    }
    int const offset = type == CoordinateType::BaseCoordinate ? robotCoordinateOffset : 0;
    auto const instance = static_cast<std::uint16_t>(static_cast<int>(group) + offset);
    // What a refusal carries is converted too.
    return FromRobotPositionMsg(Read<RobotPositionMsg>(CommandNumber::RobotPositionRead, instance, status).payload);
}

PositionData ControlGroupImplementation::UAPIReadPositionData(ControlGroupId group, CoordinateType type,
                                                              unsigned short userCoordinateNumber,
                                                              unsigned short toolNumber, StatusInfo& status) {
    if (!CheckUAPIInputs(type, userCoordinateNumber, toolNumber, status)) {
        return {};
    }
    UAPIGetPositionSendData request;
    request.group = GroupAddress(group);
    request.coordinateSelector = CoordinateSelector(type, userCoordinateNumber);
    request.toolNumber = toolNumber;
    auto const reply = networkManager->RecordRequest<UAPIGetPositionRecvData>(
        request, 0, CommandNumber::UAPIPositionRead, status, FixedField::WholeRecord, ServiceReadAll);
    if (status.StatusCode != 0) {
        ApplyControlGroupTable(status);
        return {};
    }
    return reply.payload;
}

bool ControlGroupImplementation::CheckUAPIInputs(CoordinateType type, int userCoordinateNumber, int toolNumber,
                                                 StatusInfo& status) {
    switch (type) {
    case CoordinateType::UserCoordinate:
        return CheckInputs(userCoordinateNumber, toolNumber, status);
    case CoordinateType::RobotCoordinate:
    case CoordinateType::BaseCoordinate:
        // A tool out of range leaves the status alone here, on purpose.
        return HelperFunction::DoesToolFileExist(toolFileCount, toolNumber);
    default:
        status = InvalidType();
        return false;
    }
}

bool ControlGroupImplementation::CheckInputs(int userCoordinateNumber, int toolNumber, StatusInfo& status) {
    if (!HelperFunction::DoesToolFileExist(toolFileCount, toolNumber)) {
        status = StatusInformation(toolNumberOutOfRange, "Tool Number is out of range.");
        return false;
    }
    if (userCoordinateNumber < 1 || userCoordinateNumber > 63) {
        status = StatusInformation(userCoordinateNumberOutOfRange, "User Coordinate Number is out of range.");
        return false;
    }
    return true;
}

StatusInfo ControlGroupImplementation::ReadAxisConfiguration(ControlGroupId group, std::array<char, 8>& configuration) {
    configuration = {};
    StatusInfo status;
    auto const reply =
        Read<AxisConfigurationDataMsg>(CommandNumber::AxisConfigurationRead, static_cast<std::uint16_t>(group), status);
    if (status.StatusCode != 0) {
        ApplyControlGroupTable(status);
        return status;
    }
    std::ranges::transform(reply.payload.axisNames, configuration.begin(),
                           [](std::uint32_t word) { return static_cast<char>(word & 0xff); });
    return status;
}

StatusInfo ControlGroupImplementation::ReadPositionError(ControlGroupId group, PositionErrorData& data) {
    data = {};
    StatusInfo status;
    auto const reply =
        Read<PositionErrorData>(CommandNumber::PositionErrorRead, static_cast<std::uint16_t>(group), status);
    if (status.StatusCode != 0) {
        ApplyControlGroupTable(status);
        return status;
    }
    data = reply.payload;
    return status;
}

StatusInfo ControlGroupImplementation::ReadTorqueData(ControlGroupId group, TorqueData& data) {
    data = {.controlGroup = ControlGroupId::R1};
    StatusInfo status;
    // What a refusal carries is handed out too, unlike in the other reads.
    data.axes = Read<WireAxes>(CommandNumber::TorqueRead, static_cast<std::uint16_t>(group), status).payload;
    ApplyControlGroupTable(status);
    return status;
}

} // namespace harvlink
