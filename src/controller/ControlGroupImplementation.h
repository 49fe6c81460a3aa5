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

    /// The older road: pulses and base coordinates, with the active tool.
    PositionData HSEReadPositionData(ControlGroupId group, CoordinateType type, StatusInfo& status);

    /// The extended road: base, robot and user coordinates.
    PositionData UAPIReadPositionData(ControlGroupId group, CoordinateType type, unsigned short userCoordinateNumber,
                                      unsigned short toolNumber, StatusInfo& status);

    /// Tool first, then user coordinate number; `status` tells the first that is out of range.
    bool CheckInputs(int userCoordinateNumber, int toolNumber, StatusInfo& status);

private:
    template <typename In>
    IncomingPacket<In> Read(CommandNumber command, unsigned short instance, StatusInfo& status);
    bool CheckUAPIInputs(CoordinateType type, int userCoordinateNumber, int toolNumber, StatusInfo& status);

    NetworkManager* networkManager;
    static constexpr std::uint16_t robotCoordinateOffset = 100;
    std::int32_t toolFileCount;
};

} // namespace harvlink
