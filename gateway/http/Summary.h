#pragma once

#include <functional>
#include <map>

#include "gateway/watch/LatestTable.h"
#include "words/text/Json.h"

namespace harvlink::gateway {

/// The last round trips by the ids of controllers, microseconds.
using LastRoundTrips = std::map<std::uint32_t, recording::Microseconds>;

/// What a tile shows of a controller.
words::Json SummaryJson(LatestController const& latest, LastRoundTrips const& roundTrips);

/// False for readings whose values no summary shows: positions change all the time, summaries seldom.
bool IsInSummary(recording::RecordedReading const& reading);

/// An event of the table, and one of a recording.
words::Json EventJson(NumberedEvent const& event);
words::Json EventJson(std::uint64_t id, std::string const& controller, recording::RecordedEvent const& event);

} // namespace harvlink::gateway
