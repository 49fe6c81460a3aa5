#pragma once

#include "cli/snapshot/Snapshot.h"
#include "cli/snapshot/Source.h"

namespace harvlink::cli::snapshot {

/// Each reads a section by asking until the controller refuses, and notes in the snapshot what it could not read.
void ReadGroups(Source& source, Snapshot& snapshot);
void ReadVariables(Source& source, Snapshot& snapshot);
void ReadSignals(Source& source, Snapshot& snapshot);
void ReadRegisters(Source& source, Snapshot& snapshot);

/// Those of a group for every group of the controller.
void ReadParameters(Source& source, Snapshot& snapshot);

} // namespace harvlink::cli::snapshot
