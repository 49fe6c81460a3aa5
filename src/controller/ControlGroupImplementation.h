#pragma once

#include <cstdint>

#include "harvlink/ControlGroupInterface.h"
#include "wire/NetworkManager.h"

namespace harvlink {

class ControlGroupImplementation final : public ControlGroupInterface {
public:
    ControlGroupImplementation(NetworkManager* manager, int numberOfToolFiles)
        : networkManager(manager), toolFileCount(numberOfToolFiles) {}

    StatusInfo ReadPositionData(ControlGroupId group, CoordinateType type, unsigned char userCoordinateNumber,
                                unsigned char toolNumber, PositionData& position) override;
    StatusInfo ReadAxisConfiguration(ControlGroupId group, std::array<char, 8>& configuration) override;
    StatusInfo ReadPositionError(ControlGroupId group, PositionErrorData& data) override;
    StatusInfo ReadTorqueData(ControlGroupId group, TorqueData& data) override;

    /// Pulses and base coordinates with the active tool, by the command that every controller understands.
    PositionData HSEReadPositionData(ControlGroupId group, CoordinateType type, StatusInfo& status);

    /// Base, robot and user coordinates, by the extended command.
    PositionData UAPIReadPositionData(ControlGroupId group, CoordinateType type, unsigned short userCoordinateNumber,
                                      unsigned short toolNumber, StatusInfo& status);

    /// Tool first, then user coordinate number; `status` names the first that is out of range.
    bool CheckInputs(int userCoordinateNumber, int toolNumber, StatusInfo& status);

private:
    bool CheckUAPIInputs(CoordinateType type, int userCoordinateNumber, int toolNumber, StatusInfo& status);

    NetworkManager* networkManager;
    std::int32_t toolFileCount;
};

} // namespace harvlink
