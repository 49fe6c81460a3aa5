#include "cli/program/ParseErrorText.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <regex>
#include <sstream>
#include <string_view>
#include <vector>

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <fmt/ranges.h>

#include "cli/output/Words.h"
#include "words/text/Nearest.h"

namespace harvlink::cli {

namespace {

constexpr std::size_t MostListed = 10;

struct Wording {
    char const* pattern;
    char const* words;
};

/// A message of the parser, and its wording here.
constexpr std::array<Wording, 6> Wordings{{
    {R"--((\S+): Value (.*) not in range (\S+) to (\S+))--", "$1: '$2' is not a number from $3 to $4"},
    {R"--(Could not convert: (\S+) = (.*))--", "$1: '$2' is not a number"},
    {R"--((\S+): 1 required ([^ :]+).* missing)--", "$1 needs a value: $2"},
    {R"--((\S+): Directory does not exist: (.*))--", "$1: there is no folder '$2'"},
    {R"--((\S+) excludes (\S+))--", "give $1 or $2, not both"},
    {R"--((\S+) is required)--", "$1 is missing"},
}};

using Names = std::vector<std::string>;

Names CommandNames(CLI::App const& app) {
    Names names;
    for (CLI::App const* const command : app.get_subcommands([](CLI::App const*) { return true; })) {
        names.push_back(command->get_name());
    }
    return names;
}

void AddOptionNames(Names& names, CLI::App const& app) {
    for (CLI::Option const* const option : app.get_options()) {
        for (std::string const& name : option->get_lnames()) {
            if (std::find(names.begin(), names.end(), "--" + name) == names.end()) {
                names.push_back("--" + name);
            }
        }
    }
}

std::string UnknownWord(CLI::App const& app, Names const& unknown) {
    CLI::App const& reached = ReachedCommand(app);
    auto const option = std::find_if(unknown.begin(), unknown.end(), [](auto const& word) { return word[0] == '-'; });
    if (option != unknown.end()) {
        Names names;
        AddOptionNames(names, reached);
        AddOptionNames(names, app);
        return fmt::format("there is no option '{}'{}", *option, Suggestion(*option, names));
    }
    Names const commands = CommandNames(reached);
    return commands.empty()
               ? fmt::format("'{}' is one argument too many", unknown.front())
               : fmt::format("there is no command '{}'{}", unknown.front(), Suggestion(unknown.front(), commands));
}

/// Words that no command takes: those that the parser left over, or, if it stopped, those that its message names, which
/// has the last first.
Names UnknownWords(CLI::App const& app, CLI::ParseError const& error) {
    constexpr std::string_view Start = "not expected: ";
    std::string text = error.what();
    std::size_t const start = text.find(Start);
    if (start == std::string::npos) {
        return app.remaining(true);
    }
    std::istringstream list(text.substr(start + Start.size()));
    Names words(std::istream_iterator<std::string>(list), {});
    std::reverse(words.begin(), words.end());
    return words;
}

std::string MissingCommand(Names const& commands) {
    return commands.size() > MostListed ? "a command is missing"
                                        : fmt::format("a command is missing; there are: {}", fmt::join(commands, ", "));
}

} // namespace

CLI::App const& ReachedCommand(CLI::App const& app) {
    CLI::App const* command = &app;
    while (!command->get_subcommands().empty()) {
        command = command->get_subcommands().front();
    }
    return *command;
}

std::string ParseErrorText(CLI::App const& app, CLI::ParseError const& error) {
    // The parser reports a missing argument before it reports the unknown word that was typed instead.
    bool const isIncomplete = error.get_name() == "RequiredError";
    Names unknown = UnknownWords(app, error);
    unknown.erase(std::remove(unknown.begin(), unknown.end(), ""), unknown.end());
    if (!unknown.empty() && (isIncomplete || error.get_exit_code() == static_cast<int>(CLI::ExitCodes::ExtrasError))) {
        return UnknownWord(app, unknown);
    }
    std::string text = error.what();
    if (isIncomplete && text == "A subcommand is required") {
        return MissingCommand(CommandNames(ReachedCommand(app)));
    }
    for (Wording const& wording : Wordings) {
        std::regex const pattern(wording.pattern);
        if (std::regex_match(text, pattern)) {
            return std::regex_replace(text, pattern, wording.words);
        }
    }
    return text;
}

} // namespace harvlink::cli
