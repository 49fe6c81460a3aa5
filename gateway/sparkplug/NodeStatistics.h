#pragma once

#include <string>
#include <vector>

#include "gateway/model/Observer.h"
#include "gateway/sparkplug/DeviceList.h"
#include "gateway/sparkplug/Forwarder.h"
#include "gateway/sparkplug/Session.h"

namespace harvlink::gateway::sparkplug {

/// How the edge node is doing.
struct NodeStatistics {
    SessionState state = SessionState::Waiting;
    std::string broker; ///< the one that is used or tried
    std::string lastError;
    std::uint64_t connects = 0; ///< sessions that a broker accepted
    std::uint64_t refusedCommands = 0;
    std::uint64_t jsonDropped = 0;
    std::size_t devices = 0;
    std::size_t devicesOnline = 0;
    SessionStatistics session{};
    DeviceStatistics data{};
    ForwardStatistics store{};
    std::uint64_t damaged = 0; ///< records of the store
};

std::vector<Figure> FiguresOf(NodeStatistics const& statistics, std::uint64_t droppedBeforeStore);

} // namespace harvlink::gateway::sparkplug
