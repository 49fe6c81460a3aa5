#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "gateway/sparkplug/MqttPackets.h"

namespace harvlink::test {

/// Stands between a node and a broker: passes on what they send, notes the packets, and breaks the link as a network does.
class Tap {
public:
    /// Listens at `address`, port 1884, for the broker at port 1883 there.
    explicit Tap(std::string address);
    Tap(Tap const&) = delete;
    Tap& operator=(Tap const&) = delete;
    ~Tap();

    static constexpr std::uint16_t Port = 1884;

    /// Nothing passes any more in either direction, and nobody is told.
    void Freeze() { isFrozen_ = true; }
    /// New connections pass again. What was under way in the old ones is lost.
    void Thaw();
    /// All passes again, late and in order.
    void Resume() { isFrozen_ = false; }
    /// Closes all connections.
    void Cut() { mustCut_ = true; }

    std::vector<MqttPacket> Packets() const;

private:
    struct Link {
        int node = -1;
        int broker = -1;
        std::size_t number = 0;
        std::string fromNode;
        std::string fromBroker;
    };

    void Run();
    void Accept();
    bool Pass(Link& link, bool fromNode);
    static void Close(Link& link);

    std::string address_;
    int listener_ = -1;
    std::atomic<bool> mustStop_{false};
    std::atomic<bool> isFrozen_{false};
    std::atomic<bool> mustCut_{false};
    std::vector<Link> links_; ///< of the thread
    std::size_t accepted_ = 0;
    mutable std::mutex mutex_;
    std::vector<MqttPacket> packets_; ///< under the mutex
    std::thread thread_;
};

} // namespace harvlink::test
