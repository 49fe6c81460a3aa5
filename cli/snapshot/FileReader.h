#pragma once

#include <filesystem>

#include "cli/snapshot/Snapshot.h"
#include "cli/snapshot/Source.h"

namespace harvlink::cli::snapshot {

/// Fetches the controller's files. Each goes through the file `scratch`, which stays: only a transfer to a file keeps every
/// byte.
void ReadFiles(Source& source, Snapshot& snapshot, std::filesystem::path const& scratch);

} // namespace harvlink::cli::snapshot
