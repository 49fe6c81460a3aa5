#include "gateway/sparkplug/DeviceList.h"

#include <algorithm>

namespace harvlink::gateway::sparkplug {

namespace {

std::size_t SizeOf(proto::Payload const& payload) {
    return static_cast<std::size_t>(payload.metrics_size());
}

/// Milliseconds by which values may arrive out of order. If a value is earlier than that, the clock was set back, and what was
/// read before it goes into a payload of its own, which is sent first.
constexpr Timestamp SlightDisorder = 5;

void SortByTime(proto::Payload& payload) {
    auto& metrics = *payload.mutable_metrics();
    std::stable_sort(metrics.begin(), metrics.end(), [](proto::Metric const& left, proto::Metric const& right) {
        return left.timestamp() < right.timestamp();
    });
}

} // namespace

DeviceList::DeviceList(Forwarder& forwarder, Publisher& publisher, JsonTopics& json)
    : forwarder_(forwarder), publisher_(publisher), json_(json) {}

void DeviceList::Take(Delivery const& delivery, Moment now) {
    switch (delivery.kind) {
    case Delivery::Kind::Added:
        Add(delivery.controller);
        return;
    case Delivery::Kind::Removed:
        Remove(delivery.controller);
        return;
    case Delivery::Kind::Batch:
        break;
    }
    for (SamplePtr const& sample : delivery.samples) {
        TakeSample(sample, now);
    }
    for (Event const& event : delivery.events) {
        TakeEvent(event);
    }
}

void DeviceList::Add(ControllerPtr const& controller) {
    auto device = std::make_unique<Device>(controller, nextAlias_);
    nextAlias_ += device->Metrics().Size();
    ids_[device->Id()] = controller->id;
    entries_[controller->id].device = std::move(device);
}

/// Its death is published with the next changes. A controller of the same name may already be there by then.
void DeviceList::Remove(ControllerPtr const& controller) {
    auto const place = entries_.find(controller->id);
    if (place != entries_.end()) {
        place->second.isAlive = false;
        place->second.isRemoved = true;
    }
}

void DeviceList::TakeSample(SamplePtr const& sample, Moment now) {
    auto const place = entries_.find(sample->controller->id);
    if (place == entries_.end()) {
        return;
    }
    Entry& entry = place->second;
    bool const isGood = sample->moment.quality == recording::RecordedQuality::Good;
    if (isGood && !entry.isRemoved && sample->moment.monotonic > entry.diedAt) {
        entry.isAlive = true;
    }
    auto change = entry.device->Take(sample);
    if (!change) {
        return;
    }
    std::uint64_t const id = forwarder_.Append(sample->moment.answer, entry.device->StoredForm(*change), now);
    if (inSession_) {
        entry.pending.push_back({id, std::move(*change)});
        ++pending_;
    }
}

void DeviceList::TakeEvent(Event const& event) {
    if (event.kind != FleetEventKind::StateChanged || event.controller == nullptr) {
        return;
    }
    auto const place = entries_.find(event.controller->id);
    if (place == entries_.end() || place->second.isRemoved) {
        return;
    }
    auto const state = static_cast<FleetState>(event.record.after);
    bool const answers = state == FleetState::Online || state == FleetState::Late;
    place->second.isAlive = answers;
    if (!answers) {
        place->second.diedAt = event.record.monotonic;
    }
}

void DeviceList::PublishPending() {
    for (auto& [id, entry] : entries_) {
        if (entry.isBorn && !entry.isBornForHistory) {
            PublishData(entry);
        }
    }
}

void DeviceList::PublishBirths(bool isNewSession) {
    inSession_ = true;
    for (auto& [id, entry] : entries_) {
        entry.isBorn = entry.isBornForHistory = false;
        if (isNewSession) {
            pending_ -= entry.pending.size();
            entry.pending.clear();
        }
        if (entry.isAlive) {
            PublishBirth(entry);
        }
    }
    PublishPending();
}

void DeviceList::PublishChanges(Moment now) {
    for (auto place = entries_.begin(); place != entries_.end();) {
        Entry& entry = place->second;
        Publish(entry);
        if (entry.isRemoved) {
            auto const id = ids_.find(entry.device->Id());
            if (id != ids_.end() && id->second == place->first) {
                ids_.erase(id);
            }
            pending_ -= entry.pending.size();
            place = entries_.erase(place);
        } else {
            ++place;
        }
    }
    forwarder_.SentLive(FirstPending(), now);
}

void DeviceList::Publish(Entry& entry) {
    if (entry.isAlive && (!entry.isBorn || entry.isBornForHistory)) {
        if (entry.isBornForHistory) { // what was told as stale is now as good as it gets
            PublishDeath(entry);
        }
        PublishBirth(entry);
        PublishData(entry);
        return;
    }
    if (!entry.isAlive && !entry.isBorn && !forwarder_.HasHistorical()) {
        PublishLastWords(entry);
    }
    if (entry.isBorn && !entry.isBornForHistory) {
        PublishData(entry);
    }
    if (entry.isBorn && !entry.isAlive && (!entry.isBornForHistory || entry.isRemoved)) {
        PublishDeath(entry);
    }
}

/// Several changes of a reading may wait for the birth. It has the first of them, so that the others follow as data in their order.
void DeviceList::PublishBirth(Entry& entry) {
    PublishBirth(entry, Quality::Good, TakeFirstOfEach(entry));
}

std::vector<Change> DeviceList::TakeFirstOfEach(Entry& entry) {
    std::vector<Change> first;
    std::vector<bool> isTaken(entry.device->Source()->readings.size());
    std::vector<Pending> others;
    for (Pending& pending : entry.pending) {
        if (isTaken[pending.change.sample->reading]) {
            others.push_back(std::move(pending));
        } else {
            isTaken[pending.change.sample->reading] = true;
            first.push_back(std::move(pending.change));
        }
    }
    pending_ -= first.size();
    entry.pending = std::move(others);
    return first;
}

void DeviceList::PublishBirth(Entry& entry, Quality worth, std::vector<Change> const& earlier) {
    proto::Payload payload;
    entry.device->AddBirth(payload, Now(), worth, earlier);
    publisher_.Send(MessageType::DeviceBirth, *entry.device, payload);
    entry.isBorn = true;
    entry.isBornForHistory = worth != Quality::Good;
    ++statistics_.births;
    json_.PublishOnline(*entry.device, !entry.isBornForHistory);
    if (!entry.isBornForHistory) { // what does not change would never be there
        for (Change const& change : entry.device->Known(earlier)) {
            json_.Publish(*entry.device, change);
        }
    }
}

void DeviceList::PublishDeath(Entry& entry) {
    proto::Payload payload;
    publisher_.Send(MessageType::DeviceDeath, *entry.device, payload);
    entry.isBorn = entry.isBornForHistory = false;
    ++statistics_.deaths;
    json_.PublishOnline(*entry.device, false);
}

void DeviceList::PublishData(Entry& entry) {
    proto::Payload payload;
    Timestamp newest = 0;
    auto const send = [&] {
        if (payload.metrics_size() > 0) {
            statistics_.liveValues += SizeOf(payload);
            SortByTime(payload);
            publisher_.Send(MessageType::DeviceData, *entry.device, payload);
            payload.Clear();
        }
    };
    for (Pending const& pending : entry.pending) {
        if (pending.change.time + SlightDisorder < newest) {
            send();
            newest = 0;
        }
        newest = std::max(newest, pending.change.time);
        entry.device->AddData(payload, pending.change);
        json_.Publish(*entry.device, pending.change);
    }
    send();
    pending_ -= entry.pending.size();
    entry.pending.clear();
}

/// Values that were read before a controller fell silent may arrive after its death was published. They are published between
/// a birth and another death; if only refusals are waiting, nothing is.
void DeviceList::PublishLastWords(Entry& entry) {
    bool const hasValues = std::any_of(entry.pending.begin(), entry.pending.end(), [](Pending const& pending) {
        return pending.change.sample->moment.quality == recording::RecordedQuality::Good;
    });
    if (hasValues) {
        PublishBirth(entry, Quality::Stale);
        PublishUnsent(entry);
        PublishDeath(entry);
    }
    pending_ -= entry.pending.size();
    entry.pending.clear();
}

/// The birth has the latest of each reading, so the rest is history already.
void DeviceList::PublishUnsent(Entry& entry) {
    proto::Payload payload;
    for (Pending const& pending : entry.pending) {
        if (!entry.device->IsLatest(pending.change)) {
            entry.device->AddData(payload, pending.change);
        }
    }
    pending_ -= entry.pending.size();
    entry.pending.clear();
    for (proto::Metric& metric : *payload.mutable_metrics()) {
        metric.set_is_historical(true);
    }
    SendHistorical(entry, payload);
}

void DeviceList::SendHistorical(Entry& entry, proto::Payload& payload) {
    if (payload.metrics_size() > 0) {
        statistics_.historicalValues += SizeOf(payload);
        publisher_.Send(MessageType::DeviceData, *entry.device, payload);
    }
}

void DeviceList::PublishHistorical(Moment now) {
    auto const records = forwarder_.TakeHistorical(now);
    std::map<Entry*, proto::Payload> payloads;
    std::size_t values = records.size();
    for (StoredRecord const& record : records) {
        proto::Payload stored;
        bool const isWhole = stored.ParseFromString(record.bytes);
        Entry* const entry = isWhole ? Find(stored.uuid()) : nullptr;
        if (entry == nullptr) {
            statistics_.leftOut += std::max<std::size_t>(1, SizeOf(stored));
            continue;
        }
        values += SizeOf(stored);
        statistics_.leftOut += AddHistorical(payloads[entry], *entry->device, stored);
    }
    for (auto& [entry, payload] : payloads) {
        if (!entry->isBorn && payload.metrics_size() > 0) {
            PublishBirth(*entry, Quality::Stale);
        }
        SendHistorical(*entry, payload);
    }
    forwarder_.SentHistorical(values);
    if (!forwarder_.HasHistorical()) {
        EndHistory();
    }
}

void DeviceList::EndHistory() {
    for (auto& [id, entry] : entries_) {
        if (entry.isBornForHistory) {
            PublishDeath(entry);
        }
    }
}

void DeviceList::PublishOffline() {
    for (auto const& [id, entry] : entries_) {
        if (entry.isBorn && !entry.isBornForHistory) {
            json_.PublishOnline(*entry.device, false);
        }
    }
}

void DeviceList::EndSession() {
    inSession_ = false;
    pending_ = 0;
    for (auto& [id, entry] : entries_) {
        entry.isBorn = entry.isBornForHistory = false;
        entry.pending.clear();
    }
}

DeviceList::Entry* DeviceList::Find(std::string const& id) {
    auto const place = ids_.find(id);
    if (place == ids_.end()) {
        return nullptr;
    }
    Entry& entry = entries_.at(place->second);
    return entry.isRemoved ? nullptr : &entry;
}

std::size_t DeviceList::Online() const {
    return static_cast<std::size_t>(
        std::count_if(entries_.begin(), entries_.end(), [](auto const& entry) { return entry.second.isAlive; }));
}

/// Before it, all records of this session are published. Samples of a device wait longer if it is not born.
std::uint64_t DeviceList::FirstPending() const {
    std::uint64_t first = forwarder_.Next();
    for (auto const& [id, entry] : entries_) {
        for (Pending const& pending : entry.pending) {
            if (pending.id != 0) {
                first = std::min(first, pending.id);
                break;
            }
        }
    }
    return first;
}

} // namespace harvlink::gateway::sparkplug
