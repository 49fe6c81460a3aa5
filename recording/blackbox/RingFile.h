#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <map>

#include "recording/write/Cut.h"
#include "recording/write/SampleStore.h"

namespace harvlink::recording {

/// A recording that forgets what is older than a time. For one thread; throws RecordingError.
class RingFile {
public:
    RingFile(std::filesystem::path const& path, std::chrono::microseconds keep);

    /// Before the first of its samples: names a controller or reading by the id that the caller has for it.
    void AddController(std::uint32_t id, RecordedController const& controller);
    void AddReading(std::uint32_t id, RecordedReading reading);
    bool HasController(std::uint32_t id) const { return controllers_.contains(id); }
    bool HasReading(std::uint32_t id) const { return readings_.contains(id); }

    void Put(RecordedSample sample);
    void Put(RecordedEvent event);
    void Put(RecordedGap gap);
    void Commit();

    /// Puts what a controller said from a time on into a new store, whose transaction has begun. Returns the readings there
    /// by the caller's ids.
    ReadingIds CopyFrom(Microseconds begin, std::uint32_t controller, SampleStore& store);

private:
    std::filesystem::path path_;
    SampleStore store_;
    std::map<std::uint32_t, std::uint32_t> controllers_; ///< by the caller's ids
    ReadingIds readings_;
};

} // namespace harvlink::recording
