#include "cli/snapshot/SnapshotCommands.h"

#include <CLI/CLI.hpp>

#include "cli/program/Help.h"

namespace harvlink::cli {

void AddSnapshotCommands(CLI::App& app, Session& session) {
    CLI::App* const family =
        app.add_subcommand("snapshot", "Save, compare, show and restore the contents of a controller");
    family->require_subcommand(1);
    snapshot::AddSave(*family, session);
    snapshot::AddDiff(*family, session);
    snapshot::AddShow(*family, session);
    snapshot::AddRestore(*family, session);
    SetExamples(*family, {"snapshot save cell3", "snapshot diff cell3 live", "snapshot show cell3 variables"});
}

} // namespace harvlink::cli
