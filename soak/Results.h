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

/// The ten interfaces of a connection, and its opening.
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

/// What a fault can come to in a program that uses the library as it is documented. None of them is a failure; all are
/// told from wrong values by what they look like, and are bounded by the faults that were injected.
enum class FaultEffect : std::uint8_t {
    NoAnswer, ///< ResponseTimeout
    CutAnswer, ///< zeros from some byte on: a shortened reply, or silence on request id 0. The next read was right
    LostWrite, ///< a write or target that succeeded on id 0 and was not taken: its refusal, or itself, was lost
    RepeatedBlock, ///< a file with a block twice: a doubled datagram. Only where the network doubles
    BrokenTransfer,
    BrokenTrajectory, ///< the monitor raised its alarm and emptied the queue
    IncompleteStart, ///< a connection that could not be opened, or did not learn all of its controller
};
inline constexpr std::size_t FaultEffects = 7;
std::string_view NameOf(FaultEffect kind);

/// What all workers count together.
class Results {
public:
    /// Counts an operation and, by its status, an answer that did not come.
    void Note(Family family, StatusInfo const& status);
    void Note(FaultEffect kind) { ++effects_.at(static_cast<std::size_t>(kind)); }
    void NoteFileBytes(std::uint64_t bytes) { fileBytes_ += bytes; }

    /// The run has failed. Printed at once; the first ones are kept for the report.
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
