#include "gateway/sparkplug/HostState.h"

#include <limits>

#include <nlohmann/json.hpp>

namespace harvlink::gateway::sparkplug {

std::optional<HostState> ParseHostState(std::string_view payload) {
    constexpr std::size_t LongestState = 4096; // a state has about fifty bytes
    if (payload.size() > LongestState) {
        return std::nullopt;
    }
    auto const json = nlohmann::json::parse(payload, nullptr, false);
    if (!json.is_object()) {
        return std::nullopt;
    }
    auto const online = json.find("online");
    auto const timestamp = json.find("timestamp");
    if (online == json.end() || !online->is_boolean() || timestamp == json.end() || !timestamp->is_number_integer()) {
        return std::nullopt;
    }
    if (timestamp->is_number_unsigned() &&
        timestamp->get<std::uint64_t>() > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
        return std::nullopt;
    }
    return HostState{.isOnline = online->get<bool>(), .timestamp = timestamp->get<std::int64_t>()};
}

bool HostGate::Accept(HostState const& state) {
    if (last_ && state.timestamp < *last_) {
        return false;
    }
    last_ = state.timestamp;
    return true;
}

} // namespace harvlink::gateway::sparkplug
