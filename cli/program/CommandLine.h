#pragma once

#include <span>

#include "cli/output/Console.h"

namespace CLI {
class App;
}

namespace harvlink::cli {

class Session;

namespace ExitStatus {
inline constexpr int Success = 0;
inline constexpr int Failure = 1; ///< the controller refused, or could not be reached
inline constexpr int WrongUsage = 2;
} // namespace ExitStatus

/// Adds the commands of one family to the command line.
using AddCommands = void (*)(CLI::App& app, Session& session);

/// Runs the command that the arguments name. Returns the program's exit status.
int RunCommandLine(int argc, char const* const* argv, Console& console, std::span<AddCommands const> commands);

} // namespace harvlink::cli
