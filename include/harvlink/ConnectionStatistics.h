#pragma once

#include <array>
#include <chrono>
#include <cstdint>

#include "harvlink/ConnectOptions.h"

/// @file
/// What a connection has seen of its link since it was opened.

namespace harvlink {

/// How long the last 1,024 answered exchanges waited for their answer once the request was sent; all 0 while there was none.
/// An exchange that was asked again counts from the first time.
struct RoundTripTimes {
    std::uint32_t count = 0; ///< exchanges that these times are of, 1,024 at most
    std::uint32_t leastMicroseconds = 0;
    std::uint32_t medianMicroseconds = 0;
    std::uint32_t percentile95Microseconds = 0;
    std::uint32_t mostMicroseconds = 0;
};

/// One lost answer is not a lost link: a connection is silent after three exchanges in a row without an answer, and online
/// again with the first answer.
enum class LinkState : std::int32_t { Online = 0, Silent = 1 };

/// Counters and times of one connection.
struct ConnectionStatistics {
    std::uint64_t exchanges = 0; ///< requests that wait for an answer, each counted once
    std::uint64_t timeouts = 0; ///< exchanges that ended without an answer
    std::uint64_t lateAnswers = 0; ///< answers to an earlier exchange
    std::uint64_t doubledAnswers = 0; ///< a further answer to the exchange before, and repeated blocks of a file
    /// From another address or port. Told apart where Rule::KnownSender is audited; where it is enforced the system keeps
    /// them away.
    std::uint64_t foreignAnswers = 0;
    std::uint64_t malformedAnswers =
        0; ///< magic, division, header size, service or payload size do not fit, or too short
    std::uint64_t repeatedRequests = 0; ///< reads that were asked again
    std::uint64_t startUpRetries =
        0; ///< while the connection opened: reads asked again, and files read again from the start
    std::uint64_t blocksReceived = 0;
    std::uint64_t blocksSent = 0;
    std::uint64_t bytesReceived = 0; ///< of all datagrams
    std::uint64_t bytesSent = 0;
    RoundTripTimes roundTrip;
    std::array<std::uint64_t, RuleCount>
        ruleCounts{}; ///< how often each rule refused, or in an audit would have; by bit
    LinkState linkState = LinkState::Online;
    std::chrono::system_clock::time_point linkStateSince{}; ///< when it became so
};

} // namespace harvlink
