#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace harvlink::cli {

/// How one of the controller's two ports answers.
struct PortReport {
    enum class State { Silent, Answers, Refuses, Closed, Unreachable, Garbled };

    /// What comes from a garbled port, the most hopeful of it.
    enum class Garble {
        None,
        Foreign, ///< nothing of this protocol
        Damaged, ///< shorter or longer than it says, or at odds with itself
        WrongId, ///< answers to what was not asked
    };

    std::uint16_t port = 0;
    State state = State::Silent;
    Garble garble = Garble::None;
    int code = 0; ///< by which it refuses
    int error = 0; ///< of the operating system, if it is closed or can't be reached
    std::string reporter{}; ///< the address of the device on the way that says so; empty: the host or this computer
};

/// What became of a series of probes: each was answered, late, spoilt or lost.
struct LinkReport {
    unsigned sent = 0;
    unsigned answered = 0; ///< in time
    unsigned late = 0; ///< after the time-out, before the end
    unsigned spoilt = 0; ///< only a damaged answer came, or one to what was not asked
    unsigned lost = 0;
    unsigned refused = 0; ///< of those answered
    unsigned duplicates = 0;
    unsigned damaged = 0; ///< datagrams that are none of this protocol, or shorter or longer than they say
    unsigned wrongIds = 0; ///< answers to what was not asked
    unsigned otherSources = 0; ///< answers from another port or host than the one asked
    unsigned silentAtEnd = 0; ///< the last probes, if they ended the series because nothing at all came back
    int refusalCode = 0; ///< the last
    std::string otherHost{}; ///< the last of the other sources, if it is another host
    std::uint16_t otherPort = 0; ///< its port
    std::vector<double> milliseconds{}; ///< of the answers in time, sorted
    double latestMilliseconds = 0; ///< of the slowest late answer
};

struct ControllerReport {
    PortReport commands{.port = 10040};
    PortReport files{.port = 10041};
    unsigned attempts = 0; ///< at getting a first answer of both ports
    std::string software{};
    std::string model{};
    LinkReport link{};
};

/// Asks a controller for what it is, whether it serves files, and then `probes` times for its state. It only reads, and
/// opens no connection, which would clear motion targets: the file that it asks for does not exist. `progress` is told
/// the number of probes that are done, and ends the series by returning false.
ControllerReport Examine(std::string const& host, std::chrono::milliseconds timeout, unsigned probes,
                         std::function<bool(unsigned)> const& progress);

} // namespace harvlink::cli
