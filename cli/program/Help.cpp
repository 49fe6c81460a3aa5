#include "cli/program/Help.h"

#include <memory>
#include <string>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "cli/output/Words.h"
#include "words/text/Text.h"

namespace harvlink::cli {

namespace {

constexpr std::size_t ColumnWidth = 28;
constexpr std::size_t TextWidth = 80 - ColumnWidth;

/// Breaks lines at blanks; the parser's library indents the lines after the first.
std::string Wrap(std::string_view text) {
    std::string wrapped;
    std::size_t width = 0;
    for (std::string_view const word : Split(text, ' ')) {
        bool const isFull = width > 0 && width + 1 + word.size() > TextWidth;
        if (width > 0) {
            wrapped += isFull ? '\n' : ' ';
        }
        wrapped += word;
        width = (isFull || width == 0 ? 0 : width + 1) + word.size();
    }
    return wrapped;
}

/// A range check adds " in [1 - 100]" to a type name. This is the same in words.
std::string RangeOf(std::string const& type) {
    constexpr std::string_view Start = " in [";
    std::size_t const start = type.find(Start);
    if (start == std::string::npos) {
        return {};
    }
    std::string range = type.substr(start + Start.size(), type.find(']') - start - Start.size());
    std::size_t const dash = range.find(" - ");
    return dash == std::string::npos ? "" : ", " + range.replace(dash, 3, " to ");
}

class HelpFormatter : public CLI::Formatter {
public:
    HelpFormatter() { column_width(ColumnWidth); }

    std::string make_option_opts(CLI::Option const* option) const override {
        if (option->get_type_size() == 0) {
            return {};
        }
        std::string text;
        if (option->nonpositional()) {
            std::string const type = option->get_type_name();
            bool const isChoice = type.find('|') != std::string::npos;
            text = " " + (isChoice ? UpperCase(option->get_lnames().front()) : type.substr(0, type.find(':')));
        }
        bool const isList = option->get_expected_max() == CLI::detail::expected_max_vector_size;
        return text + (isList ? " ..." : "");
    }

    std::string make_option_desc(CLI::Option const* option) const override {
        std::string text = option->get_description();
        std::string const type = option->get_type_name();
        if (type.find('|') != std::string::npos) {
            text += fmt::format(": {}", fmt::join(Split(type, '|'), ", "));
        }
        text += RangeOf(type);
        if (!option->get_default_str().empty()) {
            text += fmt::format(" (default: {})", option->get_default_str());
        } else if (option->get_required() && option->nonpositional()) {
            text += " (required)";
        }
        return Wrap(text);
    }

    std::string make_subcommand(CLI::App const* command) const override {
        std::stringstream out;
        CLI::detail::format_help(out, command->get_display_name(true), Wrap(command->get_description()), ColumnWidth);
        return out.str();
    }
};

} // namespace

void UseHelpFormat(CLI::App& app) {
    app.formatter(std::make_shared<HelpFormatter>());
}

void SetExamples(CLI::App& verb, std::initializer_list<std::string_view> examples, std::string_view notes) {
    std::string footer = notes.empty() ? "" : std::string(notes) + "\n\n";
    footer += examples.size() == 1 ? "Example:\n" : "Examples:\n";
    for (std::string_view const example : examples) {
        footer += fmt::format("  harvlink {}\n", example);
    }
    verb.footer(footer + "Options of all commands, such as --host and --json: harvlink --help");
}

} // namespace harvlink::cli
