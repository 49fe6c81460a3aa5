#pragma once

#include <memory>
#include <thread>

#include "gateway/sparkplug/Store.h"

namespace harvlink::gateway::sparkplug {

/// Lets a thread of its own wait for the disk that another store writes to. However long the disk takes, no call here waits: what is
/// appended stays in memory, up to `mostBytes`, and what is read is there at a later call.
class BackgroundStore final : public Store {
public:
    BackgroundStore(std::unique_ptr<Store> store, std::uint64_t mostBytes);
    /// Commits, if the disk takes it within half a second. A disk that does not answer keeps the thread, not the caller.
    ~BackgroundStore() override;

    bool Append(recording::Microseconds time, std::string_view record) override;
    StoredRun Read(std::uint64_t id, std::size_t most) override;
    void RemoveBefore(std::uint64_t id) override;
    void Commit() override;
    StoreStatistics Statistics() const override;

private:
    struct Shared;
    static void Run(std::shared_ptr<Shared> const& shared);

    std::shared_ptr<Shared> shared_; ///< the thread may outlive this object
    std::thread thread_;
};

} // namespace harvlink::gateway::sparkplug
