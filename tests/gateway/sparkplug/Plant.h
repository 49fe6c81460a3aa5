#pragma once

#include <atomic>
#include <fstream>
#include <memory>
#include <string>
#include <thread>

#include "gateway/sparkplug/Broker.h"
#include "gateway/sparkplug/EdgeNode.h"
#include "gateway/sparkplug/Feeder.h"
#include "gateway/sparkplug/Host.h"
#include "gateway/sparkplug/Tap.h"
#include "support/LoopbackAddress.h"
#include "support/ScratchFolder.h"

namespace harvlink::test {

/// Feeds a node with a variable that counts up from `first`.
class Series {
public:
    static constexpr char const* Metric = "press1/D001";

    explicit Series(gateway::Observer& node, std::int64_t first = 1, std::atomic<std::int64_t>* shown = nullptr)
        : node_(node),
          last_(first - 1),
          shown_(shown),
          controller_(MakeController(1, "press1", {{recording::kind::DoubleIntVariable, "D001"}})) {
        node_.Added(controller_);
        Feed(node_, {}, {MakeStateEvent(controller_, FleetState::Online)});
    }

    std::int64_t Last() const { return last_; }

    /// Feeds `count` values at once, as read in the milliseconds before.
    void FeedMany(std::int64_t count) {
        for (std::int64_t i = 0; i < count; ++i) {
            FeedOne((i - count) * 1000);
        }
    }

protected:
    void FeedOne(std::int64_t shift) {
        Feed(node_, {MakeSample(controller_, 0, {last_ + 1}, shift)});
        ++last_;
        if (shown_ != nullptr) {
            *shown_ = last_.load();
        }
    }

private:
    gateway::Observer& node_;
    std::atomic<std::int64_t> last_;
    std::atomic<std::int64_t>* shown_;
    ControllerPtr controller_;
};

/// Feeds the next value of a series every 20 ms, on a thread of its own.
class Counter : private Series {
public:
    using Series::Last;
    using Series::Metric;

    explicit Counter(gateway::Observer& node, std::int64_t first = 1, std::atomic<std::int64_t>* shown = nullptr)
        : Series(node, first, shown) {
        thread_ = std::thread([this] { Run(); });
    }
    Counter(Counter const&) = delete;
    Counter& operator=(Counter const&) = delete;
    ~Counter() { Stop(); }

    void ShiftClock(std::int64_t microseconds) { shift_ = microseconds; }
    std::int64_t Stop() {
        mustStop_ = true;
        if (thread_.joinable()) {
            thread_.join();
        }
        return Last();
    }

private:
    void Run() {
        while (!mustStop_) {
            FeedOne(shift_);
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
    }

    std::atomic<std::int64_t> shift_{0};
    std::atomic<bool> mustStop_{false};
    std::thread thread_;
};

/// A broker, a host that a node waits for, and what a node needs.
struct Plant {
    ScratchFolder folder;
    Broker broker{NextLoopbackAddress()};
    std::unique_ptr<Host> host = std::make_unique<Host>(broker.Address(), "scada");
    gateway::Log log{[](auto, auto const&) {}};
    gateway::MqttConfig config = Config();

    gateway::MqttConfig Config() const {
        gateway::MqttConfig made;
        made.brokers = {{broker.Address(), 1883}};
        made.group = "Plant";
        made.node = "gw1";
        made.primaryHost = "scada";
        made.keepAlive = std::chrono::seconds(5);
        made.store.folder = folder.Path() / "store";
        return made;
    }

    std::unique_ptr<gateway::sparkplug::EdgeNode> StartNode() {
        return std::make_unique<gateway::sparkplug::EdgeNode>(config, log);
    }
};

} // namespace harvlink::test
