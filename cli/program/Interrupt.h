#pragma once

#include <array>
#include <chrono>
#include <csignal>
#include <stdexcept>
#include <string>

namespace harvlink::cli {

/// The user ended the command by a signal. The text says in one line what was done and what was not.
class Interrupted : public std::runtime_error {
public:
    explicit Interrupted(std::string const& text);

    /// As shells have it: 128 and the number of the signal, so 130 after Ctrl-C.
    int ExitStatus() const { return exitStatus_; }

private:
    int exitStatus_;
};

/// While it lives, the program gets the first Ctrl-C, Ctrl-\, SIGTERM or hang-up itself, and the second ends the process.
/// If several live at a time, on any threads, the signal comes to all of them.
class Interrupt {
public:
    Interrupt();
    Interrupt(Interrupt const&) = delete;
    Interrupt& operator=(Interrupt const&) = delete;
    ~Interrupt();

    /// Waits until the time is over or the signal comes. Returns whether the signal has come.
    bool Wait(std::chrono::milliseconds time) const;

    /// Whether the signal has come.
    bool HasCome() const { return Wait(std::chrono::milliseconds(0)); }

#if !defined(_WIN32)
    /// Becomes readable with the signal, so that poll can wait for it together with other descriptors.
    int Descriptor() const;

    static constexpr std::array<int, 4> Signals{SIGINT, SIGQUIT, SIGTERM, SIGHUP};
#endif
};

/// Makes the signals of Interrupt, while none lives, end the process at once with one line, with the exit status of Interrupted,
/// and without leaving the files of a ScratchSpace behind. For the program, not for tests that run in one process.
void EndBySignals();

/// While it lives, writing to a closed pipe does not end the process.
class BrokenPipesIgnored {
public:
    BrokenPipesIgnored();
    BrokenPipesIgnored(BrokenPipesIgnored const&) = delete;
    BrokenPipesIgnored& operator=(BrokenPipesIgnored const&) = delete;
    ~BrokenPipesIgnored();

private:
#if !defined(_WIN32)
    struct sigaction previous_ {};
#endif
};

/// While it lives, the signals of Interrupt wait: what is done meanwhile on this thread is done whole or not at all. Only for what
/// takes no time, such as making a folder and noting that a signal has to remove it.
class SignalsHeldBack {
public:
    SignalsHeldBack();
    SignalsHeldBack(SignalsHeldBack const&) = delete;
    SignalsHeldBack& operator=(SignalsHeldBack const&) = delete;
    ~SignalsHeldBack();

private:
#if !defined(_WIN32)
    sigset_t previous_{};
#endif
};

} // namespace harvlink::cli
