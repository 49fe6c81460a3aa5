#pragma once

#include <cstdint>
#include <string>

#include "gateway/config/MqttConfig.h"
#include "gateway/sparkplug/Device.h"
#include "gateway/sparkplug/MqttClient.h"

namespace harvlink::gateway::sparkplug {

/// Plain topics beside the Sparkplug ones, for consumers that do not decode them: the latest reading as JSON.
class JsonTopics {
public:
    JsonTopics(MqttClient& client, MqttJsonConfig config, std::string node);

    /// TOPIC/NODE/CONTROLLER/READING: {"timestamp": milliseconds UTC, "quality": "good", "value": 1.5}, or with several items
    /// "values" and their names. A number that is not finite is null.
    void Publish(Device const& device, Change const& change);
    /// TOPIC/NODE/CONTROLLER/online: true or false.
    void PublishOnline(Device const& device, bool isOnline);

    void Acknowledged();
    void EndSession() { unacknowledged_ = 0; }
    std::uint64_t Dropped() const { return dropped_; }

private:
    static constexpr int MostUnacknowledged = 10'000; ///< beyond, the broker does not keep up

    void Send(std::string const& topic, std::string const& payload);

    MqttClient& client_;
    MqttJsonConfig config_;
    std::string node_;
    int unacknowledged_ = 0; ///< with QoS 1
    std::uint64_t dropped_ = 0;
};

} // namespace harvlink::gateway::sparkplug
