#pragma once

#include <string>

namespace CLI {
class App;
}

namespace harvlink::cli {

/// A script that completes the program's commands, options and the words that these take, made of the command tree itself.
/// @{
std::string BashCompletion(CLI::App const& program);
std::string ZshCompletion(CLI::App const& program);
/// @}

} // namespace harvlink::cli
