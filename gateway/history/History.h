#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "recording/read/Recording.h"

namespace harvlink::gateway {

/// Which numbers of a recording are wanted.
struct HistoryQuery {
    struct Item {
        std::string reading; ///< its name
        std::size_t place = 0; ///< of the item in the reading
    };
    std::string controller;
    std::vector<Item> items;
    recording::Microseconds from = 0;
    recording::Microseconds to = 0;
    std::size_t points = 1000; ///< at most so many parts of the time, each with its extremes
    std::chrono::milliseconds longest{5000}; ///< for reading
};

/// The values of an item over time. A point is there only where the value changed; without numbers, it begins a gap.
struct HistorySeries {
    struct Point {
        recording::Microseconds time = 0;
        recording::RecordedValue low;
        recording::RecordedValue high;
        recording::RecordedValue last; ///< empty: the controller was silent or refused
    };
    std::vector<Point> points;
};

struct HistoryResult {
    std::vector<HistorySeries> series; ///< as the items of the query
    bool isCut = false; ///< the time for reading was over; the series end early
};

/// Reads the recording anew each time, which may be written meanwhile. Throws recording::RecordingError.
HistoryResult ReadHistory(std::filesystem::path const& file, HistoryQuery const& query);

/// The events of a time, oldest first, with the names of their controllers.
struct PastEvent {
    std::int64_t number = 0; ///< place in the recording
    std::string controller;
    recording::RecordedEvent event;
};
std::vector<PastEvent> ReadPastEvents(std::filesystem::path const& file, recording::TimeRange const& range);

/// A file of an incident.
struct Incident {
    std::string file; ///< without its folder
    std::string controller;
    std::string time; ///< as in the name: 20261122T031500Z
    std::string kind; ///< such as "alarm-4107"
    std::uint64_t bytes = 0;
    bool isComplete = false; ///< nothing is written to it any more
};

/// Newest first.
std::vector<Incident> ListIncidents(std::filesystem::path const& folder);

} // namespace harvlink::gateway
