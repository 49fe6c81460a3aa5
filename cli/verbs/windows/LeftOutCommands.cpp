// The commands of other systems that are not there on Windows: each says so, whatever stands behind it.
#include <string>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "cli/program/Session.h"
#include "cli/recording/RecordCommand.h"
#include "cli/recording/RecordingCommands.h"
#include "cli/watch/WatchCommand.h"
#include "words/text/InputError.h"

namespace harvlink::cli {

namespace {

void AddLeftOut(CLI::App& app, std::string const& name, std::string const& why) {
    CLI::App* const verb = app.add_subcommand(name, fmt::format("Not on Windows: {}", why));
    verb->allow_extras()->fallthrough(false); // also its options
    verb->callback([name, why] { throw InputError(fmt::format("{} is not there on Windows: {}", name, why)); });
}

} // namespace

void AddWatchCommand(CLI::App& app, Session& /*session*/) {
    AddLeftOut(app, "watch", "its screen needs a terminal library of other systems");
}

void AddRecordCommand(CLI::App& app, Session& /*session*/) {
    AddLeftOut(app, "record", "recordings need a database that is not built for it");
}

void AddRecordingCommands(CLI::App& app, Session& /*session*/) {
    AddLeftOut(app, "recording", "recordings need a database that is not built for it");
}

} // namespace harvlink::cli
