#pragma once

#include <string>

namespace CLI {
class App;
class ParseError;
} // namespace CLI

namespace harvlink::cli {

/// The command at which the parsing of the command line stopped.
CLI::App const& ReachedCommand(CLI::App const& app);

/// What is wrong with the command line, worded as all messages here, and what the user may have meant.
std::string ParseErrorText(CLI::App const& app, CLI::ParseError const& error);

} // namespace harvlink::cli
