#include "soak/MachineWorker.h"

#include <algorithm>
#include <array>
#include <thread>

#include <fmt/format.h>

#include "soak/JobTexts.h"

namespace harvlink::soak {

namespace {

using namespace std::chrono_literals;

constexpr int AlarmIsActive = 8288;
constexpr ControllerStateData StateAtRest{.cycleMode = CycleMode::Cycle,
                                          .controlMode = ControllerStateData::ControlMode::Remote};
constexpr auto JobTimeout = 20s;
constexpr std::chrono::seconds LongestJob{3};

SignalStatus SwitchOf(bool on) {
    return on ? SignalStatus::On : SignalStatus::Off;
}

bool IsSame(ControllerStateData const& one, ControllerStateData const& other) {
    return one.cycleMode == other.cycleMode && one.isRunning == other.isRunning &&
           one.controlMode == other.controlMode && one.isProgramPendantHold == other.isProgramPendantHold &&
           one.isAlarming == other.isAlarming && one.isErroring == other.isErroring && one.isServoOn == other.isServoOn;
}

std::string ToText(ControllerStateData const& state) {
    return fmt::format("cycle {} running {} mode {} hold {} alarm {} error {} servo {}",
                       static_cast<int>(state.cycleMode), state.isRunning, static_cast<int>(state.controlMode),
                       state.isProgramPendantHold, state.isAlarming, state.isErroring, state.isServoOn);
}

/// The name of the job as the controller holds it.
std::string StoredJobName() {
    return std::string(RunJobName) + std::string(32 - RunJobName.size(), '\0');
}

} // namespace

MachineWorker::MachineWorker(std::string name, Options const& options, Results& results, std::uint64_t seed,
                             SharedConnection& connection)
    : Worker(std::move(name), options, results, seed, {connection.journal}),
      connection_(connection),
      robot_(*connection.robot),
      readings_(FixedReadings(connection)),
      state_(StateAtRest) {}

void MachineWorker::Step() {
    if (!hasJobs_) {
        LoadJobs();
        return;
    }
    switch (Draw(0, 24)) {
    case 0:
        return SwitchServo(!state_.isServoOn);
    case 1:
        return SwitchHold();
    case 2:
        return SwitchCycle();
    case 3:
        return ShowText();
    case 4:
        return ReadTimes();
    case 5:
    case 6:
        return RunGoodJob();
    case 7:
        return RaiseAlarm();
    case 8:
        return CheckActiveAlarms(false);
    case 9:
    case 10:
    case 11:
        ExpectState("state");
        return;
    default:
        CheckReading(readings_[Draw(0, readings_.size() - 1)]);
    }
}

void MachineWorker::LoadJobs() {
    hasJobs_ = LoadJob(RunJobName, RunJob) && LoadJob(SubJobName, SubJob) && LoadJob(BadJobName, BadJob);
}

/// Brings the machine to rest, whatever was done of the step before.
void MachineWorker::Recover() {
    auto& commands = *robot_.ControlCommands;
    state_ = StateAtRest;
    auto const ask = [&] {
        static_cast<void>(Done(Family::Faults, robot_.Faults->ClearAllFaults()));
        static_cast<void>(Done(Family::ControlCommands, commands.SetHold(SignalStatus::Off)));
        static_cast<void>(Done(Family::ControlCommands, commands.SetCycleMode(state_.cycleMode)));
        static_cast<void>(Done(Family::ControlCommands, commands.SetServos(SignalStatus::Off)));
        ControllerStateData got;
        return CompareState(got) == Answer::Right ? Answer::Right : Answer::Missing;
    };
    AskUntilRight("return to rest", ask, [] { return std::string(); });
}

bool MachineWorker::LoadJob(std::string_view name, std::string_view text) {
    auto const fileName = std::string(name) + ".JBI";
    std::string got;
    auto const ask = [&] {
        std::scoped_lock const lock(connection_.transfers);
        WaitForLateReplies();
        auto status = Done(Family::Files, robot_.Files->LoadToControllerFromString(fileName, std::string(text)));
        if (status.StatusCode != 0) {
            return Answer::Missing;
        }
        WaitForLateReplies();
        status = Done(Family::Files, robot_.Files->SaveFromControllerToString(fileName, got));
        return status.StatusCode == 0 && got == text ? Answer::Right : Answer::Missing;
    };
    return AskUntilRight("load of " + fileName, ask, [&] { return got; });
}

void MachineWorker::Command(std::string const& what, std::function<StatusInfo()> const& send, Family family) {
    WaitForLateReplies();
    if (!IsSent(what, Done(family, send()))) {
        return;
    }
    WaitForLateReplies();
    constexpr int repetitions = 10;
    for (int i = 0; options_.badNetwork && i < repetitions && AskState() != Answer::Right; ++i) {
        static_cast<void>(Done(family, send()));
        WaitForLateReplies();
    }
    ExpectState(what);
}

Answer MachineWorker::CompareState(ControllerStateData& got) {
    auto const status = Done(Family::Status, robot_.Status->ReadState(got));
    if (IsTimeout(status)) {
        return Answer::Missing;
    }
    if (status.StatusCode != 0) {
        return Answer::Wrong;
    }
    return IsSame(got, state_) ? Answer::Right : Answer::Wrong;
}

/// Repeats until there is a complete answer.
Answer MachineWorker::AskState() {
    ControllerStateData got;
    auto answer = Answer::Missing;
    for (int i = 0; i < 30 && answer == Answer::Missing; ++i) {
        answer = CompareState(got);
    }
    return answer;
}

bool MachineWorker::ExpectState(std::string const& what) {
    ControllerStateData got;
    return AskUntilRight(
        what, [&] { return CompareState(got); },
        [&] { return fmt::format("{} instead of {}", ToText(got), ToText(state_)); });
}

void MachineWorker::SwitchServo(bool on) {
    state_.isServoOn = on;
    Command(on ? "servo on" : "servo off", [&] { return robot_.ControlCommands->SetServos(SwitchOf(on)); });
}

void MachineWorker::SwitchHold() {
    for (bool const on : {true, false}) {
        state_.isProgramPendantHold = on;
        Command(on ? "hold" : "end of hold", [&] { return robot_.ControlCommands->SetHold(SwitchOf(on)); });
    }
}

void MachineWorker::SwitchCycle() {
    for (auto const mode : {static_cast<CycleMode>(Draw(0, 2)), CycleMode::Cycle}) {
        state_.cycleMode = mode;
        Command("cycle mode", [&] { return robot_.ControlCommands->SetCycleMode(mode); });
    }
}

void MachineWorker::ShowText() {
    auto const text = fmt::format("soak {}", Draw(0, 999999));
    IsSent("pendant text", Done(Family::ControlCommands, robot_.ControlCommands->DisplayStringToPendant(text)));
}

/// The playback time must never decrease.
void MachineWorker::ReadTimes() {
    TimeData data;
    std::int64_t seconds = 0;
    auto const ask = [&] {
        auto const before = Damages();
        auto const status =
            Done(Family::Status, robot_.Status->ReadOperatingTimes(ControlGroupId::R1, TimeType::PlaybackTotal, data,
                                                                   ApplicationNumber::None));
        if (IsDamagedSince(before)) {
            return Answer::Missing; // a damaged time may be any
        }
        auto const& elapsed = data.elapsedTime;
        seconds = (std::int64_t{elapsed.hours} * 60 + elapsed.minutes) * 60 + elapsed.seconds;
        if (status.StatusCode != 0) {
            return IsTimeout(status) ? Answer::Missing : Answer::Wrong;
        }
        return seconds >= playbackSeconds_ ? Answer::Right : Answer::Wrong;
    };
    if (AskUntilRight("operating time", ask, [&] { return fmt::format("{} after {}", seconds, playbackSeconds_); })) {
        playbackSeconds_ = seconds;
    }
}

void MachineWorker::CheckReading(FixedReading& reading) {
    auto const read = [&](WireImage& image) { return Done(reading.family, reading.read(image)); };
    if (reading.known.empty()) {
        reading.known = ReadUntilAgreed(reading.name, read);
        return;
    }
    WireImage got;
    auto const ask = [&] {
        auto const status = read(got);
        if (status.StatusCode != 0) {
            return IsTimeout(status) ? Answer::Missing : Answer::Wrong;
        }
        return got == reading.known ? Answer::Right : Answer::Wrong;
    };
    AskUntilRight(reading.name, ask, [&] { return ToHex(got) + " instead of " + ToHex(reading.known); });
}

void MachineWorker::RunGoodJob() {
    if (!state_.isServoOn) {
        SwitchServo(true);
    }
    ResetJobVariables();
    if ((SelectAndStart(RunJobName) || options_.badNetwork) && AwaitJob()) {
        CheckJobVariables();
        CheckJobPlace();
        CheckJobStack();
    }
}

bool MachineWorker::SelectAndStart(std::string_view name) {
    auto const send = [&](char const* what, Family family, auto const& command) {
        WaitForLateReplies();
        auto const status = Done(family, command());
        // If requests are lost, AwaitJob notices a job that did not start.
        return options_.badNetwork ? status.StatusCode == 0 : IsSent(fmt::format("{} of {}", what, name), status);
    };
    return send("selection", Family::Job, [&] { return robot_.Job->SetActiveJob(std::string(name), 0); }) &&
           (!options_.badNetwork || IsSelected(name)) &&
           send("start", Family::ControlCommands, [&] { return robot_.ControlCommands->StartJob(); });
}

/// Without this check another job would start if the selection was lost on id 0.
bool MachineWorker::IsSelected(std::string_view name) {
    JobData data;
    auto const status = Done(Family::Job, robot_.Job->GetExecutingJobInformation(TesselTaskNumber::Master, data));
    return status.StatusCode == 0 && data.name.starts_with(name);
}

void MachineWorker::ResetJobVariables() {
    auto& variables = *robot_.Variables;
    ByteVariableData got;
    auto const ask = [&] {
        static_cast<void>(Done(Family::Variables, variables.integerVariable->Write({0, JobVariable})));
        static_cast<void>(Done(Family::Variables, variables.doubleIntVariable->Write({0, JobVariable})));
        static_cast<void>(Done(Family::Variables, variables.realVariable->Write({0.0F, JobVariable})));
        static_cast<void>(Done(Family::Variables, variables.byteVariable->Write({1, JobVariable})));
        WaitForLateReplies();
        auto const status = Done(Family::Variables, variables.byteVariable->Read(JobVariable, got));
        return status.StatusCode == 0 && got.value == 1 ? Answer::Right : Answer::Missing;
    };
    AskUntilRight("reset of the job's variables", ask, [&] { return fmt::format("{}", got.value); });
}

/// Waits until the job has set its last variable and returned to its first line.
bool MachineWorker::AwaitJob() {
    auto const deadline = SteadyClock::now() + JobTimeout;
    auto lastStart = SteadyClock::now();
    ByteVariableData got;
    while (SteadyClock::now() < deadline) {
        auto const status = Done(Family::Variables, robot_.Variables->byteVariable->Read(JobVariable, got));
        if (status.StatusCode == 0 && got.value == JobDone) {
            std::this_thread::sleep_for(50ms); // the last line is still to be executed
            return ExpectState("end of the job");
        }
        bool const isLate = SteadyClock::now() - lastStart > LongestJob;
        if (isLate && options_.badNetwork) {
            static_cast<void>(SelectAndStart(RunJobName));
            lastStart = SteadyClock::now();
        }
        if (isLate && IsDamagedSince(StepBegin())) {
            break;
        }
        std::this_thread::sleep_for(10ms);
    }
    Fail(fmt::format("the job did not run to its end: B{:03} is {}", JobVariable, got.value));
    return false;
}

void MachineWorker::CheckJobVariables() {
    auto const check = [&](auto& variables, auto wanted) {
        ScalarVariableData<decltype(wanted)> got;
        auto const ask = [&] {
            auto const status = Done(Family::Variables, variables.Read(JobVariable, got));
            if (status.StatusCode != 0) {
                return IsTimeout(status) ? Answer::Missing : Answer::Wrong;
            }
            return ImageOf(got.value) == ImageOf(wanted) ? Answer::Right : Answer::Wrong;
        };
        AskUntilRight("variable set by a job", ask, [&] { return fmt::format("{} instead of {}", got.value, wanted); });
    };
    check(*robot_.Variables->integerVariable, JobInteger);
    check(*robot_.Variables->doubleIntVariable, JobDouble);
    check(*robot_.Variables->realVariable, JobReal);
}

void MachineWorker::CheckJobPlace() {
    JobData data;
    auto const name = StoredJobName();
    auto const ask = [&] {
        auto const status = Done(Family::Job, robot_.Job->GetExecutingJobInformation(TesselTaskNumber::Master, data));
        if (status.StatusCode != 0) {
            return IsTimeout(status) ? Answer::Missing : Answer::Wrong;
        }
        bool const isRight = data.name == name && data.line == 0 && data.speedOverride == 100.0;
        return isRight ? Answer::Right : Answer::Wrong;
    };
    AskUntilRight("executing job", ask,
                  [&] { return fmt::format("{} line {} at {}", data.name, data.line, data.speedOverride); });
}

void MachineWorker::CheckJobStack() {
    auto const name = StoredJobName();
    std::vector<std::string> stack;
    auto const askStack = [&] {
        auto const status = Done(Family::Job, robot_.Job->GetJobStack(TesselTaskNumber::Master, stack));
        if (!connection_.isExtended) {
            bool const isTooOld = status.StatusCode == static_cast<int>(ErrorStatusCodes::UnsupportedOnThisController);
            return isTooOld ? Answer::Right : Answer::Wrong;
        }
        if (status.StatusCode != 0) {
            return IsTimeout(status) ? Answer::Missing : Answer::Wrong;
        }
        bool const isRight = stack.size() == 1 && stack[0] == name + '\0';
        return isRight ? Answer::Right : Answer::Wrong;
    };
    AskUntilRight("job stack", askStack, [&] { return fmt::format("{} names", stack.size()); });
}

void MachineWorker::RaiseAlarm() {
    if (!state_.isServoOn) {
        SwitchServo(true);
    }
    CheckActiveAlarms(false);
    auto const start = [&] {
        state_.isAlarming = true;
        state_.isServoOn = false;
        bool const isStarted = SelectAndStart(BadJobName);
        std::this_thread::sleep_for(100ms); // for its two lines
        return isStarted;
    };
    if (!start() && !options_.badNetwork) {
        return;
    }
    for (int i = 0; options_.badNetwork && i < 10 && AskState() != Answer::Right; ++i) {
        state_.isAlarming = false;
        SwitchServo(true);
        start();
    }
    if (!ExpectState("alarm of a job")) {
        return;
    }
    CheckActiveAlarms(true);
    CheckHistory();
    auto const refused = Done(Family::ControlCommands, robot_.ControlCommands->SetServos(SignalStatus::On));
    if (refused.StatusCode != AlarmIsActive && !IsTimeout(refused)) {
        Fail(fmt::format("servo on with an alarm gave {}", refused.StatusCode));
    }
    ExpectState("servo power with an alarm");
    state_.isAlarming = false;
    Command(
        "clearing of the alarm", [&] { return robot_.Faults->ClearAllFaults(); }, Family::Faults);
    CheckActiveAlarms(false);
}

Answer MachineWorker::CompareAlarm(AlarmData const& got, bool isExpected) const {
    AlarmData const wanted = isExpected ? AlarmData{BadJobAlarm, BadJobLine, {}, std::string(BadJobText)} : AlarmData{};
    auto const image = [](AlarmData const& alarm) {
        auto bytes = ImageOf(alarm.code);
        Append(bytes, alarm.subcode);
        AppendText(bytes, alarm.name, 32); // the controller fills the name up with zeros
        return bytes;
    };
    return image(got) == image(wanted) ? Answer::Right : Answer::Wrong;
}

void MachineWorker::CheckActiveAlarms(bool isExpected) {
    ActiveAlarms alarms;
    auto const ask = [&] {
        auto const status = Done(Family::Faults, robot_.Faults->GetActiveAlarms(alarms));
        if (status.StatusCode != 0) {
            return IsTimeout(status) ? Answer::Missing : Answer::Wrong;
        }
        for (std::size_t i = 0; i < alarms.alarms.size(); ++i) {
            auto const answer = CompareAlarm(alarms.alarms[i], isExpected && i == 0);
            if (answer != Answer::Right) {
                return answer;
            }
        }
        return Answer::Right;
    };
    AskUntilRight("active alarms", ask, [&] {
        return fmt::format("{}, the first {} {} {}", alarms.numberOfAlarms, alarms.alarms[0].code,
                           alarms.alarms[0].subcode, alarms.alarms[0].name);
    });
}

void MachineWorker::CheckHistory() {
    constexpr std::uint32_t quantity = 3;
    AlarmHistory history;
    auto const ask = [&] {
        auto const status =
            Done(Family::Faults, robot_.Faults->GetAlarmHistory(AlarmCategory::Minor, quantity, history));
        if (status.StatusCode != 0) {
            return IsTimeout(status) ? Answer::Missing : Answer::Wrong;
        }
        for (std::size_t i = 0; i < std::max(1U, history.numberOfAlarms); ++i) {
            auto const answer = CompareAlarm(history.alarms[i], true);
            if (answer != Answer::Right) {
                return answer;
            }
        }
        return Answer::Right;
    };
    AskUntilRight("alarm history", ask,
                  [&] { return fmt::format("{}, the first {}", history.numberOfAlarms, history.alarms[0].code); });
}

} // namespace harvlink::soak
