#include "controller/StatusImplementation.h"

#include <stdexcept>

#include "controller/OperatingTimeRequest.h"
#include "controller/StateRequests.h"
#include "controller/SystemRequests.h"
#include "wire/Guarded.h"
#include "wire/HelperFunction.h"

namespace harvlink {

StatusInfo StatusImplementation::ReadState(ControllerStateData& state) {
    return Guarded(*networkManager, state, [&] { return CarryOut(*networkManager, StateRequest{}, state); });
}

CycleMode StatusImplementation::GetRunningMode(std::bitset<8> const& firstWord) const {
    return RunningModeOf(firstWord);
}

ControllerStateData::ControlMode StatusImplementation::GetControlMode(std::bitset<8> const& firstWord) const {
    return ControlModeOf(firstWord);
}

void StatusImplementation::GetHoldModes(std::bitset<8> const& secondWord, ControllerStateData& state) const {
    SetHoldModes(secondWord, state);
}

StatusInfo StatusImplementation::ReadSystemInformation(SystemInfoId id, SystemInfoData& data) {
    return Guarded(*networkManager, data,
                   [&] { return CarryOut(*networkManager, SystemInformationRequest(id), data); });
}

std::uint16_t StatusImplementation::GetTimeInstanceValue(ControlGroupId group, TimeType type,
                                                         ApplicationNumber application) const {
    return TimeCounterInstance(group, type, application);
}

bool StatusImplementation::IsTimeTypeValid(TimeType type, ControlGroupId group) const {
    return HasTimeCounter(type, group);
}

StatusInfo StatusImplementation::ReadOperatingTimes(ControlGroupId group, TimeType type, TimeData& data,
                                                    ApplicationNumber application) {
    return Guarded(*networkManager, data, [&] {
        data = {};
        std::uint16_t const instance = TimeCounterInstance(group, type, application);
        return instance == NoTimeCounter ? NoSuchTimeCounter() : ReadTimeCounter({instance}, data);
    });
}

StatusInfo StatusImplementation::ReadTimeCounter(OperatingTimeRequest const& request, TimeData& data) {
    try {
        return CarryOut(*networkManager, request, data);
    } catch (std::logic_error const&) {
        if (!networkManager->Policy().Enforces(Rule::NoExceptions)) {
            throw;
        }
        networkManager->Refuses(Rule::NoExceptions);
        return NamingRule(StatusInformation(ErrorStatusCodes::UnreadableTime), Rule::NoExceptions);
    }
}

StatusInfo StatusImplementation::ReadSystemParam(SystemParameterType type, int number, int group, int& value) {
    return Guarded(*networkManager, value, [&]() -> StatusInfo {
        value = 0;
        if (!HelperFunction::CheckUAPICompatible(networkManager->controllerVersion)) {
            return StatusInformation(ErrorStatusCodes::UnsupportedOnThisController);
        }
        return CarryOut(*networkManager, ParameterRequest(type, number, group), value);
    });
}

StatusInfo StatusImplementation::ReadSystemParam(SystemParameterType type, int number, int& value) {
    return Guarded(*networkManager, value, [&]() -> StatusInfo {
        value = 0;
        using enum SystemParameterType;
        if (type == S1C || type == S1E || type == S2E) {
            return StatusInformation(
                ErrorStatusCodes::SystemParameterNeedsGroup,
                "This parameter type requires a group to be specified, use the other overload for this function.");
        }
        ControllerStateInterface& self = *this;
        return self.ReadSystemParam(type, number, 0, value);
    });
}

} // namespace harvlink
