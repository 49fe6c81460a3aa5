#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace harvlink::gateway {

/// A file of an incident.
struct Incident {
    std::string file; ///< without its folder
    std::string controller;
    std::string time; ///< as in the name: 20261122T031500Z
    std::string kind; ///< such as "alarm-4107"
    std::uint64_t bytes = 0;
    bool isComplete = false; ///< nothing is written to it any more
};

/// Newest first.
std::vector<Incident> ListIncidents(std::filesystem::path const& folder);

/// Makes those complete that a killed gateway has left. Those that another one writes stay as they are.
void FinishIncidents(std::filesystem::path const& folder);

/// The code of an alarm comes into the name of a file when it is complete, after somebody may have seen the name without it:
/// both names find it. Null if none does.
Incident const* FindIncident(std::vector<Incident> const& incidents, std::string const& file);

} // namespace harvlink::gateway
