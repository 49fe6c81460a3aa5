#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "gateway/model/Batch.h"
#include "harvlink/Fleet.h"
#include "words/text/Encoding.h"

namespace harvlink::gateway {

/// What is read by these groups: rows spread out, nothing twice, each with its items and a name of its own.
std::vector<recording::RecordedReading> ReadingsOf(std::vector<FleetGroup> const& groups);

/// The period of each of these readings: the shortest of the groups that have it.
std::vector<std::chrono::milliseconds> PeriodsOf(std::vector<FleetGroup> const& groups);

/// Finds for samples and events of the fleet the controllers and readings of the gateway. For one thread.
class Converter {
public:
    /// The groups are those of which ReadingsOf made its readings.
    void Add(ControllerPtr const& controller, std::vector<FleetGroup> const& groups);
    void Remove(ControllerPtr const& controller);

    /// Null if its controller is not watched any more.
    SamplePtr Convert(FleetSample const& sample) const;

    /// Without a controller if it is not watched any more.
    Event Convert(FleetEvent const& event) const;

    using Key = std::array<std::int32_t, 8>;

private:
    struct KeyHash {
        std::size_t operator()(Key const& key) const;
    };
    struct Entry {
        ControllerPtr controller;
        words::TextEncoding encoding;
        std::unordered_map<Key, std::uint32_t, KeyHash> readings; ///< places
    };

    std::unordered_map<std::string, Entry> entries_; ///< by name
};

} // namespace harvlink::gateway
