#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/snapshot/LineDifference.h"
#include "cli/snapshot/Snapshot.h"

namespace harvlink::cli::snapshot {

/// A value or file that differs. The values of a file are its sizes in bytes.
struct ChangedEntry {
    std::string section;
    std::string name;
    std::optional<std::string> before; ///< empty: it was not there
    std::optional<std::string> after; ///< empty: it is no longer there
    std::vector<LineChange> lines; ///< of a file that both have
};

struct Difference {
    std::vector<ChangedEntry> changes; ///< in the order of sections and names
    std::vector<std::string> notTaken; ///< sections that only one of them has
    std::vector<std::string>
        incomplete; ///< sections that could not be read completely: only what both have is compared

    bool IsSame() const { return changes.empty(); }
};

/// What has changed from one snapshot to another. A group of signals that differs is listed signal by signal.
Difference Compare(Snapshot const& before, Snapshot const& after);

} // namespace harvlink::cli::snapshot
