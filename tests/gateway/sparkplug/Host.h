#pragma once

#include <atomic>
#include <cstdint>
#include <future>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <sparkplug_b.pb.h>

struct mosquitto;
struct mosquitto_message;

namespace harvlink::test {

/// A primary host: it says that it is online whenever it is connected, keeps what a node publishes, each value once by metric and
/// time, and notes whatever a host may not accept.
class Host {
public:
    using Payload = org::eclipse::tahu::protobuf::Payload;
    using Values = std::map<std::uint64_t, org::eclipse::tahu::protobuf::Metric>; ///< by time

    /// Returns when it is subscribed: a birth that is published before reaches nobody.
    Host(std::string address, std::string id);
    Host(Host const&) = delete;
    Host& operator=(Host const&) = delete;
    ~Host();

    void Publish(std::string const& topic, std::string const& payload, int qos = 1, bool retain = false);
    void SendState(bool isOnline, std::int64_t timestamp);

    /// Of "device/metric".
    Values ValuesOf(std::string const& metric) const;
    std::int64_t LiveValueOf(std::string const& metric) const;
    /// True if the integers 1 to `count` of a metric have all come.
    bool HasAll(std::string const& metric, std::int64_t count) const;
    std::set<std::int64_t> Missing(std::string const& metric, std::int64_t count) const;

    bool IsBorn(std::string const& device) const;
    std::size_t NodeBirths() const;
    std::uint64_t HistoricalValues() const;
    std::vector<std::string> Faults() const;
    std::map<std::string, std::string> PlainTopics() const;

private:
    void Run();
    void Take(mosquitto_message const& message);
    void TakeSparkplug(std::string const& type, std::string const& device, Payload const& payload);
    void TakeBirth(std::string const& device, Payload const& payload);
    void TakeData(std::string const& device, Payload const& payload);
    void Keep(std::string const& name, org::eclipse::tahu::protobuf::Metric const& metric);
    void CheckOrder(std::string const& name, std::uint64_t time);
    void CheckNumber(std::string const& type, Payload const& payload);
    void Expect(bool condition, std::string const& fault);

    std::string address_;
    std::string id_;
    mosquitto* client_ = nullptr;
    std::atomic<bool> mustStop_{false};
    std::promise<void> subscribed_; ///< for the first time
    std::once_flag isSubscribed_;
    mutable std::recursive_mutex mutex_;
    bool isNodeBorn_ = false;
    std::int64_t session_ = -1;
    int next_ = -1;
    std::set<std::string> born_;
    std::map<std::uint64_t, std::string> aliases_;
    std::map<std::string, Values> values_;
    std::map<std::string, std::int64_t> live_;
    std::map<std::string, std::uint64_t> lastHistorical_; ///< of this session
    std::map<std::string, std::string> plain_;
    std::size_t nodeBirths_ = 0;
    std::uint64_t historical_ = 0;
    std::vector<std::string> faults_;
    std::thread thread_;
};

} // namespace harvlink::test
