#pragma once

#include <filesystem>
#include <string>

#include "cli/output/Output.h"
#include "cli/snapshot/Snapshot.h"
#include "harvlink/QuorvanController.h"

namespace harvlink::cli::snapshot {

/// Reads the selected sections of a controller one after the other. A part that can't be read is noted in the snapshot,
/// and the reading goes on. A controller that stops answering ends it.
Snapshot Capture(QuorvanController& robot, std::string const& host, Selection const& selection, Output& output,
                 std::filesystem::path const& scratch);

/// Throws InputError if a range or the name of a section is wrong.
void Check(Selection const& selection);

} // namespace harvlink::cli::snapshot
