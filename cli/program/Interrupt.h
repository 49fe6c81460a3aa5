#pragma once

#include <array>
#include <chrono>
#include <csignal>

namespace harvlink::cli {

/// While it lives, the program gets the first Ctrl-C, Ctrl-\, SIGTERM or hang-up itself, and the second ends the process.
/// There can be only one at a time.
class Interrupt {
public:
    Interrupt();
    Interrupt(Interrupt const&) = delete;
    Interrupt& operator=(Interrupt const&) = delete;
    ~Interrupt();

    /// Waits until the time is over or the signal comes. Returns whether the signal has come.
    bool Wait(std::chrono::milliseconds time) const;

    /// Becomes readable with the signal, so that poll can wait for it together with other descriptors.
    int Descriptor() const;

private:
    static constexpr std::array<int, 4> Signals{SIGINT, SIGQUIT, SIGTERM, SIGHUP};
    std::array<struct sigaction, Signals.size()> previous_{};
};

/// While it lives, writing to a closed pipe does not end the process.
class BrokenPipesIgnored {
public:
    BrokenPipesIgnored();
    BrokenPipesIgnored(BrokenPipesIgnored const&) = delete;
    BrokenPipesIgnored& operator=(BrokenPipesIgnored const&) = delete;
    ~BrokenPipesIgnored();

private:
    struct sigaction previous_ {};
};

} // namespace harvlink::cli
