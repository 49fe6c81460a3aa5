#pragma once

#include <array>
#include <chrono>
#include <csignal>

namespace harvlink::cli {

/// While it lives, the first Ctrl-C, Ctrl-\, SIGTERM or hang-up is kept for the program to act on, and a second one ends the
/// process. One at a time.
class Interrupt {
public:
    Interrupt();
    Interrupt(Interrupt const&) = delete;
    Interrupt& operator=(Interrupt const&) = delete;
    ~Interrupt();

    /// Waits for a time, shorter if the signal comes or has come. Returns whether it has.
    bool Wait(std::chrono::milliseconds time) const;

    /// Becomes readable with the signal, to be waited for together with other things.
    int Descriptor() const;

private:
    static constexpr std::array<int, 4> Signals{SIGINT, SIGQUIT, SIGTERM, SIGHUP};
    std::array<struct sigaction, Signals.size()> previous_{};
};

/// While it lives, output that nobody reads any more does not end the process.
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
