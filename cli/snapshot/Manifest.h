#pragma once

#include "cli/output/Output.h"
#include "cli/snapshot/Snapshot.h"

namespace harvlink::cli::snapshot {

/// What "snapshot.json" says: everything of a snapshot but its tables and files, of which it has the number.
Json ManifestJson(Snapshot const& snapshot);

/// A snapshot with empty tables for the sections that the manifest names. Throws InputError if it is none of ours.
Snapshot ParseManifest(Json const& manifest);

} // namespace harvlink::cli::snapshot
