#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace harvlink::test {

/// A packet of MQTT 3.1.1 as it stood on the wire. Which members are set depends on its type.
struct MqttPacket {
    enum Type { Connect = 1, Connack = 2, Publish = 3, Puback = 4, Subscribe = 8, Suback = 9, Disconnect = 14 };

    int type = 0;
    bool isFromNode = true;
    std::size_t connection = 0; ///< the how manieth
    std::uint64_t time = 0; ///< milliseconds UTC, when it was seen
    int qos = 0;
    bool retain = false;
    int id = 0;
    std::string topic; ///< of a subscription the first
    std::string payload;

    bool isClean = false;
    bool hasWill = false;
    int willQos = 0;
    bool willRetain = false;
    std::string willTopic;
    std::string will;
    std::string client;
};

/// Takes whole packets off the front of `stream`.
std::vector<MqttPacket> TakePackets(std::string& stream);

} // namespace harvlink::test
