#include "Help.h"

#include <string>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

namespace harvlink::cli {

void SetExamples(CLI::App& verb, std::initializer_list<std::string_view> examples, std::string_view notes) {
    std::string footer = notes.empty() ? "" : std::string(notes) + "\n\n";
    footer += examples.size() == 1 ? "Example:\n" : "Examples:\n";
    for (std::string_view const example : examples) {
        footer += fmt::format("  harvlink {}\n", example);
    }
    verb.footer(footer + "Options of all commands, such as --host and --json: harvlink --help");
}

} // namespace harvlink::cli
