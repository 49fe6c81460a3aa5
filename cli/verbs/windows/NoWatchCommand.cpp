// The one command of other systems that is not there on Windows: it says so, whatever stands behind it.
#include <string>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "cli/program/Session.h"
#include "cli/watch/WatchCommand.h"
#include "words/text/InputError.h"

namespace harvlink::cli {

void AddWatchCommand(CLI::App& app, Session& /*session*/) {
    std::string const why = "its screen needs a terminal library of other systems";
    CLI::App* const verb = app.add_subcommand("watch", fmt::format("Not on Windows: {}", why));
    verb->allow_extras()->fallthrough(false); // also its options
    verb->callback([why] { throw words::InputError(fmt::format("watch is not there on Windows: {}", why)); });
}

} // namespace harvlink::cli
