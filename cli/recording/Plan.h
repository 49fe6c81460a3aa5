#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "cli/program/FleetCells.h"
#include "harvlink/Fleet.h"

namespace harvlink::cli::recordings {

/// What is recorded of each controller.
struct PlanArguments {
    std::string every = "100ms";
    std::vector<std::string> groups{"R1"};
    std::vector<std::string> coordinates{"pulse", "base"};
    std::vector<std::string> variables;
    std::vector<std::string> signals;
    std::vector<std::string> registers;

    void AddOptions(CLI::App& verb);
};

/// The controllers that --cell, --all or --host name, by their addresses. Throws InputError.
std::vector<FleetCell> ControllersOf(Session& session);

/// What to read of each of them, and how often. Throws InputError.
std::vector<FleetGroup> GroupsOf(PlanArguments const& arguments);

} // namespace harvlink::cli::recordings
