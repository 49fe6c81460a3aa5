#pragma once

#include <cstdint>
#include <string>

#include "gateway/sparkplug/Device.h"
#include "gateway/sparkplug/MqttClient.h"
#include "gateway/sparkplug/Topics.h"

namespace harvlink::gateway::sparkplug {

/// Numbers payloads and sends them, in one order. A message that was numbered and not sent would leave a gap, so the client then
/// fails and a new session begins.
class Publisher {
public:
    Publisher(MqttClient& client, Topics topics) : client_(client), topics_(std::move(topics)) {}

    Topics const& Names() const { return topics_; }

    /// The next message is a node's birth, which has number 0.
    void Restart() { next_ = 0; }

    /// Puts time of sending and number into the payload.
    void Send(MessageType type, proto::Payload& payload);
    void Send(MessageType type, Device const& device, proto::Payload& payload);

private:
    void SendTo(std::string const& topic, proto::Payload& payload);

    MqttClient& client_;
    Topics topics_;
    std::uint8_t next_ = 0;
};

/// The will, which is also what a node publishes when it leaves: the number of the session and nothing else.
std::string NodeDeath(std::uint8_t session);

} // namespace harvlink::gateway::sparkplug
