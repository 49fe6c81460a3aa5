#include "controller/ControlCommandsImplementation.h"

#include "controller/ControlRequests.h"
#include "controller/StateRequests.h"

namespace harvlink {

StatusInfo ControlCommandsImplementation::SetServos(SignalStatus state) {
    networkManager->IncreaseTimeout();
    StatusInfo result = CarryOut(*networkManager, SwitchRequest{SwitchRequest::servos, state});
    networkManager->ResetTimeout();

    // Always asked, also after a success; the answer is not used, on purpose.
    CheckExternalMode();
    if (result.StatusCode != 0 && !CheckExternalMode()) {
        result.Message = "Unable to turn on servos. Remote Mode is not selected.";
    }
    return result;
}

StatusInfo ControlCommandsImplementation::SetHold(SignalStatus state) {
    return CarryOut(*networkManager, SwitchRequest{SwitchRequest::hold, state});
}

StatusInfo ControlCommandsImplementation::SetCycleMode(CycleMode mode) {
    return CarryOut(*networkManager, CycleModeRequest(mode));
}

StatusInfo ControlCommandsImplementation::DisplayStringToPendant(std::string const& text) {
    return CarryOut(*networkManager, PendantMessageRequest(text));
}

StatusInfo ControlCommandsImplementation::StartJob() {
    return CarryOut(*networkManager, JobStartRequest{});
}

bool ControlCommandsImplementation::CheckExternalMode() {
    bool isRemote = false;
    CarryOut(*networkManager, RemoteModeRequest{}, isRemote);
    return isRemote;
}

} // namespace harvlink
