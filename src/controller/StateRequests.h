#pragma once

#include <bitset>

#include "controller/StatusMessages.h"
#include "wire/Request.h"

namespace harvlink {

/// What the first state word says.
CycleMode RunningModeOf(std::bitset<8> const& firstWord);
ControllerStateData::ControlMode ControlModeOf(std::bitset<8> const& firstWord);

/// Sets hold, alarm, error and servo state from the second state word; the rest of `state` stays.
void SetHoldModes(std::bitset<8> const& secondWord, ControllerStateData& state);

struct StateRequest {
    using Reply = StatusInformationReturnData;
    static constexpr CommandNumber command = CommandNumber::StatusRead;
    static constexpr Service service = Service::ReadAll;
    static constexpr std::uint16_t instance = 1;

    static StatusInfo Decode(StatusInfo status, ReplyTo<StateRequest> const& reply, ControllerStateData& state);
};

/// Whether remote mode is on. False without an answer; the payload of a refusal counts like one.
struct RemoteModeRequest {
    using Reply = CheckControlModeReturnData;
    static constexpr CommandNumber command = CommandNumber::StatusRead;
    static constexpr Service service = Service::ReadOne;
    static constexpr std::uint16_t instance = 1;

    static StatusInfo Decode(StatusInfo status, ReplyTo<RemoteModeRequest> const& reply, bool& isRemote);
};

} // namespace harvlink
