#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/snapshot/LineDifference.h"
#include "cli/snapshot/Snapshot.h"

namespace harvlink::cli::snapshot {

/// One value or file that is not the same. A file's values are its sizes in bytes.
struct Change {
    std::string section;
    std::string name;
    std::optional<std::string> before; ///< nothing if it was not there
    std::optional<std::string> after; ///< nothing if it is there no longer
    std::vector<LineChange> lines; ///< of a file that both have
};

struct Difference {
    std::vector<Change> changes; ///< in the order of sections and names
    std::vector<std::string> notTaken; ///< sections that only one of them has
    std::vector<std::string>
        incomplete; ///< sections of which something could not be read: only what both have is compared

    bool IsSame() const { return changes.empty(); }
};

/// What has changed from one snapshot to another. A group of signals that differs is told signal by signal.
Difference Compare(Snapshot const& before, Snapshot const& after);

} // namespace harvlink::cli::snapshot
