#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "gateway/model/Controller.h"
#include "harvlink/Fleet.h"
#include "recording/model/Records.h"

namespace harvlink::gateway {

/// One reading of a controller.
struct Sample {
    ControllerPtr controller;
    std::uint32_t reading = 0; ///< place in its readings
    recording::RecordedMoment moment{}; ///< quality, code, and times in microseconds: UTC, and monotonic
    /// One for each item of the reading. Of a stale reading they are the last that the controller gave; of one that was
    /// refused or never read there are none.
    std::vector<recording::RecordedValue> values;
};

/// Samples never change, so whoever wants to keep one shares it.
using SamplePtr = std::shared_ptr<Sample const>;

/// What happened to a controller.
struct Event {
    ControllerPtr controller;
    FleetEventKind kind = FleetEventKind::StateChanged; ///< of StateChanged, `record.after` is the FleetState
    recording::RecordedEvent
        record; ///< kind in words, times, before and after, text, card; its `controller` is not set
};

/// What came since the last batch, each in its order.
struct Batch {
    std::span<SamplePtr const> samples;
    std::span<Event const> events;
    std::uint64_t droppedSamples = 0; ///< since the last batch: more came than the gateway could take
};

} // namespace harvlink::gateway
