#include <csignal>
#include <iostream>

#include <fcntl.h>
#include <unistd.h>

#include "cli/program/CommandLine.h"
#include "cli/program/Interrupt.h"
#include "cli/verbs/AllCommands.h"

namespace {

/// A file that is opened later must not get the number of a closed standard stream, or output would go into it.
void OccupyStandardStreams() {
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
        if (fcntl(stream, F_GETFD) == -1) {
            open("/dev/null", O_RDONLY); // gets the lowest free number; writing to it fails, as before
        }
    }
}

} // namespace

int main(int argc, char** argv) {
    OccupyStandardStreams();
    std::signal(SIGXFSZ, SIG_IGN); // too large a file is an error like any other: it is reported, and nothing is left
    harvlink::cli::EndBySignals();
    harvlink::cli::Console console{.in = std::cin,
                                   .out = std::cout,
                                   .err = std::cerr,
                                   .inputIsTerminal = isatty(STDIN_FILENO) == 1,
                                   .outputIsTerminal = isatty(STDOUT_FILENO) == 1,
                                   .errorIsTerminal = isatty(STDERR_FILENO) == 1};
    return harvlink::cli::RunCommandLine(argc, argv, console, harvlink::cli::AllCommands());
}
