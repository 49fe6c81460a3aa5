#include "gateway/sparkplug/Forwarder.h"

#include <algorithm>
#include <cmath>

namespace harvlink::gateway::sparkplug {

namespace {

using Seconds = std::chrono::duration<double>;

constexpr std::size_t MostRecordsAtOnce = 256;
constexpr double BurstSeconds = 0.5; ///< what may be sent at once after a pause
constexpr Milliseconds CommitEvery{500};
constexpr Seconds MeasureEvery{2.0};
constexpr double RateMemory = 60.0; ///< seconds over which the rate is averaged

} // namespace

Forwarder::Forwarder(Store& store, Milliseconds window, std::uint32_t valuesPerSecond, Moment now)
    : store_(store),
      window_(window),
      valuesPerSecond_(std::max<std::uint32_t>(1, valuesPerSecond)),
      allowedAt_(now),
      measuredAt_(now),
      committedAt_(now),
      first_(store.Statistics().first),
      droppedByStore_(store.Statistics().dropped) {}

std::uint64_t Forwarder::Append(recording::Microseconds time, std::string_view record, Moment now) {
    std::uint64_t const id = Next();
    if (!store_.Append(time, record)) {
        ++notStored_;
        return 0;
    }
    CountDropped();
    appendedBytes_ += record.size();
    MeasureRate(now);
    return id;
}

/// The store drops records by its limits. Only those that were never sent count as lost: in a session, what is before the cursor
/// was sent, and live values are sent at once. The store itself counts damaged records.
void Forwarder::CountDropped() {
    StoreStatistics const state = store_.Statistics();
    if (inSession_) {
        std::uint64_t const from = std::max(first_, cursor_);
        std::uint64_t const to = std::min(state.first, liveStart_);
        std::uint64_t const unsent = to > from ? to - from : 0;
        dropped_ += std::min(unsent, state.dropped - droppedByStore_);
        cursor_ = std::max(cursor_, to);
    } else {
        dropped_ += state.dropped - droppedByStore_;
    }
    first_ = state.first;
    droppedByStore_ = state.dropped;
}

void Forwarder::BeginSession(Moment now) {
    CommitNow(now); // what is appended can be read from here on
    StoreStatistics const state = store_.Statistics();
    inSession_ = true;
    marks_.clear();
    confirmed_.clear();
    cursor_ = state.first;
    liveStart_ = liveSent_ = state.next;
    allowance_ = 0.0;
    allowedAt_ = now;
}

void Forwarder::EndSession() {
    inSession_ = false;
    marks_.clear();
    confirmed_.clear();
}

void Forwarder::SentLive(std::uint64_t id, Moment now) {
    if (inSession_ && id > liveSent_) {
        marks_.push_back({liveSent_, id, now});
        liveSent_ = id;
    }
}

std::vector<StoredRecord> Forwarder::TakeHistorical(Moment now) {
    double const burst = valuesPerSecond_ * BurstSeconds;
    allowance_ = std::min(burst, allowance_ + valuesPerSecond_ * Seconds(now - allowedAt_).count());
    allowedAt_ = now;
    if (!HasHistorical() || allowance_ <= 0.0) {
        return {};
    }
    // A record has one value at least. More than its share it may take once, and pays for it with a longer pause.
    auto const most = std::min(static_cast<std::size_t>(std::ceil(allowance_)), MostRecordsAtOnce);
    auto run = store_.Read(cursor_, std::min<std::size_t>(most, liveStart_ - cursor_));
    std::uint64_t const end = std::min(run.next, liveStart_);
    if (end == cursor_) {
        return {}; // the store is busy
    }
    while (!run.records.empty() && run.records.back().id >= liveStart_) {
        run.records.pop_back(); // damaged ones were left out before
    }
    marks_.push_back({cursor_, end, now});
    cursor_ = end;
    return std::move(run.records);
}

void Forwarder::SentHistorical(std::size_t values) {
    allowance_ -= static_cast<double>(values);
}

void Forwarder::Settle(Moment now) {
    while (!marks_.empty() && now >= marks_.front().sent + window_) {
        Confirm(marks_.front().from, marks_.front().to);
        marks_.pop_front();
    }
    if (now >= committedAt_ + CommitEvery) {
        CommitNow(now);
    }
}

void Forwarder::CommitNow(Moment now) {
    store_.Commit();
    committedAt_ = now;
    CountDropped();
}

void Forwarder::Confirm(std::uint64_t from, std::uint64_t to) {
    auto const place = confirmed_.emplace(from, to).first;
    place->second = std::max(place->second, to);
    // Live records are confirmed in a row, and so are historical ones: two runs at most are joined here.
    for (auto next = std::next(place); next != confirmed_.end() && next->first <= place->second;
         next = confirmed_.erase(next)) {
        place->second = std::max(place->second, next->second);
    }
    if (place != confirmed_.begin() && std::prev(place)->second >= place->first) {
        auto const before = std::prev(place);
        before->second = std::max(before->second, place->second);
        confirmed_.erase(place);
    }
    if (confirmed_.begin()->first <= store_.Statistics().first) {
        store_.RemoveBefore(confirmed_.begin()->second);
        first_ = store_.Statistics().first;
        if (confirmed_.size() > 1) {
            confirmed_.erase(confirmed_.begin());
        }
    }
}

void Forwarder::MeasureRate(Moment now) {
    Seconds const passed = now - measuredAt_;
    if (passed < MeasureEvery) {
        return;
    }
    double const rate = static_cast<double>(appendedBytes_) / passed.count();
    double const weight = bytesPerSecond_ == 0.0 ? 1.0 : std::min(1.0, passed.count() / RateMemory);
    bytesPerSecond_ += (rate - bytesPerSecond_) * weight;
    appendedBytes_ = 0;
    measuredAt_ = now;
}

ForwardStatistics Forwarder::Statistics() const {
    StoreStatistics const state = store_.Statistics();
    std::uint64_t waiting = state.next - state.first;
    if (inSession_) {
        std::uint64_t const from = std::max(cursor_, state.first);
        waiting = liveStart_ > from ? liveStart_ - from : 0;
    }
    auto const room = static_cast<double>(state.maxBytes - std::min(state.bytes, state.maxBytes));
    return {.waiting = waiting,
            .dropped = dropped_,
            .notStored = notStored_,
            .bytes = state.bytes,
            .lastsSeconds = bytesPerSecond_ > 0.0 ? room / bytesPerSecond_ : 0.0};
}

} // namespace harvlink::gateway::sparkplug
