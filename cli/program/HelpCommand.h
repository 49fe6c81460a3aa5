#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace harvlink::cli {

class Session;

/// Adds "help", after all other commands. RewriteHelp turns it into --help of the command that it names.
void AddHelpCommand(CLI::App& app, Session& session);

/// Throws InputError if words before an option are not the names of a command.
void CheckHelp(CLI::App const& app, std::vector<std::string> const& arguments);

/// "help var get" becomes "var get --help".
void RewriteHelp(std::vector<std::string>& arguments);

} // namespace harvlink::cli
