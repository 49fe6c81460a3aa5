#include "soak/MotionWorker.h"

#include <array>
#include <cmath>
#include <thread>
#include <utility>

#include <fmt/format.h>

#include "soak/SharedConnection.h"

namespace harvlink::soak {

namespace {

using namespace std::chrono_literals;

constexpr std::uint32_t MonitorAlarm = 8015;
constexpr auto ArrivalTimeout = 60s;
constexpr auto StallTime = 3s; ///< longer than any pause between targets
/// The position of the arm of a new virtual controller, and the greatest distance of a target from it.
constexpr std::array<int, 6> HomePulses{0, 0, 0, 0, -122850, 0};
constexpr int Reach = 6000;

Motion RandomPoint(Random& random) {
    Motion motion{.controlGroup = ControlGroupId::R1, .speed = 100.0, .moveType = MoveInterpolationType::Joint};
    motion.position.coordinateType = CoordinateType::Pulse;
    motion.position.toolNumber = 0;
    std::uniform_int_distribution<int> offset(-Reach, Reach);
    for (std::size_t i = 0; i < HomePulses.size(); ++i) {
        motion.position.axes[i] = HomePulses[i] + offset(random);
    }
    return motion;
}

} // namespace

MotionWorker::MotionWorker(std::string name, Options const& options, Results& results, std::uint64_t seed,
                           FaultJournal& older, FaultJournal& newer)
    : Worker(std::move(name), options, results, seed, {&older, &newer}), olderJournal_(older), newerJournal_(newer) {}

void MotionWorker::Step() {
    if (Chance(0.3)) {
        Visit();
    } else {
        Move();
    }
    // Opening and closing count as progress too.
    static_cast<void>(Done(Family::Connection, StatusInfo{}));
}

void MotionWorker::Visit() {
    auto const robot = OpenComplete(options_.addresses.olderVisited, false, options_, olderJournal_, results_);
    if (robot == nullptr) {
        return;
    }
    auto const value = static_cast<std::uint8_t>(Draw(1, 255));
    ByteVariableData got;
    auto const written = Done(Family::Variables, robot->Variables->byteVariable->Write({value, 0}));
    if (!IsSent("write of a visit", written) || written.StatusCode != 0) {
        return;
    }
    auto const ask = [&] {
        WaitForLateReplies();
        auto const status = Done(Family::Variables, robot->Variables->byteVariable->Read(0, got));
        if (status.StatusCode != 0) {
            return IsTimeout(status) ? Answer::Missing : Answer::Wrong;
        }
        return got.value == value ? Answer::Right : Answer::Wrong;
    };
    AskUntilRight("variable of a visit", ask, [&] { return fmt::format("{} instead of {}", got.value, value); });
}

void MotionWorker::Move() {
    auto const robot = OpenComplete(options_.addresses.newerVisited, true, options_, newerJournal_, results_);
    if (robot == nullptr || !MakeReady(*robot)) {
        return;
    }
    bool goesOn = true;
    for (auto trajectories = Draw(1, 4); goesOn && trajectories > 0; --trajectories) {
        goesOn = Chance(0.15) ? RunAndStop(*robot) : RunTrajectory(*robot);
    }
    // Closing waits until the queue is empty; a broken trajectory has emptied it.
    static_cast<void>(Done(Family::MotionManager, robot->MotionManager->MotionStop(true)));
}

/// Clears the remains of a broken trajectory and switches servo power on. False if the answers don't come.
bool MotionWorker::MakeReady(QuorvanController& robot) {
    for (int tries = 0; tries < 20; ++tries) {
        static_cast<void>(Done(Family::Faults, robot.Faults->ClearAllFaults()));
        WaitForLateReplies();
        static_cast<void>(Done(Family::ControlCommands, robot.ControlCommands->SetServos(SignalStatus::On)));
        WaitForLateReplies();
        ControllerStateData state;
        if (ReadState(robot, state) && state.isServoOn && !state.isAlarming) {
            auto const status = Done(Family::MotionManager, robot.MotionManager->MotionStart());
            if (status.StatusCode == 0) {
                return true;
            }
        }
    }
    Fail("the controller does not become ready to move");
    return false;
}

bool MotionWorker::ReadState(QuorvanController& robot, ControllerStateData& state) {
    return Done(Family::Status, robot.Status->ReadState(state)).StatusCode == 0;
}

std::size_t MotionWorker::AddPoints(QuorvanController& robot, std::size_t count, PositionData& last) {
    for (std::size_t i = 0; i < count; ++i) {
        auto const point = RandomPoint(random_);
        auto const status = Done(Family::MotionManager, robot.MotionManager->AddPointToTrajectory(point));
        if (status.StatusCode != 0) {
            Fail(fmt::format("a point was refused with {} {}", status.StatusCode, status.Message));
            return i;
        }
        last = point.position;
    }
    return count;
}

/// False if the connection must be closed: the trajectory is broken, or the run has failed.
bool MotionWorker::RunTrajectory(QuorvanController& robot) {
    WaitForLateReplies();
    auto const cleared = Done(Family::MotionManager, robot.MotionManager->ClearAllTrajectory());
    if (cleared.StatusCode != 0) {
        return false; // without this answer the number of reached targets is unknown
    }
    PositionData last;
    auto const count = AddPoints(robot, Draw(1, options_.LongestTrajectory()), last);
    auto const outcome = AwaitArrival(robot, count);
    if (outcome == Outcome::Arrived) {
        CheckPosition(robot, last);
    }
    return outcome == Outcome::Arrived;
}

MotionWorker::Outcome MotionWorker::Broken() {
    results_.Note(FaultEffect::BrokenTrajectory);
    return Outcome::Broken;
}

MotionWorker::Outcome MotionWorker::AwaitArrival(QuorvanController& robot, std::size_t count) {
    auto const deadline = SteadyClock::now() + ArrivalTimeout;
    double before = 0.0;
    bool isThere = false;
    auto lastChange = SteadyClock::now();
    for (int polls = 0; SteadyClock::now() < deadline; ++polls) {
        StatusInfo status;
        double const progress = robot.MotionManager->GetMotionTargetProgress(ControlGroupId::R1, status);
        Done(Family::MotionManager, status);
        lastChange = progress > before ? SteadyClock::now() : lastChange;
        bool const isPlausible = status.StatusCode != 0 || CheckProgress(progress, before, count);
        bool const wasThere = std::exchange(isThere, isPlausible && progress >= static_cast<double>(count));
        if (status.StatusCode == 0 && isThere && wasThere) { // a single answer may be damaged
            return Outcome::Arrived;
        }
        if ((!isPlausible || polls % 5 == 4) && HasAlarm(robot)) {
            return Broken();
        }
        bool const isStalled = SteadyClock::now() - lastChange > StallTime;
        if (isStalled && IsDamagedSince(StepBegin())) {
            return Broken();
        }
        if (isStalled && options_.badNetwork && IsAtRest(robot)) {
            results_.Note(FaultEffect::LostTarget);
            return Broken();
        }
        std::this_thread::sleep_for(5ms);
    }
    Fail(fmt::format("the trajectory of {} points neither arrived nor failed: {} points reached", count, before));
    return Outcome::Failed;
}

/// If requests are lost, targets and the alarm of the monitor may be lost too.
bool MotionWorker::IsAtRest(QuorvanController& robot) {
    ControllerStateData state;
    return ReadState(robot, state) && !state.isRunning;
}

/// False if the count has decreased, because the targets were cleared.
bool MotionWorker::CheckProgress(double progress, double& before, std::size_t count) {
    bool const isDoubled = options_.badNetwork; // a target that arrives twice counts twice
    if (!std::isfinite(progress) || progress < 0.0 || (progress > static_cast<double>(count) && !isDoubled)) {
        Fail(fmt::format("progress {} of {} points", progress, count));
        return false;
    }
    if (progress < before) {
        return false;
    }
    before = progress;
    return true;
}

bool MotionWorker::HasAlarm(QuorvanController& robot) {
    ActiveAlarms alarms;
    auto const status = Done(Family::Faults, robot.Faults->GetActiveAlarms(alarms));
    if (status.StatusCode != 0 || alarms.numberOfAlarms == 0) {
        return false;
    }
    for (auto const& alarm : alarms.alarms) {
        if (alarm.code != MonitorAlarm && alarm.code != 0) {
            Fail(fmt::format("alarm {}, expected only {}", alarm.code, MonitorAlarm));
        }
    }
    return true;
}

void MotionWorker::CheckPosition(QuorvanController& robot, PositionData const& wanted) {
    if (options_.badNetwork) {
        return; // a target that the network doubled may have arrived last
    }
    PositionData got;
    auto const ask = [&] {
        auto const status =
            Done(Family::ControlGroup,
                 robot.ControlGroup->ReadPositionData(ControlGroupId::R1, CoordinateType::Pulse, 0, 0, got));
        if (status.StatusCode != 0) {
            return IsTimeout(status) ? Answer::Missing : Answer::Wrong;
        }
        return ImageOfPosition(got) == ImageOfPosition(wanted) ? Answer::Right : Answer::Wrong;
    };
    AskUntilRight("end of a trajectory", ask,
                  [&] { return ToHex(ImageOfPosition(got)) + " instead of " + ToHex(ImageOfPosition(wanted)); });
}

/// Stops during a trajectory. The arm must come to rest and stay there.
bool MotionWorker::RunAndStop(QuorvanController& robot) {
    PositionData last;
    AddPoints(robot, Draw(5, 20), last);
    std::this_thread::sleep_for(std::chrono::milliseconds(Draw(0, 40)));
    auto const stopped = Done(Family::MotionManager, robot.MotionManager->MotionStop(true));
    if (stopped.StatusCode != 0 || HasAlarm(robot)) {
        return false;
    }
    std::this_thread::sleep_for(100ms);
    auto const read = [&](WireImage& image) {
        PositionData position;
        auto status =
            Done(Family::ControlGroup,
                 robot.ControlGroup->ReadPositionData(ControlGroupId::R1, CoordinateType::Pulse, 0, 0, position));
        image = ImageOfPosition(position);
        return status;
    };
    ReadUntilAgreed("position after a stop", read);
    return Done(Family::MotionManager, robot.MotionManager->MotionStart()).StatusCode == 0;
}

} // namespace harvlink::soak
