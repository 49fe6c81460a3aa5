#include "recording/write/Cut.h"

#include <limits>
#include <utility>

#include <fmt/format.h>

#include "recording/read/KnownState.h"
#include "words/text/Path.h"

namespace harvlink::recording {

using words::TextOf;

namespace {

class Copier {
public:
    Copier(Recording& recording, TimeRange const& range, std::uint32_t controller, SampleStore& store)
        : recording_(recording),
          range_(range),
          controller_(controller),
          store_(store),
          known_(recording.Contents()),
          events_(recording.Events(range)),
          gaps_(recording.Gaps(range)) {}

    ReadingIds Run() {
        AddContents();
        recording_.ForEachChange(range_, true, [this](Change const& change) {
            Use(change);
            return true;
        });
        Open();
        PutEventsBefore(std::numeric_limits<std::int64_t>::max());
        return ids_;
    }

private:
    bool IsWanted(std::uint32_t controller) const { return controller_ == 0 || controller == controller_; }

    void AddContents() {
        Catalogue const& contents = recording_.Contents();
        for (std::uint32_t id = 1; id <= contents.controllers.size(); ++id) {
            if (IsWanted(id)) {
                controllers_[id] = store_.AddController(contents.controllers[id - 1]);
            }
        }
        for (std::uint32_t id = 1; id <= contents.readings.size(); ++id) {
            RecordedReading reading = contents.readings[id - 1];
            if (IsWanted(reading.controller)) {
                reading.controller = controllers_.at(reading.controller);
                ids_[id] = store_.AddReading(reading);
            }
        }
    }

    RecordedSample InStore(RecordedSample sample) const {
        sample.reading = ids_.at(sample.reading);
        return sample;
    }

    void Use(Change const& change) {
        if (!ids_.contains(change.reading)) {
            return;
        }
        if (change.moment.answer < range_.begin) {
            lastMonotonic_ = change.moment.monotonic;
            lastTime_ = change.moment.answer;
            known_.Apply(change);
            return;
        }
        if (!isOpen_) {
            lastMonotonic_ = lastTime_ == 0 ? change.moment.monotonic : lastMonotonic_ + (range_.begin - lastTime_);
            Open();
        }
        PutEventsBefore(change.sequence);
        bool const isNew = known_.Samples()[change.reading - 1].moment.quality == RecordedQuality::NeverRead;
        RecordedSample const& sample = known_.Apply(change);
        if (!change.isPicture || isNew) {
            store_.Put(InStore(sample));
            CommitAtTimes();
        }
    }

    /// Begins with all that is known at the start of the range.
    void Open() {
        if (isOpen_) {
            return;
        }
        isOpen_ = true;
        for (RecordedSample const& sample : known_.Samples()) {
            if (ids_.contains(sample.reading)) {
                store_.Know(InStore(sample));
            }
        }
        if (lastTime_ != 0) {
            store_.StartAt(range_.begin, lastMonotonic_);
        }
    }

    void PutEventsBefore(std::int64_t sequence) {
        for (; event_ < events_.size() && events_[event_].sequence < sequence; ++event_) {
            RecordedEvent event = events_[event_].event;
            if (auto const found = controllers_.find(event.controller); found != controllers_.end()) {
                event.controller = found->second;
                store_.Put(std::move(event));
            }
        }
        for (; gap_ < gaps_.size() && gaps_[gap_].sequence < sequence; ++gap_) {
            store_.Put(gaps_[gap_].gap);
        }
    }

    /// A transaction without an end would keep all that it writes in the log.
    void CommitAtTimes() {
        constexpr std::uint64_t AtOnce = 50'000;
        if (++put_ % AtOnce == 0) {
            store_.Commit();
            store_.Begin();
        }
    }

    Recording& recording_;
    TimeRange range_;
    std::uint32_t controller_;
    SampleStore& store_;
    std::map<std::uint32_t, std::uint32_t> controllers_; ///< their ids here and in the store
    ReadingIds ids_;
    KnownState known_;
    std::vector<StoredEvent> events_;
    std::vector<StoredGap> gaps_;
    std::size_t event_ = 0;
    std::size_t gap_ = 0;
    bool isOpen_ = false;
    Microseconds lastTime_ = 0; ///< of what came before the range; 0: nothing did
    Microseconds lastMonotonic_ = 0;
    std::uint64_t put_ = 0;
};

} // namespace

ReadingIds CopyPart(Recording& recording, TimeRange const& range, std::uint32_t controller, SampleStore& store) {
    return Copier(recording, range, controller, store).Run();
}

void Cut(Recording& recording, TimeRange const& range, std::filesystem::path const& path) {
    if (std::filesystem::exists(path)) {
        throw RecordingError(fmt::format("{}: there is a file of that name", TextOf(path)));
    }
    SampleStore store(path);
    store.Begin();
    CopyPart(recording, range, 0, store);
    store.Commit();
    store.Close();
}

} // namespace harvlink::recording
