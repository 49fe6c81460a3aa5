#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "gateway/model/Observer.h"
#include "recording/model/Kinds.h"

namespace harvlink::test {

using gateway::Controller;
using gateway::ControllerPtr;

inline std::int64_t MonotonicMicroseconds() {
    return std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}
inline std::int64_t UtcMicroseconds() {
    return std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::system_clock::now().time_since_epoch())
        .count();
}

/// Readings are pairs of kind and name.
inline ControllerPtr MakeController(std::uint32_t id, std::string name,
                                    std::vector<std::pair<std::string_view, std::string>> const& readings) {
    Controller controller;
    controller.id = id;
    controller.name = std::move(name);
    for (auto const& [kind, text] : readings) {
        recording::RecordedReading reading;
        reading.name = text;
        reading.kind = kind;
        reading.coordinate = 2;
        recording::SetItems(reading);
        controller.readings.push_back(std::move(reading));
    }
    return std::make_shared<Controller const>(std::move(controller));
}

/// A sample that was read now, or `shift` microseconds later by the clock.
inline gateway::SamplePtr MakeSample(ControllerPtr const& controller, std::uint32_t reading,
                                     std::vector<recording::RecordedValue> values, std::int64_t shift = 0,
                                     recording::RecordedQuality quality = recording::RecordedQuality::Good) {
    gateway::Sample sample{.controller = controller, .reading = reading, .moment = {}, .values = std::move(values)};
    sample.moment.quality = quality;
    sample.moment.answer = sample.moment.request = UtcMicroseconds() + shift;
    sample.moment.monotonic = MonotonicMicroseconds();
    return std::make_shared<gateway::Sample const>(std::move(sample));
}

inline gateway::Event MakeStateEvent(ControllerPtr const& controller, FleetState state) {
    gateway::Event event{.controller = controller, .kind = FleetEventKind::StateChanged, .record = {}};
    event.record.after = static_cast<std::int64_t>(state);
    event.record.time = UtcMicroseconds();
    event.record.monotonic = MonotonicMicroseconds();
    return event;
}

inline void Feed(gateway::Observer& observer, std::vector<gateway::SamplePtr> const& samples,
                 std::vector<gateway::Event> const& events = {}) {
    observer.Take({.samples = samples, .events = events});
}

/// Waits until `condition` holds, at most 20 seconds or so.
template <typename Condition>
bool Eventually(Condition const& condition, std::chrono::milliseconds limit = std::chrono::seconds(20)) {
    auto const end = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

} // namespace harvlink::test
