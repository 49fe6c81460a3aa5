#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <deque>
#include <string>
#include <vector>

#include "fleet/Item.h"
#include "fleet/LatestTable.h"
#include "system/Endpoint.h"

namespace harvlink::fleet {

/// Counts that one thread raises and any reads.
class Counter {
public:
    void Add(std::uint64_t amount = 1) { Set(Get() + amount); }
    void Set(std::uint64_t amount) { value.store(amount, std::memory_order_relaxed); }
    std::uint64_t Get() const { return value.load(std::memory_order_relaxed); }

private:
    std::atomic<std::uint64_t> value = 0;
};

/// A FleetGroup as the engine has it. Its items are those from `begin` to `end`.
struct Group {
    std::int64_t period = 0; ///< nanoseconds
    std::int64_t longestSilence = 0; ///< nanoseconds, 0 for none
    std::uint32_t begin = 0;
    std::uint32_t end = 0;
    bool onChange = false;

    // How it does.
    Counter rounds;
    Counter overruns;
    Counter interval; ///< mean of the last rounds, nanoseconds from begin to begin
    Counter lastRound; ///< nanoseconds
};

struct DeadBand {
    std::uint32_t item = 0;
    double width = 0.0;
};

/// A controller as the engine and the programs see it together: what does not change, the latest values, and counters. The
/// engine never waits for the others.
struct ControllerRecord {
    ControllerRecord(std::uint32_t recordId, std::string recordName, FleetControllerOptions given, Endpoint const& host,
                     std::vector<FleetGroup> const& fleetGroups);

    std::uint32_t const id;
    std::string const name;
    FleetControllerOptions const options;
    Endpoint const endpoint; ///< port 0

    std::deque<Group> groups; ///< their counters can't be moved
    std::vector<DeadBand> deadBands; ///< in the order of their items
    std::vector<Item> items; ///< of all groups in turn; those that share a datagram stand together
    LatestTable table;

    std::atomic<FleetState> state = FleetState::Connecting;
    std::atomic<std::int64_t> stateSince; ///< nanoseconds since the epoch
    Counter exchanges;
    Counter timeouts;
    Counter repeatedRequests;
    Counter lateAnswers;
    Counter malformedAnswers;
    Counter refusals;
    Counter startUps;

    /// Least nanoseconds from one request to the next.
    std::int64_t Spacing() const;

    /// By how many nanoseconds an answer may be read later than it could be, with its periods kept all the same.
    std::int64_t Patience() const;

    std::uint32_t ExchangesPerRound(Group const& group) const;

private:
    std::vector<Item> MakeItems(std::vector<FleetGroup> const& fleetGroups);
};

} // namespace harvlink::fleet
