#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "harvlink/StatusInfo.h"

namespace harvlink::soak {

/// The ten interfaces of a connection, and the opening of one.
enum class Family : std::uint8_t {
    Connection,
    ControlGroup,
    Status,
    Variables,
    IO,
    Faults,
    ControlCommands,
    Job,
    Files,
    MotionManager,
    Kinematics,
};
inline constexpr std::size_t Families = 11;
std::string_view NameOf(Family family);

inline bool IsTimeout(StatusInfo const& status) {
    return status.StatusCode == static_cast<int>(ErrorStatusCodes::ResponseTimeout);
}

/// The documented effects of faults on a program that uses strict connections. All else is a failure.
enum class FaultEffect : std::uint8_t {
    NoAnswer, ///< ResponseTimeout
    LostTarget, ///< a trajectory that ended early without an alarm. Only where the network loses requests
    BrokenTransfer,
    BrokenTrajectory, ///< the monitor raised its alarm and emptied the queue
    IncompleteStart, ///< a connection that could not be opened, or did not read everything about its controller
    DamagedAnswer, ///< not as expected, while the controller flipped bits or refused or ignored requests; asked again
    InterruptedStep, ///< a step that failed because of such a fault: the worker went on from a state that it has checked
};
inline constexpr std::size_t FaultEffects = 7;
std::string_view NameOf(FaultEffect kind);

/// The counters and failures of all workers.
class Results {
public:
    /// Counts an operation and, if its status is a time-out, a missing answer.
    void Note(Family family, StatusInfo const& status);
    void Note(FaultEffect kind) { ++effects_.at(static_cast<std::size_t>(kind)); }
    void NoteFileBytes(std::uint64_t bytes) { fileBytes_ += bytes; }

    /// Records a failure of the run. Prints it at once; the first ones are kept for the report.
    void Fail(std::string const& what);

    std::uint64_t Operations(Family family) const { return operations_.at(static_cast<std::size_t>(family)); }
    std::uint64_t Operations() const;
    std::uint64_t Count(FaultEffect kind) const { return effects_.at(static_cast<std::size_t>(kind)); }
    std::uint64_t FileBytes() const { return fileBytes_; }
    std::uint64_t FailureCount() const { return failureCount_; }
    std::vector<std::string> Failures() const;

private:
    std::array<std::atomic<std::uint64_t>, Families> operations_{};
    std::array<std::atomic<std::uint64_t>, FaultEffects> effects_{};
    std::atomic<std::uint64_t> fileBytes_ = 0;
    std::atomic<std::uint64_t> failureCount_ = 0;
    mutable std::mutex mutex_;
    std::vector<std::string> failures_;
};

} // namespace harvlink::soak
