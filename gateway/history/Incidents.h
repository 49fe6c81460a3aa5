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

} // namespace harvlink::gateway
