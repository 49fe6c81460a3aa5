#pragma once

#include <filesystem>
#include <string>

#include "cli/output/Output.h"
#include "cli/snapshot/Snapshot.h"
#include "harvlink/QuorvanController.h"

namespace harvlink::cli::snapshot {

/// Reads what is selected of a controller, section by section. What can't be read is noted in the snapshot, and the rest is
/// gone on with; after silence or Ctrl-C only what was read until then is in it.
Snapshot Capture(QuorvanController& robot, std::string const& host, Selection const& selection, Output& output,
                 std::filesystem::path const& scratch);

/// Throws InputError if a range or name of a section can't be understood.
void Check(Selection const& selection);

} // namespace harvlink::cli::snapshot
