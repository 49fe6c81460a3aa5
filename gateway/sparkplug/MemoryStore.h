#pragma once

#include <deque>

#include "gateway/sparkplug/Store.h"

namespace harvlink::gateway::sparkplug {

/// Keeps records as long as the program runs, for a node without a folder.
class MemoryStore : public Store {
public:
    explicit MemoryStore(std::uint64_t maxBytes) : maxBytes_(maxBytes) {}

    bool Append(recording::Microseconds time, std::string_view record) override;
    StoredRun Read(std::uint64_t id, std::size_t most) override;
    void RemoveBefore(std::uint64_t id) override;
    StoreStatistics Statistics() const override;

private:
    void RemoveFirst();

    std::uint64_t maxBytes_;
    std::uint64_t bytes_ = 0;
    std::uint64_t first_ = 1;
    std::uint64_t dropped_ = 0;
    std::deque<std::string> records_;
};

} // namespace harvlink::gateway::sparkplug
