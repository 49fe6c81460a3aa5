#include "gateway/sparkplug/DiskStore.h"

#include <utility>

namespace harvlink::gateway::sparkplug {

DiskStore::DiskStore(MqttStoreConfig const& config)
    : maxBytes_(config.maxBytes), queue_(config.folder, {.maxBytes = config.maxBytes, .keep = config.maxAge}) {}

bool DiskStore::Append(recording::Microseconds time, std::string_view record) {
    if (record.size() > recording::ForwardEntry::MostBytes) {
        return false;
    }
    queue_.Append(time, record);
    return true;
}

std::vector<StoredRecord> DiskStore::Read(std::uint64_t id, std::size_t most) {
    std::vector<StoredRecord> records;
    for (recording::ForwardEntry& entry : queue_.Read(id - 1, most)) {
        records.push_back({entry.number, std::move(entry.content)});
    }
    return records;
}

void DiskStore::RemoveBefore(std::uint64_t id) {
    queue_.Acknowledge(id - 1);
}

void DiskStore::Commit() {
    queue_.Commit();
}

StoreStatistics DiskStore::Statistics() const {
    recording::ForwardStatus const status = queue_.Status();
    return {.first = status.acknowledged + 1,
            .next = status.next + status.uncommitted,
            .bytes = status.bytes,
            .maxBytes = maxBytes_,
            .dropped = status.droppedForSize + status.droppedForAge,
            .damaged = status.damaged,
            .problem = status.problem};
}

} // namespace harvlink::gateway::sparkplug
