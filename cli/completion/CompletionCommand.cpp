#include "cli/completion/CompletionCommand.h"

#include <memory>
#include <ostream>
#include <string>

#include <CLI/CLI.hpp>

#include "cli/completion/Completion.h"
#include "cli/program/CommandLine.h"
#include "cli/program/Help.h"
#include "cli/program/Session.h"
#include "words/text/InputError.h"

namespace harvlink::cli {

void AddCompletionCommand(CLI::App& app, Session& session) {
    auto shell = std::make_shared<std::string>();
    CLI::App* const verb = app.add_subcommand("completion", "Print a script that lets a shell complete this program");
    verb->add_option("SHELL", *shell, "The shell")->type_name("bash|zsh")->required();
    SetExamples(*verb,
                {"completion bash > ~/.local/share/bash-completion/completions/harvlink",
                 "completion zsh > ~/.zfunc/_harvlink"},
                "For the present shell: eval \"$(harvlink completion bash)\". For zsh the folder must be in fpath\n"
                "before compinit.");
    verb->callback([shell, &app, &session] {
        if (*shell != "bash" && *shell != "zsh") {
            throw InputError("'" + *shell + "' is not a shell that is supported; there are: bash, zsh");
        }
        session.Locally([shell, &app](Output& output) {
            output.console().out << (*shell == "bash" ? BashCompletion(app) : ZshCompletion(app)) << std::flush;
            return ExitStatus::Success;
        });
    });
}

} // namespace harvlink::cli
