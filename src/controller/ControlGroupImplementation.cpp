#include "controller/ControlGroupImplementation.h"

#include "controller/ControlGroupRequests.h"
#include "controller/PositionRequests.h"
#include "wire/Guarded.h"
#include "wire/HelperFunction.h"

namespace harvlink {
namespace {

constexpr int toolNumberOutOfRange = 45069;
constexpr int userCoordinateNumberOutOfRange = 45070;

} // namespace

StatusInfo ControlGroupImplementation::ReadPositionData(ControlGroupId group, CoordinateType type,
                                                        unsigned char userCoordinateNumber, unsigned char toolNumber,
                                                        PositionData& position) {
    return Guarded(*networkManager, position, [&]() -> StatusInfo {
        position = {};
        StatusInfo status = StatusInformation(ErrorStatusCodes::Ok);
        if (!networkManager->IsControlGroupAttached(group)) {
            return StatusInformation(ErrorStatusCodes::ControlGroupNotAttached);
        }
        if (toolNumber != 0 && networkManager->controllerVersion < ControllerVersion::VersionYA) {
            return StatusInformation(
                ErrorStatusCodes::ActiveToolOnly,
                "This controller generation only returns position data for the active tool. Please "
                "pass 0 for the tool selection.");
        }
        if (!IsReadByRobotPosition(type, networkManager->controllerVersion) &&
            !CheckUAPIInputs(type, userCoordinateNumber, toolNumber, status)) {
            return status;
        }
        return CarryOutPosition(*networkManager, group, type, userCoordinateNumber, toolNumber, position);
    });
}

PositionData ControlGroupImplementation::HSEReadPositionData(ControlGroupId group, CoordinateType type,
                                                             StatusInfo& status) {
    PositionData position;
    status = CarryOutRobotPosition(*networkManager, group, type, position);
    return position;
}

PositionData ControlGroupImplementation::UAPIReadPositionData(ControlGroupId group, CoordinateType type,
                                                              unsigned short userCoordinateNumber,
                                                              unsigned short toolNumber, StatusInfo& status) {
    PositionData position;
    if (CheckUAPIInputs(type, userCoordinateNumber, toolNumber, status)) {
        status =
            CarryOut(*networkManager, ExtendedPositionRequest(group, type, userCoordinateNumber, toolNumber), position);
    }
    return position;
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
        status = InvalidPositionType();
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
    return Guarded(*networkManager, configuration,
                   [&] { return CarryOut(*networkManager, AxisConfigurationRequest(group), configuration); });
}

StatusInfo ControlGroupImplementation::ReadPositionError(ControlGroupId group, PositionErrorData& data) {
    return Guarded(*networkManager, data, [&] { return CarryOut(*networkManager, PositionErrorRequest(group), data); });
}

StatusInfo ControlGroupImplementation::ReadTorqueData(ControlGroupId group, TorqueData& data) {
    return Guarded(*networkManager, [&] {
        data = {.controlGroup = ControlGroupId::R1}; // what a failure leaves
        return CarryOut(*networkManager, TorqueRequest(group), data);
    });
}

} // namespace harvlink
