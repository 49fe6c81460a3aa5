#include <iostream>
#include <string>
#include <vector>

#include "cli/program/CommandLine.h"
#include "cli/program/Interrupt.h"
#include "cli/program/Terminal.h"
#include "cli/verbs/AllCommands.h"

int main(int argc, char** argv) {
    namespace cli = harvlink::cli;
    cli::PrepareStreams();
    cli::EndBySignals();
    cli::Console console{.in = std::cin,
                         .out = std::cout,
                         .err = std::cerr,
                         .inputIsTerminal = cli::IsTerminal(cli::Stream::In),
                         .outputIsTerminal = cli::IsTerminal(cli::Stream::Out),
                         .errorIsTerminal = cli::IsTerminal(cli::Stream::Err)};
    std::vector<std::string> const arguments = cli::ProgramArguments(argc, argv);
    std::vector<char const*> texts;
    texts.reserve(arguments.size());
    for (std::string const& argument : arguments) {
        texts.push_back(argument.c_str());
    }
    int const exit = cli::RunCommandLine(static_cast<int>(texts.size()), texts.data(), console, cli::AllCommands());
    cli::RestoreStreams();
    return exit;
}
