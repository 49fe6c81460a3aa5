#pragma once

#include <iosfwd>
#include <vector>

#include "cli/output/Output.h"
#include "cli/snapshot/Difference.h"

namespace harvlink::cli::snapshot {

Json ChangesJson(std::vector<ChangedEntry> const& list);

/// {same, changes, incomplete, only_in_one}
Json DifferenceJson(Difference const& difference);

/// The changes for people, by section. Shows nothing if there are none.
void ShowChanges(std::ostream& out, std::vector<ChangedEntry> const& changes, bool hasColour);

} // namespace harvlink::cli::snapshot
