#pragma once

#include <bitset>
#include <cstdint>
#include <string>

#include "controller/OperatingTimeRequest.h"
#include "harvlink/ControllerStateInterface.h"
#include "wire/NetworkManager.h"

namespace harvlink {

class StatusImplementation final : public ControllerStateInterface {
public:
    explicit StatusImplementation(NetworkManager* manager) : networkManager(manager) {}

    StatusInfo ReadState(ControllerStateData& state) override;
    StatusInfo ReadSystemInformation(SystemInfoId id, SystemInfoData& data) override;
    StatusInfo ReadOperatingTimes(ControlGroupId group, TimeType type, TimeData& data,
                                  ApplicationNumber application) override;
    StatusInfo ReadSystemParam(SystemParameterType type, int number, int& value) override;
    StatusInfo ReadSystemParam(SystemParameterType type, int number, int group, int& value) override;

    CycleMode GetRunningMode(std::bitset<8> const& firstWord) const;
    ControllerStateData::ControlMode GetControlMode(std::bitset<8> const& firstWord) const;

    /// Sets hold, alarm, error and servo state from the second state word.
    void GetHoldModes(std::bitset<8> const& secondWord, ControllerStateData& state) const;

    /// The instance that names a time counter, or InvalidTimeInstance.
    std::uint16_t GetTimeInstanceValue(ControlGroupId group, TimeType type, ApplicationNumber application) const;
    bool IsTimeTypeValid(TimeType type, ControlGroupId group) const;

    static constexpr std::uint16_t InvalidTimeInstance = NoTimeCounter;

private:
    StatusInfo ReadTimeCounter(OperatingTimeRequest const& request, TimeData& data);

    NetworkManager* networkManager;
};

namespace HelperFunction {

/// "Step", "Cycle", "Automatic"; empty for any other number.
std::string GetCycleModeStringFromEnum(CycleMode mode);

/// "Teach", "Play", "Remote"; empty for any other number.
std::string GetControlModeStringFromEnum(ControllerStateData::ControlMode mode);

} // namespace HelperFunction
} // namespace harvlink
