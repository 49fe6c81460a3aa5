#include "cli/program/Interrupt.h"

#include <cerrno>
#include <mutex>
#include <stdexcept>
#include <string_view>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include "cli/output/Progress.h"
#include "cli/program/ScratchSpace.h"

namespace harvlink::cli {

namespace {

// A signal between the check of a flag and the wait would be missed until the wait ends; a byte in a pipe is not.
// NOLINTBEGIN(cppcoreguidelines-avoid-non-const-global-variables): a signal handler reaches nothing else
std::array<int, 2> wakePipe{-1, -1};
volatile std::sig_atomic_t lastSignal = SIGINT;
volatile std::sig_atomic_t isTaken = 0; // the living ones have had their signal
volatile std::sig_atomic_t endsLine = 0; // the terminal shows "^C" on the line of the error stream

std::mutex counting;
int living = 0; // the first one prepares for the signal, the last one restores what was before
std::array<struct sigaction, Interrupt::Signals.size()> previous{};
// NOLINTEND(cppcoreguidelines-avoid-non-const-global-variables)

constexpr int SignalBase = 128;

void Say(std::string_view text) {
    [[maybe_unused]] ssize_t const written = write(STDERR_FILENO, text.data(), text.size());
}

// Only what a signal handler may call.
[[noreturn]] void EndNow(int signal) {
    std::signal(SIGPIPE, SIG_IGN); // nobody may read what it says, and the exit status counts
    ScratchSpace::RemoveAtSignal();
    if (Progress::IsShown()) {
        Say("\r\x1b[K");
    } else if (endsLine != 0) {
        Say("\n");
    }
    Say("harvlink: interrupted\n");
    _exit(SignalBase + signal);
}

void Wake(int signal) {
    if (isTaken != 0) {
        EndNow(signal);
    }
    isTaken = 1;
    lastSignal = signal;
    int const keptError = errno;
    [[maybe_unused]] ssize_t const written = write(wakePipe[1], "", 1);
    errno = keptError;
}

// A signal that the parent ignores stays ignored, as nohup asks for; the living Interrupt gives that only to a hang-up.
void SetHandler(void (*handler)(int), struct sigaction* formers) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    for (std::size_t i = 0; i < Interrupt::Signals.size(); ++i) {
        int const signal = Interrupt::Signals.at(i);
        struct sigaction former {};
        sigaction(signal, &action, &former);
        if (former.sa_handler == SIG_IGN && (signal == SIGHUP || formers == nullptr)) {
            sigaction(signal, &former, nullptr);
        }
        if (formers != nullptr) {
            formers[i] = former;
        }
    }
}

} // namespace

Interrupted::Interrupted(std::string const& text) : std::runtime_error(text), exitStatus_(SignalBase + lastSignal) {}

void EndBySignals() {
    endsLine = isatty(STDERR_FILENO);
    SetHandler(EndNow, nullptr);
}

Interrupt::Interrupt() {
    std::lock_guard const lock(counting);
    if (living == 0 && pipe2(wakePipe.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        throw std::runtime_error("can't open a pipe for signals");
    }
    if (living++ == 0) {
        isTaken = 0;
        SetHandler(Wake, previous.data());
    }
}

Interrupt::~Interrupt() {
    std::lock_guard const lock(counting);
    if (--living > 0) {
        return;
    }
    for (std::size_t i = 0; i < Signals.size(); ++i) {
        sigaction(Signals.at(i), &previous.at(i), nullptr);
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

SignalsHeldBack::SignalsHeldBack() {
    sigset_t held;
    sigemptyset(&held);
    for (int const signal : Interrupt::Signals) {
        sigaddset(&held, signal);
    }
    pthread_sigmask(SIG_BLOCK, &held, &previous_);
}

SignalsHeldBack::~SignalsHeldBack() {
    pthread_sigmask(SIG_SETMASK, &previous_, nullptr);
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
