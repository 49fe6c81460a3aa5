#pragma once

#include "cli/snapshot/Snapshot.h"
#include "cli/snapshot/Source.h"

namespace harvlink::cli::snapshot {

/// Each reads one section until the controller refuses, and notes in the snapshot what it could not read.
void ReadGroups(Source& source, Snapshot& snapshot);
void ReadVariables(Source& source, Snapshot& snapshot);
void ReadSignals(Source& source, Snapshot& snapshot);
void ReadRegisters(Source& source, Snapshot& snapshot);

/// Parameters of a group are read for every group of the controller.
void ReadParameters(Source& source, Snapshot& snapshot);

} // namespace harvlink::cli::snapshot
