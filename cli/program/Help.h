#pragma once

#include <initializer_list>
#include <string_view>

namespace CLI {
class App;
}

namespace harvlink::cli {

/// Ends a command's help with notes on its arguments and with examples, which are given without the program's name.
void SetExamples(CLI::App& verb, std::initializer_list<std::string_view> examples, std::string_view notes = {});

/// Sets the format of the help of a command and of all commands that are added to it later. A type name "a|b|c" lists the
/// words that an argument takes: the help names them after the description, and completion offers them.
void UseHelpFormat(CLI::App& app);

} // namespace harvlink::cli
