#pragma once

#include <string>
#include <utility>
#include <vector>

#include "recording/read/Recording.h"
#include "recording/write/SampleStore.h"

namespace harvlink::recording {

inline constexpr Microseconds Begin = 1'790'000'000'000'000;
inline constexpr Microseconds Second = 1'000'000;

/// A controller with a position of two axes, a register and a name.
struct Cell {
    template <typename Store>
    explicit Cell(Store& store, std::string const& name = "press1")
        : controller(store.AddController({name, "127.0.0.1"})),
          position(store.AddReading(
              {.controller = controller,
               .name = "position R1 base",
               .kind = "position",
               .group = 1,
               .items = {{"x", "mm", RecordedType::Real, 1000}, {"y", "mm", RecordedType::Real, 1000}}})),
          number(store.AddReading(
              {.controller = controller, .name = "register 3", .kind = "register", .index = 3, .items = {{}}})),
          job(store.AddReading({.controller = controller,
                                .name = "job 0",
                                .kind = "job",
                                .items = {{"name", "", RecordedType::Text, 1}}})) {}

    std::uint32_t controller;
    std::uint32_t position;
    std::uint32_t number;
    std::uint32_t job;
};

/// A sample whose answer came two milliseconds after its request.
inline RecordedSample At(Microseconds time, std::uint32_t reading, std::vector<RecordedValue> values,
                         Microseconds clockSetBack = 0) {
    Microseconds const utc = Begin + time - clockSetBack;
    return {reading, {.request = utc - 2000, .answer = utc, .monotonic = 77 * Second + time}, std::move(values)};
}

inline std::vector<Change> ChangesOf(std::filesystem::path const& path, TimeRange const& range = {},
                                     bool withState = false) {
    std::vector<Change> changes;
    Recording recording(path);
    recording.ForEachChange(range, withState, [&](Change const& change) {
        changes.push_back(change);
        return true;
    });
    return changes;
}

} // namespace harvlink::recording
