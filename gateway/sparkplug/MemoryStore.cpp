#include "gateway/sparkplug/MemoryStore.h"

#include <algorithm>

namespace harvlink::gateway::sparkplug {

bool MemoryStore::Append(recording::Microseconds /*time*/, std::string_view record) {
    records_.emplace_back(record);
    bytes_ += record.size();
    while (bytes_ > maxBytes_ && records_.size() > 1) {
        RemoveFirst();
        ++dropped_;
    }
    return true;
}

void MemoryStore::RemoveFirst() {
    bytes_ -= records_.front().size();
    records_.pop_front();
    ++first_;
}

StoredRun MemoryStore::Read(std::uint64_t id, std::size_t most) {
    StoredRun run{.records = {}, .next = std::max(id, first_)};
    for (; run.next < first_ + records_.size() && run.records.size() < most; ++run.next) {
        run.records.push_back({run.next, records_[run.next - first_]});
    }
    return run;
}

void MemoryStore::RemoveBefore(std::uint64_t id) {
    while (!records_.empty() && first_ < id) {
        RemoveFirst();
    }
}

StoreStatistics MemoryStore::Statistics() const {
    return {.first = first_,
            .next = first_ + records_.size(),
            .bytes = bytes_,
            .maxBytes = maxBytes_,
            .dropped = dropped_,
            .damaged = 0};
}

} // namespace harvlink::gateway::sparkplug
