#include "cli/watch/Reader.h"

#include <algorithm>
#include <bitset>
#include <iterator>
#include <map>
#include <utility>

#include "cli/output/Words.h"
#include "cli/program/VariableAccess.h"
#include "harvlink/ControlGroupInterface.h"
#include "harvlink/IOInterface.h"
#include "words/values/PositionText.h"

namespace harvlink::cli::watch {

namespace {

constexpr unsigned SignalsOfGroup = 10; ///< by address: two of them do not exist

bool IsStation(ControlGroupId group) {
    return group >= ControlGroupId::S1;
}

void ReadAxisNames(ControlGroupInterface& controlGroup, ControlGroupId id, GroupFrame& group) {
    std::array<char, 8> letters{};
    group.name = GroupName(id);
    // A group that can't tell its axes says so again with its position.
    if (controlGroup.ReadAxisConfiguration(id, letters).StatusCode == 0) {
        std::copy_if(letters.begin(), letters.end(), std::back_inserter(group.axes),
                     [](char letter) { return letter != '\0'; });
    }
}

StatusInfo ReadPosition(ControlGroupInterface& controlGroup, ControlGroupId group, CoordinateType type,
                        Reading<GroupFrame::Axes>& reading) {
    PositionData position;
    reading.status = controlGroup.ReadPositionData(group, type, 0, 0, position);
    reading.value = position.axes;
    return reading.status;
}

} // namespace

Reader::Reader(QuorvanController& robot, std::string host, Selection selection)
    : robot_(robot), selection_(std::move(selection)) {
    frame_.host = std::move(host);
}

StatusInfo Reader::Prepare() {
    SystemInfoData information;
    StatusInfo status = robot_.Status->ReadSystemInformation(SystemInfoId::Robot1, information);
    if (status.StatusCode != 0) {
        return status;
    }
    frame_.model = TrimField(information.modelName);
    frame_.software = TrimField(information.softwareVersion);
    for (SignalName const& name : selection_.signals) {
        status = ResolveSignals(*robot_.IO, name, signals_);
        if (status.StatusCode != 0) {
            return status;
        }
    }
    frame_.groups.resize(selection_.groups.size());
    for (std::size_t i = 0; i < frame_.groups.size(); ++i) {
        ReadAxisNames(*robot_.ControlGroup, selection_.groups[i], frame_.groups[i]);
    }
    return status;
}

Frame const& Reader::Look() {
    auto const start = std::chrono::steady_clock::now();
    silence_ = {};
    Frame next = frame_;
    if (ReadAll(next)) {
        next.time = std::chrono::system_clock::now();
        next.lost.reset();
        frame_ = std::move(next);
    } else if (silence_.StatusCode != 0) {
        frame_.lostSince = frame_.lost ? frame_.lostSince : std::chrono::system_clock::now();
        frame_.lost = silence_;
    }
    ++frame_.number;
    frame_.duration = std::chrono::steady_clock::now() - start;
    return frame_;
}

// Whether to go on with the look: not after a silence, which would come again with each thing that is asked for.
bool Reader::Went(StatusInfo const& status) {
    if (status.StatusCode == static_cast<int>(ErrorStatusCodes::ResponseTimeout)) {
        silence_ = status;
    }
    return silence_.StatusCode == 0 && !isStopped_;
}

bool Reader::ReadAll(Frame& frame) {
    frame.state.status = robot_.Status->ReadState(frame.state.value);
    if (!Went(frame.state.status)) {
        return false;
    }
    ReadAlarms(frame);
    if (Went(frame.alarms.status)) {
        frame.job.status = robot_.Job->GetExecutingJobInformation(TesselTaskNumber::Master, frame.job.value);
    }
    for (std::size_t i = 0; i < frame.groups.size() && Went(frame.job.status); ++i) {
        ReadGroup(frame.groups[i], selection_.groups[i]);
    }
    frame.variables.resize(selection_.variables.size());
    for (std::size_t i = 0; i < frame.variables.size() && Went({}); ++i) {
        VariableFrame& variable = frame.variables[i];
        variable.name = VariableName(selection_.variables[i]);
        variable.value.status = ReadVariable(*robot_.Variables, selection_.variables[i], variable.value.value);
        Went(variable.value.status);
    }
    ReadSignals(frame);
    return Went({});
}

// Four exchanges, which a controller without alarms is spared.
void Reader::ReadAlarms(Frame& frame) {
    frame.alarms = {};
    if (!frame.state.IsValid() || frame.state.value.isAlarming || frame.state.value.isErroring) {
        frame.alarms.status = robot_.Faults->GetActiveAlarms(frame.alarms.value);
    }
}

void Reader::ReadGroup(GroupFrame& group, ControlGroupId id) {
    ControlGroupInterface& controlGroup = *robot_.ControlGroup;
    if (!Went(ReadPosition(controlGroup, id, CoordinateType::Pulse, group.pulses))) {
        return;
    }
    if (!IsStation(id) && !Went(ReadPosition(controlGroup, id, CoordinateType::BaseCoordinate, group.base.emplace()))) {
        return;
    }
    TorqueData torque;
    group.torque.status = controlGroup.ReadTorqueData(id, torque);
    std::copy(torque.axes.begin(), torque.axes.end(), group.torque.value.begin());
    Went(group.torque.status);
}

// A group of eight comes with one exchange, however many of its signals are asked for.
void Reader::ReadSignals(Frame& frame) {
    std::map<unsigned, Reading<std::bitset<8>>> groups;
    frame.signals.resize(signals_.size());
    for (std::size_t i = 0; i < signals_.size() && Went({}); ++i) {
        unsigned const bit = signals_[i].address % SignalsOfGroup;
        auto const [found, isNew] = groups.try_emplace(signals_[i].address - bit);
        auto& [address, group] = *found;
        if (isNew) {
            group.status = robot_.IO->ReadByte(address, group.value);
            Went(group.status);
        }
        bool const exists = bit < group.value.size();
        frame.signals[i] = {signals_[i].name,
                            {exists ? group.status : StatusInformation(ErrorStatusCodes::InvalidBitValue),
                             exists && group.value.test(bit)}};
    }
}

} // namespace harvlink::cli::watch
