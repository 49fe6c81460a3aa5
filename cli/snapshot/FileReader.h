#pragma once

#include <filesystem>

#include "cli/snapshot/Snapshot.h"
#include "cli/snapshot/Source.h"

namespace harvlink::cli::snapshot {

/// Fetches the controller's files, each by way of `scratch`, a file on this computer that is left over: only so do they
/// arrive byte for byte.
void ReadFiles(Source& source, Snapshot& snapshot, std::filesystem::path const& scratch);

} // namespace harvlink::cli::snapshot
