#include "cli/recording/RecordingCommands.h"

#include <CLI/CLI.hpp>

#include "cli/program/Help.h"

namespace harvlink::cli {

void AddRecordingCommands(CLI::App& app, Session& session) {
    CLI::App* const family = app.add_subcommand("recording", "Show, export, cut and plot recordings");
    family->require_subcommand(1);
    recordings::AddInfo(*family, session);
    recordings::AddEvents(*family, session);
    recordings::AddExport(*family, session);
    recordings::AddCut(*family, session);
    recordings::AddPlot(*family, session);
    SetExamples(*family, {"recording info night.harvlink", "recording events night.harvlink --from -10m",
                          "recording export night.harvlink --wide --every 100ms --out night.csv"});
}

} // namespace harvlink::cli
