#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "gateway/config/MqttConfig.h"
#include "gateway/model/Log.h"
#include "gateway/model/Observer.h"
#include "gateway/sparkplug/Inbox.h"
#include "gateway/sparkplug/NodeStatistics.h"

namespace harvlink::gateway::sparkplug {

/// A Sparkplug B edge node with a device for each controller. It publishes from a thread of its own, connects again for ever, and
/// keeps what the broker does not get. It accepts no command but to be born again.
class EdgeNode final : public Observer {
public:
    /// Begins at once. Throws recording::RecordingError if the folder of the store can't be used. `log` must outlive the node.
    EdgeNode(MqttConfig const& config, Log& log);
    /// With a store of the caller's choice.
    EdgeNode(MqttConfig const& config, Log& log, std::unique_ptr<Store> store);
    /// Stops: leaves the broker and waits for the thread, less than a second.
    ~EdgeNode() override;

    void Added(ControllerPtr const& controller) override;
    void Removed(ControllerPtr const& controller) override;
    void Take(Batch const& batch) override;
    std::vector<Figure> Figures() const override;

    /// As of a tenth of a second ago.
    NodeStatistics Statistics() const;

private:
    void Run(MqttConfig const& config, Log& log);

    std::unique_ptr<Store> store_;
    Inbox inbox_;
    mutable std::mutex mutex_;
    NodeStatistics statistics_; ///< under the mutex
    std::atomic<bool> mustStop_{false};
    int wake_;
    std::thread thread_;
};

} // namespace harvlink::gateway::sparkplug
