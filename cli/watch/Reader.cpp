#include "cli/watch/Reader.h"

#include <algorithm>
#include <bitset>
#include <iterator>
#include <map>
#include <utility>

#include "cli/output/Words.h"
#include "cli/program/RepeatedRead.h"
#include "cli/program/VariableAccess.h"
#include "harvlink/ControlGroupInterface.h"
#include "harvlink/IOInterface.h"
#include "words/text/Encoding.h"
#include "words/values/PositionText.h"

namespace harvlink::cli::watch {

namespace {

constexpr unsigned SignalsOfGroup = 10; ///< by address: two of them do not exist

bool IsStation(ControlGroupId group) {
    return group >= ControlGroupId::S1;
}

void ReadAxisNames(ControlGroupInterface& controlGroup, ControlGroupId id, GroupSample& group) {
    std::array<char, 8> letters{};
    group.name = GroupName(id);
    // A group without an axis configuration fails again with its position, which is where the user sees it.
    if (controlGroup.ReadAxisConfiguration(id, letters).StatusCode == 0) {
        std::copy_if(letters.begin(), letters.end(), std::back_inserter(group.axes),
                     [](char letter) { return letter != '\0'; });
    }
}

StatusInfo ReadPosition(ControlGroupInterface& controlGroup, ControlGroupId group, CoordinateType type,
                        Reading<GroupSample::Axes>& reading) {
    PositionData position;
    reading.status = controlGroup.ReadPositionData(group, type, 0, 0, position);
    reading.value = position.axes;
    return reading.status;
}

} // namespace

Reader::Reader(QuorvanController& robot, std::string host, Selection selection)
    : robot_(robot), selection_(std::move(selection)) {
    sample_.host = std::move(host);
}

StatusInfo Reader::Prepare() {
    SystemInfoData information;
    StatusInfo status = robot_.Status->ReadSystemInformation(SystemInfoId::Robot1, information);
    if (status.StatusCode != 0) {
        return status;
    }
    sample_.model = ControllerText(information.modelName);
    sample_.software = ControllerText(information.softwareVersion);
    for (SignalName const& name : selection_.signals) {
        status = ResolveSignals(*robot_.IO, name, signals_);
        if (status.StatusCode != 0) {
            return status;
        }
    }
    sample_.groups.resize(selection_.groups.size());
    for (std::size_t i = 0; i < sample_.groups.size(); ++i) {
        ReadAxisNames(*robot_.ControlGroup, selection_.groups[i], sample_.groups[i]);
    }
    return status;
}

Sample const& Reader::Read() {
    auto const start = std::chrono::steady_clock::now();
    silence_ = {};
    Sample next = sample_;
    if (ReadAll(next)) {
        next.time = std::chrono::system_clock::now();
        next.lost.reset();
        sample_ = std::move(next);
    } else if (silence_.StatusCode != 0) {
        sample_.lostSince = sample_.lost ? sample_.lostSince : std::chrono::system_clock::now();
        sample_.lost = silence_;
    }
    ++sample_.number;
    sample_.duration = std::chrono::steady_clock::now() - start;
    return sample_;
}

// Whether to go on reading. After a time-out each further read would only wait for another one.
bool Reader::IsAnswered(StatusInfo const& status) {
    if (IsSilence(status)) {
        silence_ = status;
    }
    return silence_.StatusCode == 0 && !isStopped_;
}

bool Reader::ReadAll(Sample& sample) {
    sample.state.status = robot_.Status->ReadState(sample.state.value);
    if (!IsAnswered(sample.state.status)) {
        return false;
    }
    ReadAlarms(sample);
    if (IsAnswered(sample.alarms.status)) {
        sample.job.status = robot_.Job->GetExecutingJobInformation(TesselTaskNumber::Master, sample.job.value);
    }
    for (std::size_t i = 0; i < sample.groups.size() && IsAnswered(sample.job.status); ++i) {
        ReadGroup(sample.groups[i], selection_.groups[i]);
    }
    sample.variables.resize(selection_.variables.size());
    for (std::size_t i = 0; i < sample.variables.size() && IsAnswered({}); ++i) {
        VariableSample& variable = sample.variables[i];
        variable.name = VariableName(selection_.variables[i]);
        variable.value.status = ReadVariable(*robot_.Variables, selection_.variables[i], variable.value.value);
        IsAnswered(variable.value.status);
    }
    ReadSignals(sample);
    return IsAnswered({});
}

// Alarms take four exchanges, so they are read only if the state shows some.
void Reader::ReadAlarms(Sample& sample) {
    sample.alarms = {};
    if (!sample.state.IsValid() || sample.state.value.isAlarming || sample.state.value.isErroring) {
        sample.alarms.status = robot_.Faults->GetActiveAlarms(sample.alarms.value);
    }
}

void Reader::ReadGroup(GroupSample& group, ControlGroupId id) {
    ControlGroupInterface& controlGroup = *robot_.ControlGroup;
    if (!IsAnswered(ReadPosition(controlGroup, id, CoordinateType::Pulse, group.pulses))) {
        return;
    }
    if (!IsStation(id) &&
        !IsAnswered(ReadPosition(controlGroup, id, CoordinateType::BaseCoordinate, group.base.emplace()))) {
        return;
    }
    TorqueData torque;
    group.torque.status = controlGroup.ReadTorqueData(id, torque);
    std::copy(torque.axes.begin(), torque.axes.end(), group.torque.value.begin());
    IsAnswered(group.torque.status);
}

// One exchange reads a group of eight, however many of its signals are wanted.
void Reader::ReadSignals(Sample& sample) {
    std::map<unsigned, Reading<std::bitset<8>>> groups;
    sample.signals.resize(signals_.size());
    for (std::size_t i = 0; i < signals_.size() && IsAnswered({}); ++i) {
        unsigned const bit = signals_[i].address % SignalsOfGroup;
        auto const [found, isNew] = groups.try_emplace(signals_[i].address - bit);
        auto& [address, group] = *found;
        if (isNew) {
            group.status = robot_.IO->ReadByte(address, group.value);
            IsAnswered(group.status);
        }
        bool const exists = bit < group.value.size();
        sample.signals[i] = {signals_[i].name,
                             {exists ? group.status : StatusInformation(ErrorStatusCodes::InvalidBitValue),
                              exists && group.value.test(bit)}};
    }
}

} // namespace harvlink::cli::watch
