#pragma once

#include <string>

namespace CLI {
class App;
}

namespace harvlink::cli {

/// A script that completes the program's commands, their options and the words that these take. It is made from the
/// commands that the program has.
/// @{
std::string BashCompletion(CLI::App const& program);
std::string ZshCompletion(CLI::App const& program);
/// @}

} // namespace harvlink::cli
