#include "gateway/watch/LatestTable.h"

#include <algorithm>
#include <utility>

namespace harvlink::gateway {

namespace {

/// In place: ten times a second, for all controllers of a plant, memory is not taken and given back.
void CopyChanged(LatestController const& from, std::uint64_t version, LatestController& to) {
    to.link = from.link;
    to.linkSince = from.linkSince;
    to.lastAnswer = from.lastAnswer;
    to.alarmSince = from.alarmSince;
    to.linkVersion = from.linkVersion;
    to.answerVersion = from.answerVersion;
    for (std::size_t i = 0; i < from.samples.size(); ++i) {
        if (from.versions[i] > version) {
            to.samples[i] = from.samples[i];
            to.versions[i] = from.versions[i];
        }
    }
}

} // namespace

void LatestTable::Added(ControllerPtr const& controller) {
    std::scoped_lock const lock(mutex_);
    LatestController entry;
    entry.controller = controller;
    entry.samples.resize(controller->readings.size());
    entry.versions.resize(controller->readings.size());
    controllers_.insert_or_assign(controller->id, std::move(entry));
    listVersion_ = ++version_;
}

void LatestTable::Removed(ControllerPtr const& controller) {
    std::scoped_lock const lock(mutex_);
    controllers_.erase(controller->id);
    listVersion_ = ++version_;
}

LatestController* LatestTable::Find(ControllerPtr const& controller) {
    auto const found = controllers_.find(controller->id);
    return found == controllers_.end() ? nullptr : &found->second;
}

void LatestTable::Take(Batch const& batch) {
    if (batch.samples.empty() && batch.events.empty()) {
        return;
    }
    std::scoped_lock const lock(mutex_);
    ++version_;
    for (SamplePtr const& sample : batch.samples) {
        LatestController* const entry = Find(sample->controller);
        if (entry == nullptr) {
            continue;
        }
        SamplePtr& known = entry->samples[sample->reading];
        bool const isSame = known != nullptr && known->moment.quality == sample->moment.quality &&
                            known->moment.code == sample->moment.code && known->values == sample->values;
        if (!isSame) {
            entry->versions[sample->reading] = version_;
        }
        known = sample;
        entry->answerVersion = version_;
        if (sample->moment.quality != recording::RecordedQuality::NeverRead) {
            entry->lastAnswer = std::max(entry->lastAnswer, sample->moment.answer);
        }
    }
    for (Event const& event : batch.events) {
        LatestController* const entry = Find(event.controller);
        if (entry == nullptr) {
            continue;
        }
        if (event.kind == FleetEventKind::StateChanged) {
            entry->link = static_cast<FleetState>(event.record.after);
            entry->linkSince = event.record.time;
            entry->linkVersion = version_;
        }
        if (event.kind == FleetEventKind::AlarmRaised) {
            entry->alarmSince = event.record.time;
        }
        events_.push_back({++lastEvent_, event});
        eventVersions_.push_back(version_);
        if (events_.size() > MostEvents) {
            events_.pop_front();
            eventVersions_.pop_front();
        }
    }
}

std::vector<LatestController> LatestTable::Snapshot() const {
    std::scoped_lock const lock(mutex_);
    std::vector<LatestController> all;
    all.reserve(controllers_.size());
    for (auto const& [id, entry] : controllers_) {
        all.push_back(entry);
    }
    return all;
}

std::array<std::size_t, 5> LatestTable::LinkCounts() const {
    std::scoped_lock const lock(mutex_);
    std::array<std::size_t, 5> counts{};
    for (auto const& [id, entry] : controllers_) {
        ++counts.at(static_cast<std::size_t>(entry.link));
    }
    return counts;
}

void LatestTable::BringUpToDate(LatestCopy& copy) const {
    std::scoped_lock const lock(mutex_);
    std::uint64_t const before = std::exchange(copy.version, version_);
    copy.versionBefore = before;
    copy.isWhole = before < listVersion_;
    copy.changed.clear();
    copy.events.clear();
    if (copy.isWhole) {
        copy.controllers = controllers_;
    }
    for (auto const& [id, entry] : controllers_) {
        if (copy.isWhole || entry.linkVersion > before || entry.answerVersion > before) {
            LatestController& known = copy.controllers.at(id);
            CopyChanged(entry, before, known);
            copy.changed.push_back(&known);
        }
    }
    for (std::size_t i = 0; i < events_.size(); ++i) {
        if (eventVersions_[i] > before) {
            copy.events.push_back(events_[i]);
        }
    }
}

std::vector<NumberedEvent> LatestTable::Events() const {
    std::scoped_lock const lock(mutex_);
    return {events_.begin(), events_.end()};
}

} // namespace harvlink::gateway
