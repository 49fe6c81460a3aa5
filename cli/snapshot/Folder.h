#pragma once

#include <filesystem>

#include "cli/snapshot/Snapshot.h"

namespace harvlink::cli::snapshot {

/// Writes a snapshot into an empty folder: one text file for each table with one value on each line, the controller's
/// files as they are, and "snapshot.json", which lists what is there. Throws std::runtime_error if that fails.
void Write(Snapshot const& snapshot, std::filesystem::path const& folder);

/// Throws InputError if the folder is not a snapshot, or a snapshot of another format.
Snapshot Read(std::filesystem::path const& folder);

bool IsSnapshot(std::filesystem::path const& folder);

/// A file or folder in a snapshot's folder that is not part of the snapshot; empty if there is none.
std::filesystem::path ForeignEntry(std::filesystem::path const& folder);

} // namespace harvlink::cli::snapshot
