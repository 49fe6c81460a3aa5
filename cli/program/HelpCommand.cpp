#include "cli/program/HelpCommand.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "cli/program/Help.h"
#include "cli/program/Session.h"
#include "words/text/InputError.h"
#include "words/text/Nearest.h"

namespace harvlink::cli {

void AddHelpCommand(CLI::App& app, Session& session) {
    std::string commands;
    for (CLI::App const* const command : app.get_subcommands([](CLI::App const*) { return true; })) {
        bool const isHidden = command->get_group().empty();
        commands += isHidden ? "" : (commands.empty() ? "" : "|") + command->get_name();
    }
    CLI::App* const verb = app.add_subcommand("help", "Show the help of a command, as --help after it does");
    verb->add_option("COMMAND", "The command")->type_name(commands);
    SetExamples(*verb, {"help", "help var get"});
    verb->callback([&session] { session.Locally([](Output&) { return 0; }); });
}

void CheckHelp(CLI::App const& app, std::vector<std::string> const& arguments) {
    CLI::App const* command = &app;
    for (std::string const& word : arguments) {
        if (word.starts_with('-')) {
            return;
        }
        std::vector<std::string> names;
        CLI::App const* found = nullptr;
        for (CLI::App const* const each : command->get_subcommands([](CLI::App const*) { return true; })) {
            names.push_back(each->get_name());
            found = each->check_name(word) ? each : found;
        }
        if (found == nullptr) {
            throw InputError(fmt::format("there is no command '{}'{}", word, Suggestion(word, names)));
        }
        command = found;
    }
}

void RewriteHelp(std::vector<std::string>& arguments) {
    bool const isAsked = !arguments.empty() && arguments.front() == "help";
    if (isAsked && (arguments.size() == 1 || !arguments[1].starts_with('-'))) {
        arguments.erase(arguments.begin());
        arguments.emplace_back("--help");
    }
}

} // namespace harvlink::cli
