#include "recording/blackbox/RingFile.h"

#include <limits>
#include <utility>

#include "recording/read/Recording.h"

namespace harvlink::recording {

RingFile::RingFile(std::filesystem::path const& path, std::chrono::microseconds keep)
    : path_(path), store_(path, {.keep = keep}) {
    store_.Begin();
}

void RingFile::AddController(std::uint32_t id, RecordedController const& controller) {
    controllers_[id] = store_.AddController(controller);
}

void RingFile::AddReading(std::uint32_t id, RecordedReading reading) {
    reading.controller = controllers_.at(reading.controller);
    readings_[id] = store_.AddReading(reading);
}

void RingFile::Put(RecordedSample sample) {
    sample.reading = readings_.at(sample.reading);
    store_.Put(sample);
}

void RingFile::Put(RecordedEvent event) {
    event.controller = controllers_.at(event.controller);
    store_.Put(std::move(event));
}

void RingFile::Put(RecordedGap gap) {
    store_.Put(std::move(gap));
}

void RingFile::Commit() {
    store_.Commit();
    store_.Begin();
}

ReadingIds RingFile::CopyFrom(Microseconds begin, std::uint32_t controller, SampleStore& store) {
    Commit();
    Recording recording(path_);
    TimeRange const range{.begin = begin, .end = std::numeric_limits<Microseconds>::max()};
    ReadingIds const copied = CopyPart(recording, range, controllers_.at(controller), store);
    ReadingIds ids;
    for (auto const& [id, inFile] : readings_) {
        if (auto const found = copied.find(inFile); found != copied.end()) {
            ids[id] = found->second;
        }
    }
    return ids;
}

} // namespace harvlink::recording
