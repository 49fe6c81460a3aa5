#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "recording/forward/ForwardState.h"
#include "recording/forward/Segment.h"
#include "recording/model/RecordingError.h"
#include "recording/store/FileLock.h"

namespace harvlink::recording {

struct ForwardOptions {
    std::uint64_t maxBytes = 256ULL << 20; ///< on the disk; beyond, the oldest go first. At least 256 KB
    std::chrono::microseconds keep{0}; ///< entries that are so much older than the last one go; 0: no limit
};

struct ForwardStatus {
    std::uint64_t next = 1; ///< number of the entry that is committed next
    std::uint64_t acknowledged = 0; ///< number up to which entries are acknowledged, dropped or known to be damaged
    std::uint64_t waiting = 0; ///< entries that are on the disk and not acknowledged
    std::uint64_t uncommitted = 0; ///< entries that a power cut would take
    std::uint64_t bytes = 0; ///< on the disk
    std::uint64_t droppedForSize = 0; ///< entries, since the queue was made; also what a full disk cost
    std::uint64_t droppedForAge = 0;
    std::uint64_t damaged = 0; ///< entries that were passed over because their bytes had changed
    std::string problem; ///< why the last Commit could not write everything; empty if it could
};

/// Store and forward: keeps what could not be sent, in files of a folder, until it is acknowledged. What a committed entry holds
/// comes back as it was or not at all: entries of which a byte has changed are passed over and counted. Entries are numbered one
/// after the other, and each that is ever committed is acknowledged, dropped or damaged in the end, and counted once.
///
/// For one thread. The constructor throws RecordingError, Busy if another program has the folder; nothing else throws for
/// what a disk does. What the disk did not take at once is tried again at the next Commit, and bounded by the size limit.
class ForwardQueue {
public:
    explicit ForwardQueue(std::filesystem::path folder, ForwardOptions const& options = {});
    ForwardQueue(ForwardQueue const&) = delete;
    ForwardQueue& operator=(ForwardQueue const&) = delete;
    /// Commits.
    ~ForwardQueue();

    /// Adds an entry, UTC `time` is when its content was true. It can be read after the next Commit. One that is larger than
    /// ForwardEntry::MostBytes is dropped and counted.
    void Append(Microseconds time, std::string_view content);

    /// Makes what was appended safe against a cut of power, and drops what is beyond the limits. Waits for the disk: call it once
    /// a second or so.
    void Commit();

    /// The oldest committed entries after number `after`, in order; those that are not acknowledged with `after` 0. At most so
    /// many, and of about so many bytes together.
    std::vector<ForwardEntry> Read(std::uint64_t after, std::size_t mostEntries, std::size_t mostBytes = 1U << 20);

    /// All entries up to this number, which Read gave, have arrived and are removed.
    void Acknowledge(std::uint64_t number);

    ForwardStatus Status() const;

private:
    using Segments = std::map<std::uint64_t, Segment>;

    void LoadSegments();
    void LoadState();
    void WriteWaiting();
    bool Write(std::vector<ForwardEntry>& entries);
    std::vector<ForwardEntry> TakeBatch();
    Segment& SegmentToWrite();
    void DropBeyondSize(std::uint64_t more);
    void DropOld();
    void DropFirst(std::uint64_t& count);
    void RemoveAcknowledged();
    void StoreState();
    bool ReadSegment(Segments::const_iterator segment, std::uint64_t& expected, std::vector<ForwardEntry>& entries,
                     std::function<bool()> const& isEnough);
    void NoteDamage(std::uint64_t first, std::uint64_t next);
    void PassOverDamage();
    std::uint64_t Bytes() const;
    std::uint64_t SegmentBytes() const;
    std::uint64_t EndOf(Segments::const_iterator segment) const;

    /// Where the last Read ended, so that the next need not begin at the start of the file.
    struct Cursor {
        std::uint64_t segment = 0;
        std::uint64_t expected = 0;
        std::size_t place = 0;
    };

    std::filesystem::path folder_;
    ForwardOptions options_;
    FileLock lock_;
    ForwardStateFile stateFile_;
    ForwardState state_;
    bool isStateStored_ = false;
    Segments segments_; ///< by their first numbers; one ends where the next begins
    bool mayAppend_ = false; ///< to the last segment: this program has begun it, so its end is whole
    std::map<std::uint64_t, std::uint64_t> damage_; ///< not yet counted: the first number, and the one behind
    std::deque<ForwardEntry> waiting_; ///< appended, not written
    std::uint64_t waitingBytes_ = 0;
    /// Time of the last entry. Not the newest: a clock that was ahead would make all others old.
    Microseconds last_ = 0;
    std::string problem_;
    std::string content_; ///< of the segment of the cursor
    Cursor cursor_;
};

} // namespace harvlink::recording
