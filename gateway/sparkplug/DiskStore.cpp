#include "gateway/sparkplug/DiskStore.h"

#include <algorithm>
#include <utility>

namespace harvlink::gateway::sparkplug {

DiskStore::DiskStore(MqttStoreConfig const& config)
    : maxBytes_(config.maxBytes), queue_(config.folder, {.maxBytes = config.maxBytes, .keep = config.maxAge}) {}

bool DiskStore::Append(recording::Microseconds time, std::string_view record) {
    static_assert(MostRecordBytes <= recording::ForwardEntry::MostBytes);
    if (record.size() > MostRecordBytes) {
        return false;
    }
    queue_.Append(time, record);
    return true;
}

StoredRun DiskStore::Read(std::uint64_t id, std::size_t most) {
    StoredRun run;
    for (recording::ForwardEntry& entry : queue_.Read(id - 1, most)) {
        run.records.push_back({entry.number, std::move(entry.content)});
    }
    run.next = run.records.empty() ? std::max(id, queue_.Status().next) : run.records.back().id + 1;
    return run;
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
