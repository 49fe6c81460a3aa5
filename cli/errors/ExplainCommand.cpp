#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "CommandLine.h"
#include "Commands.h"
#include "Help.h"
#include "InputError.h"
#include "Session.h"
#include "errors/ErrorPage.h"
#include "errors/Explain.h"

namespace harvlink::cli {

namespace {

struct ExplainArguments {
    std::vector<std::string> codes;
    bool all = false;
    bool markdown = false;
};

int Show(Output& output, std::vector<Explanation> const& explanations) {
    Json rows = Json::array();
    for (Explanation const& explanation : explanations) {
        rows.push_back(ExplanationJson(explanation));
    }
    if (output.json) {
        output.Show(rows);
        return ExitStatus::Success;
    }
    for (Json const& row : rows) {
        Json card;
        for (auto const& [key, value] : row.items()) {
            if (!value.is_null()) {
                card[key] = value;
            }
        }
        output.console().out << (&row == &rows.front() ? "" : "\n");
        output.Show(card);
    }
    return ExitStatus::Success;
}

} // namespace

void AddExplainCommand(CLI::App& app, Session& session) {
    auto arguments = std::make_shared<ExplainArguments>();
    CLI::App* const verb =
        app.add_subcommand("explain", "Tell what a status code or alarm means and what to do; needs no controller");
    verb->add_option("CODE", arguments->codes, "Codes, such as 8288, 0x30006, -49934480 or 8015-112")
        ->type_name("CODE");
    verb->add_flag("--all", arguments->all, "Every code that has a text");
    verb->add_flag("--markdown", arguments->markdown, "With --all: as one page of Markdown");
    SetExamples(*verb, {"explain 0x30006", "explain -49934480", "explain job:65535 --json", "explain 8015-112"},
                CodeHelp);
    verb->callback([arguments, &session] {
        std::vector<Explanation> explanations;
        for (std::string const& code : arguments->codes) {
            std::vector<Explanation> const found = Explain(code);
            explanations.insert(explanations.end(), found.begin(), found.end());
        }
        if (arguments->codes.empty() != arguments->all || (arguments->markdown && !arguments->all)) {
            throw InputError("give codes, or --all with or without --markdown");
        }
        session.Locally([arguments, explanations](Output& output) {
            if (arguments->markdown) {
                output.console().out << ErrorPage() << std::flush;
                return ExitStatus::Success;
            }
            return Show(output, arguments->all ? ExplainAll() : explanations);
        });
    });
}

} // namespace harvlink::cli
