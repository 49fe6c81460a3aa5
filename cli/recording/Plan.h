#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "cli/program/FleetCells.h"
#include "harvlink/Fleet.h"
#include "words/values/SignalText.h"

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

/// A controller, what to read of it, and how often.
struct PlannedController {
    FleetCell cell; ///< by its address
    std::vector<FleetGroup> groups;
    std::vector<words::SignalName> signalsByClass; ///< whose addresses only the controller knows
};

/// The controllers that --cell, --all or --host name. Throws InputError.
std::vector<PlannedController> ControllersOf(PlanArguments const& arguments, Session& session);

/// Adds signals that are named by their class to the first of the groups. Asks the controller which addresses they have, if there
/// are any.
StatusInfo AddSignalsByClass(PlannedController const& controller, std::vector<FleetGroup>& groups);

} // namespace harvlink::cli::recordings
