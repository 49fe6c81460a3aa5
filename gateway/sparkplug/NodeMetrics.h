#pragma once

#include <array>
#include <cstdint>

#include "gateway/sparkplug/Device.h"

namespace harvlink::gateway::sparkplug {

/// bdSeq, by which a host knows which birth a death ends.
proto::Metric& AddSessionNumber(proto::Payload& payload, std::uint8_t session);

/// What the node says of itself.
struct NodeValues {
    std::int64_t controllers = 0;
    std::int64_t controllersOnline = 0;
    std::int64_t waiting = 0;
    std::int64_t dropped = 0;
};

/// The metrics of the node, and which of them have changed.
class NodeMetrics {
public:
    /// All that a birth of the node has.
    void AddBirth(proto::Payload& payload, Timestamp now, std::uint8_t session, NodeValues const& values);

    /// What has changed since it was sent last; the payload stays empty if nothing has.
    void AddChanges(proto::Payload& payload, Timestamp now, NodeValues const& values);

private:
    using Numbers = std::array<std::int64_t, 4>;
    static Numbers NumbersOf(NodeValues const& values);

    Numbers sent_{};
};

} // namespace harvlink::gateway::sparkplug
