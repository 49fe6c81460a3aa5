#pragma once

#include <initializer_list>
#include <string_view>

namespace CLI {
class App;
}

namespace harvlink::cli {

/// Closes a command's help with notes on its arguments and with examples, given without the program's name.
void SetExamples(CLI::App& verb, std::initializer_list<std::string_view> examples, std::string_view notes = {});

} // namespace harvlink::cli
