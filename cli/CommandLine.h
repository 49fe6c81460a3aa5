#pragma once

#include "Console.h"

namespace harvlink::cli {

namespace ExitStatus {
inline constexpr int Success = 0;
inline constexpr int Failure = 1; ///< the controller refused, or could not be reached
inline constexpr int WrongUsage = 2;
} // namespace ExitStatus

/// The whole program. Returns its exit status.
int RunCommandLine(int argc, char const* const* argv, Console& console);

} // namespace harvlink::cli
