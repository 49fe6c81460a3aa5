#include "Operations.h"

#include <bitset>
#include <sstream>
#include <stdexcept>

#include "harvlink/harvlink.h"
#include "motion/MotionManager.h"

namespace harvlink::fuzz {
namespace {

template <typename Value>
std::string Text(Value const& value) {
    std::ostringstream stream;
    stream << value;
    return stream.str();
}

bool Succeeded(StatusInfo const& status) {
    Require(!status.Message.empty() && !Text(status).empty(), "a status has a text");
    return status.StatusCode == 0;
}

/// A record can be printed, and is empty after a failed read.
template <typename Record, typename Read>
void CheckRead(Read const& read, Record record = {}) {
    bool const succeeded = Succeeded(read(record));
    Require(Text(record) == Text(Record{}) || succeeded, "a failed read leaves an empty record");
}

/// A failed read resets the value, whatever it was before.
template <typename Value, typename Read>
void CheckCleared(Value before, Read const& read) {
    bool const succeeded = Succeeded(read(before));
    Require(succeeded || before == Value{}, "a failed read clears its output");
}

template <typename Record>
void CheckVariable(VariableInterface<Record>& variables, Arguments const& with, bool returnsIndex = true) {
    Record record;
    bool const succeeded = Succeeded(variables.Read(with.index, record));
    Record empty;
    empty.variableIndex = succeeded && !returnsIndex ? std::uint16_t{0} : with.index;
    Require(record.variableIndex == empty.variableIndex, "the record has the requested index");
    Require(succeeded || Text(record) == Text(empty), "a failed read leaves an empty variable");
    Succeeded(variables.Write(record));
}

PositionData PositionOf(Arguments const& with) {
    PositionData position{.coordinateType = static_cast<CoordinateType>(with.type)};
    position.toolNumber = with.tool;
    position.userCoordinateNumber = with.bit;
    position.axes.fill(with.size);
    return position;
}

CircularMotion MotionOf(Arguments const& with) {
    CircularMotion motion;
    motion.controlGroup = static_cast<ControlGroupId>(with.group);
    motion.moveType = static_cast<MoveInterpolationType>(with.bit % 4);
    motion.speed = with.tool + 1.0;
    motion.accelerationRatio = with.size % 100;
    motion.position = PositionOf(with);
    return motion;
}

ControlGroupId GroupOf(Arguments const& with) {
    return static_cast<ControlGroupId>(with.group);
}

IOType SignalsOf(Arguments const& with) {
    return static_cast<IOType>(with.type);
}

unsigned AddressOf(Arguments const& with) {
    return with.index * 10U + with.bit;
}

std::string FileNameOf(Arguments const& with) {
    constexpr std::array names{"TEST.JBI", "a.dat", "TOOL.CND", "RS.PRM", "SYSTEM.SYS", "X.LST", "NONE", ""};
    return names.at(with.type % names.size());
}

void CheckState(Session& session, Arguments const& with) {
    auto& states = *session.robot.Status;
    auto const type = static_cast<SystemParameterType>(with.type);
    CheckRead<ControllerStateData>([&](auto& state) { return states.ReadState(state); });
    CheckRead<SystemInfoData>(
        [&](auto& data) { return states.ReadSystemInformation(static_cast<SystemInfoId>(with.index), data); });
    CheckCleared(1, [&](int& value) { return states.ReadSystemParam(type, with.index, value); });
    CheckCleared(1, [&](int& value) { return states.ReadSystemParam(type, with.index, with.group, value); });
}

void CheckOperatingTimes(Session& session, Arguments const& with) {
    try {
        CheckRead<TimeData>([&](TimeData& data) {
            return session.robot.Status->ReadOperatingTimes(GroupOf(with), static_cast<TimeType>(with.index), data,
                                                            static_cast<ApplicationNumber>(with.type));
        });
    } catch (std::logic_error const&) { // documented: the answer does not contain a valid time
    }
}

void CheckControlGroup(Session& session, Arguments const& with) {
    auto& groups = *session.robot.ControlGroup;
    PositionData position;
    Succeeded(
        groups.ReadPositionData(GroupOf(with), static_cast<CoordinateType>(with.type), with.bit, with.tool, position));
    CheckCleared(std::array<char, 8>{'S'},
                 [&](auto& names) { return groups.ReadAxisConfiguration(GroupOf(with), names); });
    CheckRead<PositionErrorData>([&](auto& data) { return groups.ReadPositionError(GroupOf(with), data); });
    TorqueData torque;
    Succeeded(groups.ReadTorqueData(GroupOf(with), torque));
    Require(torque.controlGroup == ControlGroupId::R1, "the group of torque is always R1");
    Require(!Text(position).empty() && !Text(torque).empty(), "positions and torque print");
}

void CheckScalarVariables(Session& session, Arguments const& with) {
    auto& variables = *session.robot.Variables;
    CheckVariable(*variables.byteVariable, with);
    CheckVariable(*variables.integerVariable, with);
    CheckVariable(*variables.doubleIntVariable, with);
    CheckVariable(*variables.realVariable, with);
}

void CheckTextAndPositionVariables(Session& session, Arguments const& with) {
    auto& variables = *session.robot.Variables;
    CheckVariable(*variables.stringVariable, with);
    CheckVariable(*variables.robotPositionVariable, with);
    CheckVariable(*variables.basePositionVariable, with, false);
    CheckVariable(*variables.stationPositionVariable, with, false);
}

void CheckActiveAlarms(Session& session, Arguments const& /*with*/) {
    ActiveAlarms alarms;
    Succeeded(session.robot.Faults->GetActiveAlarms(alarms));
    auto const filled = std::ranges::count_if(alarms.alarms, [](AlarmData const& alarm) { return alarm.code != 0; });
    Require(alarms.numberOfAlarms == static_cast<std::uint32_t>(filled), "the number counts the filled places");
    Require(!Text(alarms).empty(), "alarms print");
    Succeeded(session.robot.Faults->ClearAllFaults());
}

void CheckAlarmHistory(Session& session, Arguments const& with) {
    AlarmHistory history;
    auto const category = static_cast<AlarmCategory>(with.type % 6 * 1000);
    bool const succeeded = Succeeded(session.robot.Faults->GetAlarmHistory(category, with.size, history));
    auto const count = history.numberOfAlarms;
    Require(count <= 100 && count <= with.size, "at most as many entries as requested");
    Require(!succeeded || count == 100 || count == with.size || history.alarms.at(count).code == 0,
            "the list ends at the first empty entry");
    Require(!Text(history).empty(), "the history prints");
}

void CheckJobs(Session& session, Arguments const& with) {
    auto const task = static_cast<TesselTaskNumber>(with.type);
    Succeeded(session.robot.Job->SetActiveJob(FileNameOf(with), with.size));
    CheckRead<JobData>([&](auto& data) { return session.robot.Job->GetExecutingJobInformation(task, data); });
    std::vector<std::string> jobs;
    bool const succeeded = Succeeded(session.robot.Job->GetJobStack(task, jobs));
    Require(jobs.size() <= 12 && (succeeded || jobs.empty()), "at most twelve jobs, none after a failure");
    Require(std::ranges::all_of(jobs, [](std::string const& job) { return job.size() == 33; }), "whole fields");
}

void CheckLoad(Session& session, Arguments const& with) {
    std::string const text = "/JOB\r\n//NAME TEST\r\n" + std::string(with.size, '.');
    Succeeded(session.robot.Files->LoadToControllerFromString(FileNameOf(with), text));
    Require(session.transport->sent.size() <= text.size() / FileBlockSize + 2, "one datagram for each block");
}

void CheckSave(Session& session, Arguments const& with) {
    std::string text = "old";
    Succeeded(session.robot.Files->SaveFromControllerToString(FileNameOf(with), text));
    Require(text.find('\0') == std::string::npos, "text has no zero bytes");
    Require(text.size() <= session.transport->sent.size() * FileBlockSize, "no more text than blocks");
}

void CheckList(Session& session, Arguments const& with) {
    auto& files = *session.robot.Files;
    auto const type = static_cast<FileType>(with.type);
    std::vector<std::string> names{"old"};
    bool const isSorted = with.bit % 2 != 0;
    bool const succeeded = Succeeded(files.ListFiles(type, names, isSorted));
    Require(succeeded || names.empty(), "a failed listing is empty");
    Require(!isSorted || std::ranges::is_sorted(names), "sorted if requested");
    Require(std::ranges::none_of(names, &std::string::empty), "no empty names");
    CheckCleared(-1, [&](int& count) { return files.GetFileCount(type, count); });
    Succeeded(files.DeleteJobFile(FileNameOf(with)));
}

void CheckBits(Session& session, Arguments const& with) {
    auto& io = *session.robot.IO;
    CheckCleared(true, [&](bool& value) { return io.ReadBit(SignalsOf(with), with.index, with.bit, value); });
    CheckCleared(true, [&](bool& value) { return io.ReadBit(AddressOf(with), value); });
    Succeeded(io.WriteBit(SignalsOf(with), with.index, with.bit, with.tool != 0));
    Succeeded(io.WriteBit(AddressOf(with), with.tool != 0));
}

template <typename Bits>
void CheckBytes(Session& session, Arguments const& with) {
    auto& io = *session.robot.IO;
    CheckCleared(Bits{1}, [&](Bits& value) { return io.ReadByte(SignalsOf(with), with.index, value); });
    CheckCleared(Bits{1}, [&](Bits& value) { return io.ReadByte(AddressOf(with), value); });
    Bits value{with.tool};
    Succeeded(io.WriteByte(SignalsOf(with), with.index, value));
    Succeeded(io.WriteByte(AddressOf(with), value));
}

/// Registers have 16 bits, like words of signals.
template <typename Bits>
void CheckWords(Session& session, Arguments const& with) {
    auto& io = *session.robot.IO;
    CheckCleared(Bits{1}, [&](Bits& value) { return io.ReadWord(SignalsOf(with), with.index, value); });
    CheckCleared(Bits{1}, [&](Bits& value) { return io.ReadWord(AddressOf(with), value); });
    CheckCleared(Bits{1}, [&](Bits& value) { return io.ReadRegister(with.index, value); });
    Bits value{with.size};
    Succeeded(io.WriteWord(SignalsOf(with), with.index, value));
    Succeeded(io.WriteWord(AddressOf(with), value));
    Succeeded(io.WriteRegister(with.index, value));
}

void CheckControlCommands(Session& session, Arguments const& with) {
    auto& commands = *session.robot.ControlCommands;
    Succeeded(commands.SetServos(static_cast<SignalStatus>(with.group)));
    Succeeded(commands.SetHold(static_cast<SignalStatus>(with.group)));
    Succeeded(commands.SetCycleMode(static_cast<CycleMode>(with.type)));
    Succeeded(commands.DisplayStringToPendant(std::string(with.size, 'a')));
    Succeeded(commands.StartJob());
}

void AddPoint(Session& session, Arguments const& with) {
    auto const motion = MotionOf(with);
    auto const others = with.size % 2 != 0 ? std::optional<Motion>(motion) : std::nullopt;
    Succeeded(session.robot.MotionManager->AddPointToTrajectory(motion, others, others, others));
}

void CheckMotion(Session& session, Arguments const& with) {
    auto& manager = *session.robot.MotionManager;
    AddPoint(session, with);
    StatusInfo status;
    double const progress = manager.GetMotionTargetProgress(GroupOf(with), status);
    Require(Succeeded(status) || progress == 0.0, "no progress after a failure");
    Succeeded(manager.MotionStop(with.bit != 0));
    Succeeded(manager.ClearAllTrajectory());
}

/// The work of the monitor for each point, on this thread.
void CheckTargets(Session& session, Arguments const& with) {
    auto& manager = dynamic_cast<MotionManager&>(*session.robot.MotionManager);
    StatusInfo status;
    for (std::uint8_t slot = 0; slot < MotionSlots; ++slot) {
        MotionStep step;
        if (step.SetTarget(MotionOf(with), static_cast<TargetControlGroup>(slot), status)) {
            Succeeded(manager.SendTarget(step));
        }
    }
    manager.ClearTrajectory(static_cast<TargetControlGroup>(with.group), status);
    Succeeded(status);
}

/// The monitor sends two points, or fails and raises an alarm. Closing the connection waits for it.
void FeedTrajectory(Session& session, Arguments const& with) {
    AddPoint(session, with);
    AddPoint(session, with);
    Succeeded(session.robot.MotionManager->MotionStart());
}

void CheckConversions(Session& session, Arguments const& with) {
    auto& kinematics = *session.robot.Kinematics;
    auto position = PositionOf(with);
    auto const conversion = static_cast<KinematicConversions>(with.bit);
    PositionData to;
    PositionData from;
    Succeeded(kinematics.ConvertPosition(GroupOf(with), position, conversion, to));
    Succeeded(kinematics.ConvertPositionFromCartesian(GroupOf(with), position, conversion,
                                                      static_cast<KinematicType>(with.tool % 4), position.axes, from));
    Require(!Text(to).empty() && !Text(from).empty(), "a position prints");
}

constexpr OperationGroup operations[] = {
    {"controller-state", CheckState},
    {"operating-times", CheckOperatingTimes},
    {"control-group", CheckControlGroup},
    {"scalar-variables", CheckScalarVariables},
    {"text-and-position-variables", CheckTextAndPositionVariables},
    {"active-alarms", CheckActiveAlarms},
    {"alarm-history", CheckAlarmHistory},
    {"jobs", CheckJobs},
    {"load-file", CheckLoad},
    {"save-file", CheckSave},
    {"list-files", CheckList},
    {"bits", CheckBits},
    {"byte-numbers", CheckBytes<unsigned char>},
    {"byte-sets", CheckBytes<std::bitset<8>>},
    {"word-numbers", CheckWords<unsigned short>},
    {"word-sets", CheckWords<std::bitset<16>>},
    {"control-commands", CheckControlCommands},
    {"motion", CheckMotion},
    {"send-targets", CheckTargets},
    {"feed-trajectory", FeedTrajectory, true},
    {"convert", CheckConversions},
};

} // namespace

std::span<OperationGroup const> Operations() {
    return operations;
}

} // namespace harvlink::fuzz
