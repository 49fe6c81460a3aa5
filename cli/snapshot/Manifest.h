#pragma once

#include "cli/output/Output.h"
#include "cli/snapshot/Snapshot.h"

namespace harvlink::cli::snapshot {

/// The contents of "snapshot.json": everything of a snapshot but its tables and files, which it only counts.
Json ManifestJson(Snapshot const& snapshot);

/// A snapshot with empty tables for the sections that the manifest names. Throws InputError if the manifest was written
/// by another program or in another format.
Snapshot ParseManifest(Json const& manifest);

} // namespace harvlink::cli::snapshot
