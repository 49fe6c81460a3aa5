#pragma once

#include "gateway/config/MqttConfig.h"
#include "gateway/sparkplug/Store.h"
#include "recording/forward/ForwardQueue.h"

namespace harvlink::gateway::sparkplug {

/// Keeps records in a folder: they survive the end of the program, however it comes.
class DiskStore final : public Store {
public:
    /// Throws recording::RecordingError if the folder can't be used.
    explicit DiskStore(MqttStoreConfig const& config);

    bool Append(recording::Microseconds time, std::string_view record) override;
    StoredRun Read(std::uint64_t id, std::size_t most) override;
    void RemoveBefore(std::uint64_t id) override;
    void Commit() override;
    StoreStatistics Statistics() const override;

private:
    std::uint64_t maxBytes_;
    recording::ForwardQueue queue_;
};

} // namespace harvlink::gateway::sparkplug
