#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "recording/model/Records.h"

namespace harvlink::gateway::sparkplug {

struct StoredRecord {
    std::uint64_t id = 0;
    std::string bytes;
};

struct StoredRun {
    std::vector<StoredRecord> records; ///< the oldest first
    std::uint64_t next =
        0; ///< where to go on; what is missing before it is damaged. That asked for: nothing is there yet
};

struct StoreStatistics {
    std::uint64_t first = 0; ///< id of the oldest record
    std::uint64_t next = 0; ///< id that the next record will get
    std::uint64_t bytes = 0;
    std::uint64_t maxBytes = 0;
    std::uint64_t dropped = 0; ///< records that went because it was full or they were too old
    std::uint64_t damaged = 0; ///< records that could not be read any more
    std::string problem{}; ///< why the last Commit could not write everything; empty if it could
};

/// Where changes wait until it is certain that the broker has them. Ids rise by one from record to record. When it is full, the
/// oldest go. For one thread.
class Store {
public:
    Store() = default;
    Store(Store const&) = delete;
    Store& operator=(Store const&) = delete;
    virtual ~Store() = default;

    static constexpr std::size_t MostRecordBytes = 64U << 10;

    /// `time` is when its content was read. False if it can't be stored. It can be read after the next Commit.
    virtual bool Append(recording::Microseconds time, std::string_view record) = 0;
    /// The oldest records from `id` on, at most `most`. Those that are damaged are left out.
    virtual StoredRun Read(std::uint64_t id, std::size_t most) = 0;
    virtual void RemoveBefore(std::uint64_t id) = 0;
    /// Makes all that was appended survive the end of the process. May take as long as the disk.
    virtual void Commit() {}
    virtual StoreStatistics Statistics() const = 0;
};

} // namespace harvlink::gateway::sparkplug
