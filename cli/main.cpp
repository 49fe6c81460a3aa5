#include <iostream>
#include <string>
#include <vector>

#include "cli/program/CommandLine.h"
#include "cli/program/Interrupt.h"
#include "cli/program/Terminal.h"
#include "cli/verbs/AllCommands.h"

int main(int argc, char** argv) {
    using namespace harvlink::cli;
    PrepareStreams();
    EndBySignals();
    Console console{.in = std::cin,
                    .out = std::cout,
                    .err = std::cerr,
                    .inputIsTerminal = IsTerminal(Stream::In),
                    .outputIsTerminal = IsTerminal(Stream::Out),
                    .errorIsTerminal = IsTerminal(Stream::Err)};
    std::vector<std::string> const arguments = ProgramArguments(argc, argv);
    std::vector<char const*> texts;
    for (std::string const& argument : arguments) {
        texts.push_back(argument.c_str());
    }
    int const exit = RunCommandLine(static_cast<int>(texts.size()), texts.data(), console, AllCommands());
    RestoreStreams();
    return exit;
}
