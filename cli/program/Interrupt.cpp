#include "cli/program/Interrupt.h"

#include <cerrno>
#include <stdexcept>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace harvlink::cli {

namespace {

// A signal between the check of a flag and the wait would be missed until the wait ends; a byte in a pipe is not.
// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): a signal handler reaches nothing else
std::array<int, 2> wakePipe{-1, -1};

void Wake(int /*signal*/) {
    int const keptError = errno;
    [[maybe_unused]] ssize_t const written = write(wakePipe[1], "", 1);
    errno = keptError;
}

} // namespace

Interrupt::Interrupt() {
    if (pipe2(wakePipe.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        throw std::runtime_error("can't open a pipe for signals");
    }
    struct sigaction action {};
    action.sa_handler = Wake;
    // The first signal restores the default, so that a second one ends the process whatever it is waiting for.
    action.sa_flags = static_cast<int>(SA_RESETHAND) | SA_RESTART;
    for (std::size_t i = 0; i < Signals.size(); ++i) {
        sigaction(Signals.at(i), &action, &previous_.at(i));
        if (Signals.at(i) == SIGHUP && previous_.at(i).sa_handler == SIG_IGN) {
            sigaction(Signals.at(i), &previous_.at(i), nullptr); // as nohup asks for
        }
    }
}

Interrupt::~Interrupt() {
    for (std::size_t i = 0; i < Signals.size(); ++i) {
        sigaction(Signals.at(i), &previous_.at(i), nullptr);
    }
    for (int& end : wakePipe) {
        close(end);
        end = -1;
    }
}

BrokenPipesIgnored::BrokenPipesIgnored() {
    struct sigaction ignored {};
    ignored.sa_handler = SIG_IGN;
    sigaction(SIGPIPE, &ignored, &previous_);
}

BrokenPipesIgnored::~BrokenPipesIgnored() {
    sigaction(SIGPIPE, &previous_, nullptr);
}

int Interrupt::Descriptor() const {
    return wakePipe[0];
}

bool Interrupt::Wait(std::chrono::milliseconds time) const {
    auto const end = std::chrono::steady_clock::now() + time;
    while (true) {
        auto const left =
            std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now()).count();
        pollfd waiting{.fd = wakePipe[0], .events = POLLIN, .revents = 0};
        int const ready = poll(&waiting, 1, left > 0 ? static_cast<int>(left) : 0);
        if (ready > 0) {
            return true;
        }
        if (ready == 0 || errno != EINTR) {
            return false;
        }
    }
}

} // namespace harvlink::cli
