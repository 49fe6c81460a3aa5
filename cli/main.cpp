#include <iostream>

#include <unistd.h>

#include "CommandLine.h"

int main(int argc, char** argv) {
    harvlink::cli::Console console{.in = std::cin,
                                   .out = std::cout,
                                   .err = std::cerr,
                                   .inputIsTerminal = isatty(STDIN_FILENO) == 1,
                                   .outputIsTerminal = isatty(STDOUT_FILENO) == 1,
                                   .errorIsTerminal = isatty(STDERR_FILENO) == 1};
    return harvlink::cli::RunCommandLine(argc, argv, console);
}
