#include "controller/ControlCommandsImplementation.h"

#include "controller/ControlRequests.h"
#include "controller/StateRequests.h"
#include "wire/Guarded.h"

namespace harvlink {
namespace {

/// Raises the time-out while it lives.
class LongerTimeout {
public:
    explicit LongerTimeout(NetworkManager& manager) : engine(manager) { engine.IncreaseTimeout(); }
    LongerTimeout(LongerTimeout const&) = delete;
    LongerTimeout& operator=(LongerTimeout const&) = delete;
    ~LongerTimeout() { engine.ResetTimeout(); }

private:
    NetworkManager& engine;
};

} // namespace

StatusInfo ControlCommandsImplementation::SetServos(SignalStatus state) {
    return Guarded(*networkManager, [&] {
        StatusInfo result = SwitchServos(state);

        // Always asked, also after a success; the answer is not used, on purpose.
        CheckExternalMode();
        if (result.StatusCode != 0 && !CheckExternalMode()) {
            result.Message = "Unable to turn on servos. Remote Mode is not selected.";
        }
        return result;
    });
}

StatusInfo ControlCommandsImplementation::SwitchServos(SignalStatus state) {
    LongerTimeout const longer(*networkManager);
    return CarryOut(*networkManager, SwitchRequest{SwitchRequest::servos, state});
}

StatusInfo ControlCommandsImplementation::SetHold(SignalStatus state) {
    return Guarded(*networkManager, [&] {
        return CarryOut(*networkManager, SwitchRequest{SwitchRequest::hold, state});
    });
}

StatusInfo ControlCommandsImplementation::SetCycleMode(CycleMode mode) {
    return Guarded(*networkManager, [&] { return CarryOut(*networkManager, CycleModeRequest(mode)); });
}

StatusInfo ControlCommandsImplementation::DisplayStringToPendant(std::string const& text) {
    return Guarded(*networkManager, [&] { return CarryOut(*networkManager, PendantMessageRequest(text)); });
}

StatusInfo ControlCommandsImplementation::StartJob() {
    return Guarded(*networkManager, [&] { return CarryOut(*networkManager, JobStartRequest{}); });
}

bool ControlCommandsImplementation::CheckExternalMode() {
    bool isRemote = false;
    CarryOut(*networkManager, RemoteModeRequest{}, isRemote);
    return isRemote;
}

} // namespace harvlink
