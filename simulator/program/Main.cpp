#include <csignal>
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "simulator/Server.h"

namespace {

using namespace harvlink::simulator;

/// Waits until somebody asks the program to end.
void AwaitEnd(sigset_t const& signals) {
    int received = 0;
    sigwait(&signals, &received);
}

int Run(std::vector<std::string> const& addresses, ControllerOptions const& options) {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    // Blocked before the server's thread starts, so that it inherits the mask and the signal comes to AwaitEnd.
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);

    Server server;
    for (auto const& address : addresses) {
        server.Add(address, options);
    }
    if (!server.Start()) {
        fmt::print(stderr, "harvlink-sim: {}\n", server.Error());
        return 1;
    }
    fmt::print("harvlink-sim: ready on {}\n", fmt::join(addresses, ", "));
    std::fflush(stdout);
    AwaitEnd(signals);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    CLI::App app("Virtual robot controller");
    std::vector<std::string> addresses{"127.0.0.1"};
    app.add_option("--address", addresses, "Loopback address to serve, repeatable")->capture_default_str();
    CLI11_PARSE(app, argc, argv);
    return Run(addresses, {});
}
