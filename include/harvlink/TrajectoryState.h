#pragma once

#include <chrono>
#include <cstdint>

#include "harvlink/ControlGroupId.h"
#include "harvlink/StatusInfo.h"

namespace harvlink {

/// What the thread that sends queued steps is doing.
enum class TrajectoryMonitorState : std::int32_t {
    NotStarted = 0, ///< no MotionStart has succeeded yet: steps wait in the queue
    Idle = 1, ///< it has nothing to send
    Sending = 2,
    HeldBack = 3, ///< the controller has no room for the step; it is sent again every millisecond
    Failed = 4, ///< the last step that was sent failed, and the queue was emptied; the next step is sent all the same
    Stopped =
        5, ///< under Rule::BoundedClose: MotionStop(false), or a stop without an answer, holds the queue until MotionStart
};

/// The last step that failed.
struct TrajectoryFailure {
    StatusInfo status; ///< code 0 as long as no step failed
    std::uint64_t stepNumber = 0;
    ControlGroupId group{}; ///< whose setting was refused, or the first group of the step if its target was
};

/// What has become of the steps of a connection. Steps are numbered 1, 2, 3 and so on in the order in which they were
/// queued. What is neither sent nor failed nor withdrawn still waits.
struct TrajectoryState {
    std::uint64_t queued = 0; ///< so many in all; the number of the last one too
    std::uint64_t sent = 0; ///< taken by the controller
    std::uint64_t refused = 0; ///< refused by the controller, or not answered
    std::uint64_t withdrawn = 0; ///< dropped before the controller took them: by a stop, a clear or a failure
    TrajectoryMonitorState monitor = TrajectoryMonitorState::NotStarted;
    std::chrono::system_clock::time_point heldBackSince{}; ///< with HeldBack: since when; otherwise the epoch
    TrajectoryFailure lastFailure;
};

} // namespace harvlink
