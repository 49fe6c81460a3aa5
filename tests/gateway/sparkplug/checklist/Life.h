#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <sparkplug_b.pb.h>

#include "gateway/sparkplug/MqttPackets.h"

namespace harvlink::test {

/// A Sparkplug message of the node, as it left.
struct Message {
    std::string type; ///< "NBIRTH"
    std::string device; ///< empty: of the node
    MqttPacket packet;
    org::eclipse::tahu::protobuf::Payload payload;
    bool isDecoded = false;
};

/// What a node really exchanged with a real mosquitto.
struct Life {
    std::vector<MqttPacket> packets; ///< in both directions
    std::vector<Message> messages; ///< of the node, without its wills

    std::vector<Message> Of(std::string_view type) const;
    std::vector<MqttPacket> Packets(int type) const;
};

inline constexpr int SmallDevices = 130; ///< enough for the number of a message to go round

/// A node without a primary host: born, changing, commanded, its device lost and found, its link lost, and left on purpose. It is
/// lived once.
Life const& PlainLife();

/// What the node did at each step with a primary host. Births and connections are counted up to the step.
struct HostedLife {
    Life life;
    std::size_t birthsBeforeHost = 0; ///< nobody has said anything
    std::size_t birthsAfterOther = 0; ///< another host is online
    std::size_t birthsAfterOffline = 0; ///< the host is offline
    std::size_t birthsAfterOld = 0; ///< online, but older than that
    std::size_t birthsAfterOnline = 0;
    std::size_t connectionsAfterOldOffline = 0; ///< offline, but older than the online
    std::size_t connectionsAfterOffline = 0;
    std::size_t birthsWhileOffline = 0; ///< in the new connection
    std::size_t birthsAtTheEnd = 0; ///< it is online again
};

HostedLife const& LifeWithHost();

} // namespace harvlink::test
