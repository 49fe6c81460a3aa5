#include "recording/write/Cut.h"

#include <algorithm>

#include <fmt/format.h>

#include "recording/read/KnownState.h"
#include "recording/write/SampleStore.h"

namespace harvlink::recording {

namespace {

class Cutter {
public:
    Cutter(Recording& recording, TimeRange const& range, std::filesystem::path const& path)
        : recording_(recording),
          range_(range),
          store_(path),
          known_(recording.Contents()),
          events_(recording.Events(range)),
          gaps_(recording.Gaps(range)) {}

    void Run() {
        AddContents();
        store_.Begin();
        recording_.ForEachChange(range_, true, [this](Change const& change) {
            Use(change);
            return true;
        });
        Open();
        PutEventsBefore(std::numeric_limits<std::int64_t>::max());
        store_.Commit();
        store_.Close();
    }

private:
    /// Ids of both files are the same, as both count from 1.
    void AddContents() {
        for (RecordedController const& controller : recording_.Contents().controllers) {
            store_.AddController(controller);
        }
        for (RecordedReading const& reading : recording_.Contents().readings) {
            store_.AddReading(reading);
        }
    }

    void Use(Change const& change) {
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
            store_.Put(sample);
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
            store_.Know(sample);
        }
        if (lastTime_ != 0) {
            store_.StartAt(range_.begin, lastMonotonic_);
        }
    }

    void PutEventsBefore(std::int64_t sequence) {
        for (; event_ < events_.size() && events_[event_].sequence < sequence; ++event_) {
            store_.Put(events_[event_].event);
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
    SampleStore store_;
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

void Cut(Recording& recording, TimeRange const& range, std::filesystem::path const& path) {
    if (std::filesystem::exists(path)) {
        throw RecordingError(fmt::format("{}: there is a file of that name", path.string()));
    }
    Cutter(recording, range, path).Run();
}

} // namespace harvlink::recording
