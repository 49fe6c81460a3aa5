#include "cli/program/Terminal.h"

#include <csignal>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace harvlink::cli {

void PrepareStreams() {
    // A file that is opened later must not get the number of a closed standard stream, or output would go into it.
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
        if (fcntl(stream, F_GETFD) == -1) {
            open("/dev/null", O_RDONLY); // gets the lowest free number; writing to it fails, as before
        }
    }
    std::signal(SIGXFSZ, SIG_IGN); // too large a file is an error like any other: it is reported, and nothing is left
}

void RestoreStreams() {}

bool IsTerminal(Stream stream) {
    return isatty(static_cast<int>(stream)) == 1; // in the order of their numbers
}

std::size_t TerminalWidth() {
    winsize size{};
    return ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

void DiscardTyped() {
    tcflush(STDIN_FILENO, TCIFLUSH);
}

std::vector<std::string> ProgramArguments(int argc, char const* const* argv) {
    return {argv, argv + argc};
}

} // namespace harvlink::cli
