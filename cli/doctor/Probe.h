#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "cli/doctor/Audit.h"

namespace harvlink::cli {

/// How one of the controller's two ports answers.
struct PortReport {
    enum class State { Silent, Answers, Refuses, Closed, Unreachable, BadAnswers };

    /// How the answers of a port are wrong; the last value that was seen.
    enum class BadAnswer {
        None,
        Foreign, ///< not of this protocol
        Damaged, ///< of a length or contents that do not fit its header
        WrongId, ///< answers to something that was not asked
    };

    std::uint16_t port = 0;
    State state = State::Silent;
    BadAnswer badAnswer = BadAnswer::None;
    int code = 0; ///< of its refusal
    int error = 0; ///< of the operating system, if it is closed or can't be reached
    std::string reporter{}; ///< the address of the router that reported the error; empty: the host or this computer
};

/// What became of a series of probes: each was answered, late, spoilt or lost.
struct LinkReport {
    unsigned sent = 0;
    unsigned answered = 0; ///< in time
    unsigned late = 0; ///< after the time-out, before the end of the series
    unsigned spoilt = 0; ///< only a damaged answer came, or an answer to something else
    unsigned lost = 0;
    unsigned refused = 0; ///< of those answered
    unsigned duplicates = 0;
    unsigned damaged = 0; ///< datagrams that are not of this protocol, or have another length than their header gives
    unsigned wrongIds = 0; ///< answers to something that was not asked
    unsigned otherSources = 0; ///< answers from another port or host than the one asked
    unsigned silentAtEnd = 0; ///< number of unanswered probes that ended the series early
    int refusalCode = 0; ///< the last
    std::string otherHost{}; ///< the last of the other sources, if it is another host
    std::uint16_t otherPort = 0; ///< its port
    std::vector<double> milliseconds{}; ///< of the answers in time, sorted
    double latestMilliseconds = 0; ///< of the slowest late answer
};

struct ControllerReport {
    PortReport commands{.port = 10040};
    PortReport files{.port = 10041};
    unsigned attempts = 0; ///< to get a first answer from both ports
    std::string software{};
    std::string model{};
    LinkReport link{};
    AuditReport audit{};
};

/// Asks a controller for its model and software, then for a file that does not exist, and then `probes` times for its
/// state. It only reads. Does not fill in the audit. Calls `progress` with the number of probes that are done. Ends when
/// `goesOn` returns false, which it asks after every signal.
ControllerReport ProbeController(std::string const& host, std::chrono::milliseconds timeout, unsigned probes,
                                 std::function<void(unsigned)> const& progress, std::function<bool()> const& goesOn);

} // namespace harvlink::cli
