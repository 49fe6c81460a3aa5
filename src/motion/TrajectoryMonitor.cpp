#include <chrono>
#include <cstdlib>
#include <sstream>
#include <utility>

#include "motion/MotionManager.h"
#include "status/ErrorTables.h"
#include "wire/Guarded.h"

// The one thread of the library. It feeds the queue to the controller in order; the controller's "no room" reply is all
// that holds it back. When the controller refuses a step there is no caller to tell: the failure shows as an alarm on the
// pendant, in the log file, in the state of the trajectory, and in that the queue is empty.

namespace harvlink {
namespace {

constexpr int bufferFull = -49934480; // "Timeout" of the motion table, folded

constexpr std::chrono::milliseconds fullBufferPeriod{1};

/// How long an idle monitor looks for the next point before it sleeps: points that come one behind the other never wait for
/// a thread to wake up, and a pause costs no more than this.
constexpr std::chrono::microseconds idleSpin{200};

/// Whether the step has to go out later or not at all, which is not a failure of it.
bool IsWithdrawn(StatusInfo const& status) {
    return status.StatusCode == static_cast<int>(ErrorStatusCodes::StepWithdrawn);
}

/// For the pendant, of a code as the controller sent it.
std::string_view ShortErrorText(int code) {
    return MotionShortErrorTable.Find(code).value_or("Unknown Motion Error. Check HarvlinkLog.");
}

/// What a line of the log and a message name beside the designed one.
std::string PlaceOf(std::string const& address, StepNumber number, ControlGroupId group) {
    std::ostringstream text;
    text << "Controller " << address << ", step " << number << ", group " << group << '.';
    return std::move(text).str();
}

} // namespace

void MotionManager::StartMonitorTrajectoryThread() {
    std::call_once(monitorStarted, [this] {
        monitorThread = std::jthread([this](std::stop_token const& stop) { MonitorTrajectory(stop); });
    });
    progress.Started();
}

void MotionManager::MonitorTrajectory(std::stop_token const& stop) {
    IdleTime idle;
    for (bool isLastRun = false; !isLastRun;) {
        // Looked at before the queue and only there: as designed, all that was queued before the stop is sent to its end.
        isLastRun = stop.stop_requested();
        if (MayTakeStep()) {
            SendQueue();
            progress.Rested();
            idle = {};
        }
        Rest(idle);
    }
}

/// Whether a step is there and may go out.
bool MotionManager::MayTakeStep() const {
    return !trajectory.IsEmpty() && (!Enforces(Rule::BoundedClose) || progress.MaySend(0));
}

/// Nobody stands behind this thread to catch what it throws: where the rule NoExceptions holds, that is a failed step.
void MotionManager::SendQueue() {
    while (MayTakeStep()) {
        auto const front = CopyFrontTrajectory();
        if (!front) {
            return;
        }
        progress.Taken();
        StatusInfo status = Guarded(*networkManager, [&] { return SendStep(front->step, front->number); });
        if (status.StatusCode == 0) {
            PopSentStep(front->number);
        } else if (!IsWithdrawn(status)) {
            HandleFailedStep(std::move(status), front->number, FailedGroup(front->step));
            return;
        }
    }
}

/// As designed, polls, so that a point is on the wire within microseconds, but lets everybody else run first.
void MotionManager::Rest(IdleTime& idle) {
    bool const isWatched = networkManager->Policy().Watches(Rule::IdleMonitor) && !idle.isCounted;
    if (!isWatched || TrajectoryProgress::Clock::now() - idle.begin < idleSpin) {
        std::this_thread::yield();
        return;
    }
    if (networkManager->Refuses(Rule::IdleMonitor)) {
        progress.SleepUntil([this] { return !trajectory.IsEmpty(); });
        idle = {};
    } else {
        idle.isCounted = true;
    }
}

/// A copy, so that a clear from another thread can't pull the step away while it is being sent.
std::optional<MotionManager::NumberedStep> MotionManager::CopyFrontTrajectory() {
    std::lock_guard const lock(trajectoryMutex);
    if (trajectory.IsEmpty()) {
        return std::nullopt;
    }
    return NumberedStep{trajectory.FrontNumber(), trajectory.Front()};
}

StatusInfo MotionManager::SendTarget(MotionStep const& step) {
    return SendStep(step, 0);
}

StatusInfo MotionManager::SendStep(MotionStep const& step, StepNumber number) {
    StatusInfo status = StatusInformation(ErrorStatusCodes::Ok);
    if (!SetTargetProfile(step, status)) {
        return status;
    }
    SendTargetRequest const request{{static_cast<std::uint32_t>(step.groups.to_ulong()), step.targets}};
    bool isCounted = false;
    status = SendTargetOnce(request, step, number, isCounted);
    while (status.StatusCode == bufferFull) {
        WaitForRoom(number);
        status = SendTargetOnce(request, step, number, isCounted);
    }
    return status;
}

/// The rule counts once for each step that a close, a stop or a clear ends, or should have ended.
StatusInfo MotionManager::SendTargetOnce(SendTargetRequest const& request, MotionStep const& step, StepNumber number,
                                         bool& isCounted) {
    std::lock_guard const lock(targetsMutex);
    if (networkManager->Policy().Watches(Rule::BoundedClose) && !progress.MaySend(number)) {
        if (!std::exchange(isCounted, true)) {
            networkManager->Refuses(Rule::BoundedClose);
        }
        if (Enforces(Rule::BoundedClose)) {
            return StatusInformation(ErrorStatusCodes::StepWithdrawn);
        }
    }
    StatusInfo status = CarryOut(*networkManager, request);
    if (status.StatusCode == 0) {
        progress.Sent(number, step);
    }
    return status;
}

void MotionManager::WaitForRoom(StepNumber number) {
    if (number != 0) {
        progress.Full();
    }
    if (Enforces(Rule::BoundedClose)) {
        progress.SleepWhileFull(number, fullBufferPeriod);
    } else {
        std::this_thread::sleep_for(fullBufferPeriod);
    }
}

void MotionManager::TryPopFrontTrajectory() {
    std::lock_guard const lock(trajectoryMutex);
    if (!trajectory.IsEmpty()) {
        progress.Withdraw(trajectory.FrontNumber());
        trajectory.PopFront();
    }
}

/// Another step is in front if the queue was cleared while this one was sent and something was queued since. As designed it
/// goes unsent.
void MotionManager::PopSentStep(StepNumber number) {
    std::lock_guard const lock(trajectoryMutex);
    StepNumber const front = trajectory.FrontNumber();
    if (trajectory.IsEmpty() || (front != number && networkManager->Refuses(Rule::SentStep))) {
        return;
    }
    trajectory.PopFront();
    if (front != number) {
        progress.Withdraw(front);
    }
}

/// The group whose setting failed, or the first of the step if its target did.
ControlGroupId MotionManager::FailedGroup(MotionStep const& step) const {
    std::size_t slot = 0;
    if (groupBeingSet) {
        slot = static_cast<std::size_t>(*groupBeingSet);
    } else {
        while (slot + 1 < MotionSlots && !step.groups[slot]) {
            ++slot;
        }
    }
    return groupNumberMap.groups[slot].value_or(ControlGroupId{});
}

void MotionManager::HandleFailedStep(StatusInfo status, StepNumber number, ControlGroupId group) {
    int const code = status.StatusCode;
    progress.BeginFailure({std::move(status), number, group});
    // Each by itself: where memory runs out, the machine is still told, and the queue still dropped.
    Guarded(*networkManager, [&] { return RaiseAlarm(code); });
    Guarded(*networkManager, [&] { return LogFailure(); });
    // An end of the connection doesn't wait for one more exchange; what the controller has, it keeps on any close.
    if (!Enforces(Rule::BoundedClose) || !progress.IsClosing()) {
        ClearAllTrajectory();
    }
    progress.EndFailure();
}

/// Takes no memory until it is sent.
StatusInfo MotionManager::RaiseAlarm(int code) {
    // The offset undoes the fold. What was not folded, such as a missing reply, is then not in the table.
    auto const controllerCode = static_cast<std::uint32_t>(code) + MotionErrorOffset;
    return SetAlarm(ShortErrorText(static_cast<int>(controllerCode)), static_cast<unsigned char>(code & 0xff));
}

StatusInfo MotionManager::LogFailure() {
    TrajectoryFailure const failure = progress.State().lastFailure;
    StatusInfo status{std::abs(failure.status.StatusCode), failure.status.Message};
    // Without a rule everything is said as designed, and no more.
    bool const isNamed = networkManager->Policy().enforced.bits != 0;
    std::string const place =
        isNamed ? PlaceOf(networkManager->Address(), failure.stepNumber, failure.group) : std::string();
    if (isNamed) {
        progress.NameFailure(status.Message + '\n' + place);
    }
    networkManager->LogIfEnabled(status);
    if (isNamed) {
        networkManager->LogIfEnabled({status.StatusCode, place});
    }
    return status;
}

std::string MotionManager::GetShortErrorMessage(int code) const {
    return std::string(ShortErrorText(code));
}

} // namespace harvlink
