#pragma once

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

/// The controllers that --cell, --all or --host name. Throws InputError.
std::vector<FleetCell> FleetCells(Session& session);

} // namespace harvlink::cli
