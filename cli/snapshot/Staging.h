#pragma once

#include <filesystem>

#include "cli/program/ScratchSpace.h"

namespace harvlink::cli::snapshot {

/// The path of a snapshot to be written, without links and closing slashes. Throws InputError if its parent does not exist,
/// or if the folder exists and is not empty. With `force` it may be a snapshot with nothing else in it.
std::filesystem::path CheckTarget(std::filesystem::path const& target, bool force);

/// Moves a finished folder to its place. What was there is moved into `scratch` first, and back if the move fails. If it
/// can't be moved back, it stays in `scratch`, which is kept. Throws std::filesystem::filesystem_error.
void MoveInto(std::filesystem::path const& finished, std::filesystem::path const& target, ScratchSpace& scratch);

} // namespace harvlink::cli::snapshot
