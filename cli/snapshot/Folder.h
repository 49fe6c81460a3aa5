#pragma once

#include <filesystem>

#include "cli/snapshot/Snapshot.h"

namespace harvlink::cli::snapshot {

/// Writes a snapshot into an empty folder: one text file for each table, a value a line, the controller's files as they
/// are, and "snapshot.json" that tells what is there. Throws std::runtime_error if that fails.
void Write(Snapshot const& snapshot, std::filesystem::path const& folder);

/// Throws InputError if the folder holds no snapshot, or one of another format.
Snapshot Read(std::filesystem::path const& folder);

bool IsSnapshot(std::filesystem::path const& folder);

/// A file or folder in a snapshot's folder that is no part of it; empty if there is none.
std::filesystem::path ForeignEntry(std::filesystem::path const& folder);

} // namespace harvlink::cli::snapshot
