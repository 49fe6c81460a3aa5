#include "gateway/sparkplug/Publisher.h"

#include "gateway/sparkplug/NodeMetrics.h"

namespace harvlink::gateway::sparkplug {

void Publisher::Send(MessageType type, proto::Payload& payload) {
    SendTo(topics_.Of(type), payload);
}

void Publisher::Send(MessageType type, Device const& device, proto::Payload& payload) {
    SendTo(topics_.Of(type, device.Id()), payload);
}

void Publisher::SendTo(std::string const& topic, proto::Payload& payload) {
    payload.set_timestamp(Now());
    payload.set_seq(next_++);
    client_.Publish(topic, payload.SerializeAsString(), 0, false);
}

std::string NodeDeath(std::uint8_t session) {
    proto::Payload payload;
    AddSessionNumber(payload, session);
    return payload.SerializeAsString();
}

} // namespace harvlink::gateway::sparkplug
