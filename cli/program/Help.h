#pragma once

#include <initializer_list>
#include <string_view>

namespace CLI {
class App;
}

namespace harvlink::cli {

/// Closes a command's help with notes on its arguments and with examples, given without the program's name.
void SetExamples(CLI::App& verb, std::initializer_list<std::string_view> examples, std::string_view notes = {});

/// Lets the help of a command, and of all that are added to it later, look as every help does here. A type name
/// "a|b|c" lists the words that an argument takes: the help names them behind the description, completion offers them.
void UseHelpFormat(CLI::App& app);

} // namespace harvlink::cli
