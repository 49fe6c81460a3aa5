#pragma once

#include <filesystem>
#include <functional>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "recording/model/Records.h"
#include "recording/store/Catalogue.h"

namespace harvlink::recording {

struct TimeRange {
    Microseconds begin = std::numeric_limits<Microseconds>::min();
    Microseconds end = std::numeric_limits<Microseconds>::max(); ///< not in the range itself
};

/// What has changed of a reading.
struct Change {
    std::int64_t sequence = 0;
    bool isPicture = false; ///< part of the full picture with which a segment begins; was known before
    std::uint32_t reading = 0;
    RecordedMoment moment{};
    std::vector<std::pair<int, RecordedValue>> values; ///< by place in the reading; none if the quality is not Good
};

struct StoredEvent {
    std::int64_t sequence = 0;
    RecordedEvent event{};
};

struct StoredGap {
    std::int64_t sequence = 0;
    RecordedGap gap{};
};

struct RecordingInfo {
    std::int64_t version = 0;
    std::uint64_t fileBytes = 0;
    std::uint64_t logBytes = 0;
    Microseconds begin = 0;
    Microseconds end = 0;
    Microseconds endMonotonic = 0;
    std::int64_t segments = 0;
    std::int64_t samples = 0;
    std::int64_t values = 0; ///< that are stored, without pictures
    std::int64_t events = 0;
    std::int64_t gaps = 0;
    std::int64_t missing = 0; ///< samples in the gaps
};

/// Reads a recording, also one that is being written: no read lasts long, so that the writer can empty its log. For one thread.
/// All operations throw RecordingError.
class Recording {
public:
    explicit Recording(std::filesystem::path const& path);

    /// Controllers and readings. Ids count from 1.
    Catalogue const& Contents() const { return catalogue_; }

    RecordingInfo Info();

    /// Calls `use` with all changes of the range in the order in which they were recorded, until it returns false. With
    /// `withState`, those before it come too, from the full picture at or before the start on.
    void ForEachChange(TimeRange const& range, bool withState, std::function<bool(Change const&)> const& use);

    /// Appends the changes of some hundred rows from row `sequence` on. Returns the row to go on with, 0 at the end.
    std::int64_t ReadSome(std::int64_t sequence, std::vector<Change>& changes);

    /// The monotonic time that belongs to a UTC time, and the first row of the segment in which it lies.
    struct Moment {
        Microseconds monotonic = 0;
        std::int64_t firstRow = 0;
    };
    Moment Find(Microseconds time);

    /// Calls `use` with all events of the range until it returns false.
    enum class Order { OldestFirst, NewestFirst };
    void ForEachEvent(TimeRange const& range, Order order, std::function<bool(StoredEvent&&)> const& use);

    std::vector<StoredEvent> Events(TimeRange const& range = {});

    /// The times in which nobody recorded: from the last sample of one run of the recorder to the first of the next one.
    std::vector<TimeRange> Pauses();

    std::vector<StoredGap> Gaps(TimeRange const& range = {});

private:
    struct Span {
        std::int64_t first = 0;
        std::int64_t last = 0;
    };
    std::vector<Span> SegmentsOf(TimeRange const& range);

    Database database_;
    Catalogue catalogue_;
    std::vector<std::vector<std::uint32_t>> readingsOfBlock_; ///< in the order of their slots
};

} // namespace harvlink::recording
