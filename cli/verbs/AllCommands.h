#pragma once

#include <span>

#include "cli/program/CommandLine.h"

namespace harvlink::cli {

/// Every command of the program, in the order in which the help lists them.
std::span<AddCommands const> AllCommands();

} // namespace harvlink::cli
