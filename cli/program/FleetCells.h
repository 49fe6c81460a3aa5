#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/program/Session.h"
#include "harvlink/Fleet.h"

namespace harvlink::cli {

/// A controller that a fleet is to watch.
struct FleetCell {
    std::string name; ///< of the cell, or the host if none was named
    FleetControllerOptions options; ///< the address may be the name of a host
    std::string generation; ///< the only one that is wanted; empty: any
    std::string encoding; ///< of the controller's texts
};

/// The failure of a cell whose controller says with this value that it is of another generation than the one that is wanted.
std::optional<StatusInfo> WrongGeneration(FleetCell const& cell, FleetValue const& value);

/// The controllers that --cell, --all or --host name. Throws InputError.
std::vector<FleetCell> FleetCells(Session& session);

} // namespace harvlink::cli
