#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>

#include "harvlink/ConnectionStatistics.h"

namespace harvlink {

enum class LinkCounter : std::uint8_t {
    Exchanges,
    Timeouts,
    LateAnswers,
    DoubledAnswers,
    ForeignAnswers,
    MalformedAnswers,
    RepeatedRequests,
    StartUpRetries,
    BlocksReceived,
    BlocksSent,
    BytesReceived,
    BytesSent,
};

/// What ConnectionStatistics is read from. Counting waits for nobody. Rules count from any thread; all that belongs to an
/// exchange is noted by one thread at a time, the one that has its lock. A snapshot may be taken at any time, and its members are then a few
/// exchanges apart at most.
class LinkStatistics {
public:
    LinkStatistics();

    /// One writer at a time: a locked addition would cost each exchange more than all that it counts.
    void Add(LinkCounter counter, std::uint64_t amount = 1) {
        auto& count = counters[static_cast<std::size_t>(counter)];
        count.store(count.load(std::memory_order_relaxed) + amount, std::memory_order_relaxed);
    }
    void Count(Rule rule);
    void NoteAnswer(std::chrono::steady_clock::duration roundTrip);
    void NoteSilence();

    ConnectionStatistics Snapshot() const;

private:
    static constexpr std::size_t counterCount = 12;
    static constexpr std::size_t roundTripCount = 1024;
    static constexpr unsigned silentAfter = 3; ///< exchanges in a row

    void SetState(LinkState state);
    RoundTripTimes RoundTrips() const;

    std::array<std::atomic<std::uint64_t>, counterCount> counters{};
    std::array<std::atomic<std::uint64_t>, RuleCount> ruleCounts{};
    std::array<std::atomic<std::uint32_t>, roundTripCount> roundTrips{}; ///< microseconds; the oldest is overwritten
    std::atomic<std::uint64_t> answers = 0;
    std::atomic<unsigned> silencesInARow = 0;
    /// State and time in one, so that a snapshot never shows one with the other's: the time since the epoch of the system
    /// clock in nanoseconds, its lowest bit replaced by the state.
    std::atomic<std::int64_t> stateAndTime = 0;
};

} // namespace harvlink
