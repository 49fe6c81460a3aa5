#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <stop_token>
#include <string>
#include <vector>

#include "recording/read/Recording.h"

namespace harvlink::recording {

/// Which numbers of a recording are wanted.
struct HistoryQuery {
    struct Item {
        std::string reading; ///< its name
        std::size_t place = 0; ///< of the item in the reading
    };
    std::string controller;
    std::vector<Item> items;
    Microseconds from = 0;
    Microseconds to = 0;
    std::size_t points = 1000; ///< at most so many parts of the time, each with its extremes
    std::chrono::milliseconds longest{5000}; ///< for reading
    std::stop_token stop{}; ///< ends reading as the time does
};

/// The values of an item over time. A point is there only where the value changed; without numbers, it begins a gap:
/// the controller was silent or refused, or nobody recorded.
struct HistorySeries {
    struct Point {
        Microseconds time = 0;
        RecordedValue low;
        RecordedValue high;
        RecordedValue last; ///< empty: a gap
    };
    std::vector<Point> points;
};

struct HistoryResult {
    std::vector<HistorySeries> series; ///< as the items of the query
    bool isCut = false; ///< the time for reading was over, or reading was stopped; the series end early
};

/// Reads the recording anew each time, which may be written meanwhile. Throws RecordingError.
HistoryResult ReadHistory(std::filesystem::path const& file, HistoryQuery const& query);

/// The events of a time, oldest first, with the names of their controllers.
struct PastEvent {
    std::int64_t number = 0; ///< place in the recording
    std::string controller;
    RecordedEvent event;
};
std::vector<PastEvent> ReadPastEvents(std::filesystem::path const& file, TimeRange const& range);

/// Calls `use` with them, the newest first, until it returns false.
void ForEachPastEvent(std::filesystem::path const& file, TimeRange const& range,
                      std::function<bool(PastEvent&&)> const& use);

} // namespace harvlink::recording
