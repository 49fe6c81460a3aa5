#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <vector>

#include "gateway/sparkplug/Backoff.h"
#include "gateway/sparkplug/Store.h"

namespace harvlink::gateway::sparkplug {

struct ForwardStatistics {
    std::uint64_t waiting = 0; ///< records that are to be sent as historical
    std::uint64_t dropped = 0; ///< records that left the full store before they were sent
    std::uint64_t notStored = 0; ///< records that the store did not take
    std::uint64_t bytes = 0; ///< of the store
    double lastsSeconds = 0.0; ///< until the store is full at the rate of the last minute; 0: not known yet
};

/// Decides what of the store is sent and when it may be forgotten. All changes go into the store first. What is sent stays there
/// until the connection has held for the window after it: what was in flight when a link died may be lost, so the next session
/// sends it again.
class Forwarder {
public:
    /// `window` is the time after which a record that was sent is certain to have arrived, if the connection still stands.
    Forwarder(Store& store, Milliseconds window, std::uint32_t valuesPerSecond, Moment now);

    /// Returns the id of the record, 0 if it could not be stored.
    std::uint64_t Append(recording::Microseconds time, std::string_view record, Moment now);

    /// Births are about to be sent: all that the store has waits to be sent as historical, and what comes from now on is live.
    void BeginSession(Moment now);
    /// Nothing is certain of what was sent and not confirmed.
    void EndSession();

    /// All records of this session before `id` have been sent live.
    void SentLive(std::uint64_t id, Moment now);
    /// The id that the next record gets.
    std::uint64_t Next() const { return store_.Statistics().next; }

    /// The next records that are historical, as many as the pace allows now.
    std::vector<StoredRecord> TakeHistorical(Moment now);
    /// They had so many values and are sent.
    void SentHistorical(std::size_t values);

    bool HasHistorical() const { return inSession_ && cursor_ < liveStart_; }

    /// Forgets what is certain to have arrived, and makes the rest safe each half second.
    void Settle(Moment now);

    ForwardStatistics Statistics() const;

private:
    /// Records [from, to) that were sent at a time.
    struct Mark {
        std::uint64_t from = 0;
        std::uint64_t to = 0;
        Moment sent{};
    };

    void CountDropped();
    void CommitNow(Moment now);
    void Confirm(std::uint64_t from, std::uint64_t to);
    void MeasureRate(Moment now);

    Store& store_;
    Milliseconds window_;
    double valuesPerSecond_;
    bool inSession_ = false;
    std::uint64_t cursor_ = 0; ///< the next historical record
    std::uint64_t liveStart_ = 0; ///< the first record of this session
    std::uint64_t liveSent_ = 0; ///< before it, all of this session are sent
    std::deque<Mark> marks_;
    std::map<std::uint64_t, std::uint64_t> confirmed_; ///< beginning and end of what need not be kept, behind a gap
    double allowance_ = 0.0; ///< values
    Moment allowedAt_;
    std::uint64_t appendedBytes_ = 0; ///< since measuredAt_
    Moment measuredAt_;
    double bytesPerSecond_ = 0.0;
    Moment committedAt_;
    std::uint64_t first_; ///< of the store, as it is known here
    std::uint64_t droppedByStore_; ///< the same
    std::uint64_t dropped_ = 0;
    std::uint64_t notStored_ = 0;
};

} // namespace harvlink::gateway::sparkplug
