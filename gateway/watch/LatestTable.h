#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <mutex>
#include <vector>

#include "gateway/model/Observer.h"

namespace harvlink::gateway {

/// What is known of a controller now.
struct LatestController {
    ControllerPtr controller;
    FleetState link = FleetState::Connecting;
    recording::Microseconds linkSince = 0; ///< UTC; 0: since it was added
    recording::Microseconds lastAnswer = 0; ///< UTC; 0: it has never answered
    recording::Microseconds alarmSince = 0; ///< UTC; when the last alarm was raised, 0 if none was
    std::uint64_t linkVersion = 0;
    std::uint64_t answerVersion = 0; ///< when it last answered, with new values or not
    std::vector<SamplePtr> samples; ///< by reading; null for what was never read
    std::vector<std::uint64_t> versions; ///< of the samples: when value or quality was last another than before
};

/// An event and its number, which counts from 1 as long as the gateway runs.
struct NumberedEvent {
    std::uint64_t number = 0;
    Event event;
};

/// The table as somebody knows it who follows its changes.
struct LatestCopy {
    std::uint64_t version = 0; ///< of the table; 0: nothing is known yet
    std::map<std::uint32_t, LatestController> controllers; ///< by id

    // What has become other when it was last brought up to date:
    std::uint64_t versionBefore = 0;
    bool isWhole = false; ///< controllers were added or removed: all of them have changed, and stand at other places
    std::vector<LatestController const*> changed;
    std::vector<NumberedEvent> events;
};

/// The last sample of each reading, the state of each link, and the last events. Each change has a version, which rises: whoever
/// knows the table at one version asks for what has changed since. May be read from any thread.
class LatestTable : public Observer {
public:
    static constexpr std::size_t MostEvents = 1000;

    void Added(ControllerPtr const& controller) override;
    void Removed(ControllerPtr const& controller) override;
    void Take(Batch const& batch) override;

    /// All controllers in the order in which they were added.
    std::vector<LatestController> Snapshot() const;

    /// How many controllers there are by their FleetState.
    std::array<std::size_t, 5> LinkCounts() const;

    /// Brings a copy up to date, in one moment: only what has changed since is copied.
    void BringUpToDate(LatestCopy& copy) const;

    /// The last events, oldest first.
    std::vector<NumberedEvent> Events() const;

private:
    LatestController* Find(ControllerPtr const& controller);

    mutable std::mutex mutex_;
    std::map<std::uint32_t, LatestController> controllers_; ///< by id, so in the order of adding
    std::deque<NumberedEvent> events_;
    std::deque<std::uint64_t> eventVersions_;
    std::uint64_t lastEvent_ = 0;
    std::uint64_t version_ = 1;
    std::uint64_t listVersion_ = 1; ///< when a controller was added or removed
};

} // namespace harvlink::gateway
