#pragma once

#include "harvlink/ControlCommandsInterface.h"
#include "wire/NetworkManager.h"

namespace harvlink {

class ControlCommandsImplementation final : public ControlCommandsInterface {
public:
    explicit ControlCommandsImplementation(NetworkManager* manager) : networkManager(manager) {}

    StatusInfo SetServos(SignalStatus state) override;
    StatusInfo SetHold(SignalStatus state) override;
    StatusInfo SetCycleMode(CycleMode mode) override;
    StatusInfo DisplayStringToPendant(std::string const& text) override;
    StatusInfo StartJob() override;

    /// Whether the controller is in remote mode; false too if it can't be asked.
    bool CheckExternalMode();

private:
    StatusInfo SwitchServos(SignalStatus state);

    NetworkManager* networkManager;
};

} // namespace harvlink
