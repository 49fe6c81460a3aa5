#include "controller/StatusImplementation.h"

#include "controller/StatusMessages.h"
#include "wire/HelperFunction.h"
#include "wire/SystemInfoMessage.h"
#include "wire/SystemParameterMessage.h"

namespace harvlink {
namespace {

constexpr int invalidSystemInfoId = 45063;
constexpr int invalidInstance = 40961;
constexpr int invalidTimeParameter = 51200;
constexpr int unknownParameterGroup = 65535;
constexpr int unknownParameter = 65534;

constexpr std::string_view invalidTimeTypeText =
    "Invalid TimeType selected. An example of this may be selection of Station operating time when no station exists.";

bool IsRobot(ControlGroupId group) {
    return group >= ControlGroupId::R1 && group <= ControlGroupId::R8;
}

bool IsStation(ControlGroupId group) {
    return group >= ControlGroupId::S1 && group <= ControlGroupId::S24;
}

StatusInfo UnknownParameter() {
    return StatusInformation(ErrorStatusCodes::InvalidSystemParameter, "The system parameter requested is invalid");
}

/// What a time counter's type says of its group, and the base of its instance numbers.
struct TimeCounter {
    enum class Of : std::uint8_t { Everything, Robot, Station, Application };

    TimeType type;
    Of of;
    std::uint16_t base;
};

constexpr TimeCounter timeCounters[] = {
    {TimeType::ControlPower, TimeCounter::Of::Everything, 1},
    {TimeType::ServoPowerTotal, TimeCounter::Of::Everything, 10},
    {TimeType::ServoPowerRobot, TimeCounter::Of::Robot, 10},
    {TimeType::ServoPowerStation, TimeCounter::Of::Station, 10},
    {TimeType::PlaybackTotal, TimeCounter::Of::Everything, 110},
    {TimeType::PlaybackRobot, TimeCounter::Of::Robot, 110},
    {TimeType::PlaybackStation, TimeCounter::Of::Station, 110},
    {TimeType::MovingTotal, TimeCounter::Of::Everything, 210},
    {TimeType::MovingRobot, TimeCounter::Of::Robot, 210},
    {TimeType::MovingStation, TimeCounter::Of::Station, 210},
    {TimeType::Application, TimeCounter::Of::Application, 300},
};

TimeCounter const* FindTimeCounter(TimeType type, ControlGroupId group) {
    for (TimeCounter const& counter : timeCounters) {
        if (counter.type == type) {
            bool const fits = (counter.of != TimeCounter::Of::Robot || IsRobot(group)) &&
                              (counter.of != TimeCounter::Of::Station || IsStation(group));
            return fits ? &counter : nullptr;
        }
    }
    return nullptr;
}

} // namespace

StatusInfo StatusImplementation::ReadState(ControllerStateData& state) {
    state = {};
    StatusInfo status;
    auto const reply = networkManager->SimpleRequest<StatusInformationReturnData>(
        1, CommandNumber::StatusRead, status, FixedField::WholeRecord, ServiceReadAll);
    if (status.StatusCode != 0) {
        return status;
    }
    std::bitset<8> const first(reply.payload.first);
    state.cycleMode = GetRunningMode(first);
    state.isRunning = first[3];
    state.controlMode = GetControlMode(first);
    GetHoldModes(reply.payload.second, state);
    return status;
}

CycleMode StatusImplementation::GetRunningMode(std::bitset<8> const& firstWord) const {
    if (firstWord[0]) {
        return CycleMode::Step;
    }
    return firstWord[1] ? CycleMode::Cycle : CycleMode::Automatic;
}

ControllerStateData::ControlMode StatusImplementation::GetControlMode(std::bitset<8> const& firstWord) const {
    using enum ControllerStateData::ControlMode;
    if (firstWord[7]) {
        return Remote;
    }
    return firstWord[6] ? Play : Teach;
}

void StatusImplementation::GetHoldModes(std::bitset<8> const& secondWord, ControllerStateData& state) const {
    state.isProgramPendantHold = secondWord[1] || secondWord[2] || secondWord[3];
    state.isAlarming = secondWord[4];
    state.isErroring = secondWord[5];
    state.isServoOn = secondWord[6];
}

StatusInfo StatusImplementation::ReadSystemInformation(SystemInfoId id, SystemInfoData& data) {
    data = {};
    StatusInfo status;
    auto const reply = networkManager->SimpleRequest<SystemInfoReturnMsg>(static_cast<std::uint16_t>(id),
                                                                          CommandNumber::SystemInformationRead, status,
                                                                          FixedField::WholeRecord, ServiceReadAll);
    if (status.StatusCode == invalidSystemInfoId) {
        return StatusInformation(invalidSystemInfoId, "The system ID requested is invalid");
    }
    if (status.StatusCode == 0) {
        data.softwareVersion.assign(reply.payload.softwareVersion.begin(), reply.payload.softwareVersion.end());
        data.modelName.assign(reply.payload.modelName.begin(), reply.payload.modelName.end());
    }
    return status;
}

std::uint16_t StatusImplementation::GetTimeInstanceValue(ControlGroupId group, TimeType type,
                                                         ApplicationNumber application) const {
    TimeCounter const* const counter = FindTimeCounter(type, group);
    if (counter == nullptr) {
        return InvalidTimeInstance;
    }
    switch (counter->of) {
    case TimeCounter::Of::Robot:
        return static_cast<std::uint16_t>(static_cast<int>(group) + counter->base);
    case TimeCounter::Of::Station:
        return static_cast<std::uint16_t>(static_cast<int>(group) - stationGroupBase + counter->base);
    case TimeCounter::Of::Application:
        return static_cast<std::uint16_t>(static_cast<unsigned>(application) + counter->base);
    default:
        return counter->base;
    }
}

bool StatusImplementation::IsTimeTypeValid(TimeType type, ControlGroupId group) const {
    return FindTimeCounter(type, group) != nullptr;
}

StatusInfo StatusImplementation::ReadOperatingTimes(ControlGroupId group, TimeType type, TimeData& data,
                                                    ApplicationNumber application) {
    data = {};
    std::uint16_t const instance = GetTimeInstanceValue(group, type, application);
    if (instance == InvalidTimeInstance) {
        return StatusInformation(invalidInstance, invalidTimeTypeText);
    }
    StatusInfo status;
    auto const reply = networkManager->SimpleRequest<TimeReturnMsg>(instance, CommandNumber::OperatingTimeRead, status,
                                                                    FixedField::WholeRecord, ServiceReadAll);
    if (status.StatusCode == 0) {
        data = reply.payload;
    } else if (status.StatusCode == invalidTimeParameter) {
        status.Message = "Invalid parameter. Check controlGroupId and ensure that it exists on your controller.";
    } else if (status.StatusCode == invalidInstance) {
        status.Message = invalidTimeTypeText;
    }
    return status;
}

StatusInfo StatusImplementation::ReadSystemParam(SystemParameterType type, int number, int group, int& value) {
    value = 0;
    if (!HelperFunction::CheckUAPICompatible(networkManager->controllerVersion)) {
        return StatusInformation(ErrorStatusCodes::UnsupportedOnThisController);
    }
    SytemParamMsgOut const request{static_cast<std::uint32_t>(type), static_cast<std::uint32_t>(group),
                                   static_cast<std::uint32_t>(number)};
    StatusInfo status;
    auto const reply = networkManager->RecordRequest<std::int32_t>(request, 0, CommandNumber::SystemParameterRead,
                                                                   status, FixedField::WholeRecord, ServiceReadAll);
    if (status.StatusCode == unknownParameterGroup) {
        return StatusInformation(ErrorStatusCodes::InvalidSystemParameterGroup,
                                 "The system parameter group is invalid");
    }
    if (status.StatusCode == unknownParameter) {
        return UnknownParameter();
    }
    if (status.StatusCode == 0) {
        value = reply.payload;
    }
    return status;
}

StatusInfo StatusImplementation::ReadSystemParam(SystemParameterType type, int number, int& value) {
    value = 0;
    using enum SystemParameterType;
    if (type == S1C || type == S1E || type == S2E) {
        return StatusInformation(
            ErrorStatusCodes::SystemParameterNeedsGroup,
            "This parameter type requires a group to be specified, use the other overload for this function.");
    }
    ControllerStateInterface& self = *this;
    StatusInfo status = self.ReadSystemParam(type, number, 0, value);
    // The overload has turned this code already; a second check.
    return status.StatusCode == unknownParameter ? UnknownParameter() : status;
}

} // namespace harvlink
