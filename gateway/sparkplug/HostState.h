#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace harvlink::gateway::sparkplug {

/// What a host says of itself in its STATE topic.
struct HostState {
    bool isOnline = false;
    std::int64_t timestamp = 0; ///< milliseconds UTC since 1970
};

/// Nothing if the payload is not JSON with a truth value "online" and an integer "timestamp".
std::optional<HostState> ParseHostState(std::string_view payload);

/// The primary host as one broker shows it. What is older than what was accepted last does not count.
class HostGate {
public:
    /// False if the state is too old.
    bool Accept(HostState const& state);

private:
    std::optional<std::int64_t> last_;
};

} // namespace harvlink::gateway::sparkplug
