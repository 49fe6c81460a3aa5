#include <cstdlib>

#include "motion/MotionManager.h"
#include "status/ErrorTables.h"

// The one thread of the library. It feeds the queue to the controller in order; the controller's "no room" reply is all
// that holds it back, inside SendTarget. When the controller refuses a step there is no caller to tell: the failure shows
// as an alarm on the pendant, in the log file, and in that the queue is empty.

namespace harvlink {

void MotionManager::StartMonitorTrajectoryThread() {
    std::call_once(monitorStarted, [this] {
        monitorThread = std::jthread([this](std::stop_token const& stop) { MonitorTrajectory(stop); });
    });
}

void MotionManager::MonitorTrajectory(std::stop_token const& stop) {
    for (bool isLastRun = false; !isLastRun;) {
        // Looked at before the queue and only there: all that was queued before the stop is sent to its end.
        isLastRun = stop.stop_requested();
        while (auto const step = CopyFrontTrajectory()) {
            StatusInfo status = SendTarget(*step);
            if (status.StatusCode != 0) {
                HandleFailedStep(std::move(status));
                break;
            }
            TryPopFrontTrajectory();
        }
        // Polls, so that a point is on the wire within microseconds, but lets everybody else run first.
        std::this_thread::yield();
    }
}

/// A copy, so that a clear from another thread can't pull the step away while it is being sent.
std::optional<MotionStep> MotionManager::CopyFrontTrajectory() {
    if (trajectory.IsEmpty()) {
        return std::nullopt;
    }
    std::lock_guard const lock(trajectoryMutex);
    return trajectory.IsEmpty() ? std::nullopt : std::optional(trajectory.Front());
}

void MotionManager::TryPopFrontTrajectory() {
    std::lock_guard const lock(trajectoryMutex);
    trajectory.PopFront();
}

void MotionManager::HandleFailedStep(StatusInfo status) {
    // The offset undoes the fold. What was not folded, such as a missing reply, is then not in the table.
    auto const controllerCode = static_cast<std::uint32_t>(status.StatusCode) + MotionErrorOffset;
    std::string const shortText = GetShortErrorMessage(static_cast<int>(controllerCode));
    SetAlarm(shortText, static_cast<unsigned char>(status.StatusCode & 0xff));
    status.StatusCode = std::abs(status.StatusCode);
    networkManager->LogIfEnabled(status);
    ClearAllTrajectory();
}

std::string MotionManager::GetShortErrorMessage(int code) const {
    return std::string(MotionShortErrorTable.Find(code).value_or("Unknown Motion Error. Check HarvlinkLog."));
}

} // namespace harvlink
