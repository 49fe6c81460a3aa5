#include "controller/StateRequests.h"

namespace harvlink {

CycleMode RunningModeOf(std::bitset<8> const& firstWord) {
    if (firstWord[0]) {
        return CycleMode::Step;
    }
    return firstWord[1] ? CycleMode::Cycle : CycleMode::Automatic;
}

ControllerStateData::ControlMode ControlModeOf(std::bitset<8> const& firstWord) {
    using enum ControllerStateData::ControlMode;
    if (firstWord[7]) {
        return Remote;
    }
    return firstWord[6] ? Play : Teach;
}

void SetHoldModes(std::bitset<8> const& secondWord, ControllerStateData& state) {
    state.isProgramPendantHold = secondWord[1] || secondWord[2] || secondWord[3];
    state.isAlarming = secondWord[4];
    state.isErroring = secondWord[5];
    state.isServoOn = secondWord[6];
}

StatusInfo StateRequest::Decode(StatusInfo status, ReplyTo<StateRequest> const& reply, ControllerStateData& state) {
    state = {};
    if (status.StatusCode == 0) {
        std::bitset<8> const first(reply.payload.first);
        state.cycleMode = RunningModeOf(first);
        state.isRunning = first[3];
        state.controlMode = ControlModeOf(first);
        SetHoldModes(reply.payload.second, state);
    }
    return status;
}

StatusInfo RemoteModeRequest::Decode(StatusInfo status, ReplyTo<RemoteModeRequest> const& reply, bool& isRemote) {
    constexpr std::uint32_t remoteModeBit = 1U << 7U;
    isRemote = (reply.payload.first & remoteModeBit) != 0;
    return status;
}

} // namespace harvlink
