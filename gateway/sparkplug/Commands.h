#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace harvlink::gateway::sparkplug {

inline constexpr std::string_view RebirthMetric = "Node Control/Rebirth";

/// What a command message asks for. This node only reads, so there is one thing that it does.
struct Commands {
    bool wantsRebirth = false;
    std::vector<std::string> refused; ///< of everything else, what it is, for the log; at most MostRefused

    static constexpr std::size_t MostRefused = 8;
};

/// The payload of an NCMD. Damaged bytes are one refused command.
Commands ParseCommands(std::string_view payload);

} // namespace harvlink::gateway::sparkplug
