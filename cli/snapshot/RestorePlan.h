#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "cli/program/Writes.h"
#include "cli/snapshot/Difference.h"
#include "cli/snapshot/Snapshot.h"
#include "harvlink/QuorvanController.h"

namespace harvlink::cli::snapshot {

/// The sections of which something can be written back, in the order of writing: a job may use a variable, and a job that
/// starts with a signal must find the others.
inline constexpr std::array<std::string_view, 4> RestorableSections{FilesSection, "variables", "registers", "signals"};

/// What a controller lacks to hold what a snapshot holds.
struct RestorePlan {
    std::vector<ChangedEntry> changes; ///< that can be written, from what the controller has to what the snapshot has
    std::vector<ChangedEntry>
        impossible; ///< that can't: the controller has no such variable, or nobody can write such a signal
};

/// `sections` are those to write; `live` is what the controller of `io` has, of which nothing is asked.
RestorePlan MakePlan(Snapshot const& live, Snapshot const& saved, std::vector<std::string_view> const& sections,
                     IOInterface& io);

/// The writes of a plan. They refer to `saved` and `robot`.
std::vector<PendingWrite> WritesOf(RestorePlan const& plan, Snapshot const& saved, QuorvanController& robot);

} // namespace harvlink::cli::snapshot
