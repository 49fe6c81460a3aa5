#include "cli/explain/ExplainCommand.h"

#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include "cli/explain/ErrorPage.h"
#include "cli/program/CommandLine.h"
#include "cli/program/Help.h"
#include "cli/program/Session.h"
#include "words/cards/Explain.h"
#include "words/text/InputError.h"

namespace harvlink::cli {

namespace {

/// For each code that was given, all that it may mean.
using Meanings = std::vector<std::vector<Explanation>>;

struct ExplainArguments {
    std::vector<std::string> codes;
    bool all = false;
    bool markdown = false;
};

void ShowCard(Output& output, Json const& explanation) {
    Json card;
    for (auto const& [key, value] : explanation.items()) {
        if (!value.is_null() && key != "match") {
            card[key] = value;
        }
    }
    output.Show(card);
}

bool IsSimilar(Explanation const& explanation) {
    return explanation.match != ExactMatch && explanation.match != NoMatch;
}

/// Shows what is known about one code: a card for each meaning, and a table of the codes of which it is only a part.
void ShowMeanings(Output& output, std::vector<Explanation> const& explanations) {
    bool const hasSimilar = IsSimilar(explanations.back());
    std::string_view gap;
    Json similar = Json::array();
    for (Explanation const& explanation : explanations) {
        Json const row = ExplanationJson(explanation);
        if (IsSimilar(explanation)) {
            similar.push_back(
                {{"code", row["code"]}, {"hex", row["hex"]}, {"subsystem", row["subsystem"]}, {"text", row["text"]}});
        } else if (explanation.match == ExactMatch || !hasSimilar) {
            output.console().out << std::exchange(gap, "\n");
            ShowCard(output, row);
        }
    }
    if (hasSimilar) {
        output.console().out << gap << "Codes of which this may be a part, the likeliest first:\n\n";
        output.Show(similar);
    }
}

int Show(Output& output, Meanings const& codes) {
    Json rows = Json::array();
    for (std::vector<Explanation> const& explanations : codes) {
        if (!output.json) {
            output.console().out << (&explanations == &codes.front() ? "" : "\n");
            ShowMeanings(output, explanations);
            continue;
        }
        for (Explanation const& explanation : explanations) {
            rows.push_back(ExplanationJson(explanation));
        }
    }
    if (output.json) {
        output.Show(rows);
    }
    return ExitStatus::Success;
}

} // namespace

void AddExplainCommand(CLI::App& app, Session& session) {
    auto arguments = std::make_shared<ExplainArguments>();
    CLI::App* const verb =
        app.add_subcommand("explain", "Explain a status code or alarm and what to do; needs no controller");
    verb->add_option("CODE", arguments->codes, "Codes, such as 8288, 0x30006, -49934480 or 8015-112")
        ->type_name("CODE");
    verb->add_flag("--all", arguments->all, "Every code that has a text");
    verb->add_flag("--markdown", arguments->markdown, "With --all: as one page of Markdown");
    SetExamples(*verb,
                {"explain 0x30006", "explain -49934480", "explain job:65535 --json", "explain 8015-112", "explain 112"},
                CodeHelp);
    verb->callback([arguments, &session] {
        Meanings explanations;
        for (std::string const& code : arguments->codes) {
            explanations.push_back(Explain(code));
        }
        if (arguments->codes.empty() != arguments->all || (arguments->markdown && !arguments->all)) {
            throw InputError("give codes or --all; --markdown needs --all");
        }
        session.Locally([arguments, explanations](Output& output) {
            if (arguments->markdown) {
                output.console().out << ErrorPage() << std::flush;
                return ExitStatus::Success;
            }
            return Show(output, arguments->all ? Meanings{ExplainAll()} : explanations);
        });
    });
}

} // namespace harvlink::cli
