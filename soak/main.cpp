#include <cstdio>
#include <exception>
#include <fstream>

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <unistd.h>

#include "soak/Soak.h"

namespace harvlink::soak {
namespace {

/// Loopback addresses that other processes are unlikely to use.
Addresses OwnAddresses() {
    auto const process = static_cast<unsigned>(getpid());
    auto const address = [&](unsigned last) {
        return fmt::format("127.{}.{}.{}", 90 + process / 62500 % 100, process / 250 % 250, process % 62 * 4 + last);
    };
    return {address(1), address(2), address(3), address(4)};
}

void AddOptions(CLI::App& app, Options& options, std::vector<std::string>& addresses) {
    app.add_option("--minutes", options.minutes, "Duration of the run")
        ->check(CLI::Range(0.1, 100000.0))
        ->capture_default_str();
    app.add_option("--seed", options.seed, "Seed of the load and of the faults")->capture_default_str();
    app.add_option("--rate", options.rate, "Limit of operations per second [no limit]")->check(CLI::NonNegativeNumber);
    app.add_option("--simulator", options.simulator, "The program harvlink-sim")->required()->check(CLI::ExistingFile);
    app.add_option("--simulator-prefix", options.simulatorPrefix, "Command that starts it, such as: ip netns exec NAME")
        ->delimiter(' ');
    app.add_option("--addresses", addresses, "Four addresses for the controllers [on the loopback network]")
        ->expected(4);
    app.add_option("--faults", options.faults, "Faults for harvlink-sim --faults; empty for none")
        ->capture_default_str();
    app.add_flag("--bad-network", options.badNetwork, "The network also loses, delays and doubles requests");
    app.add_option("--report", options.report, "File for the figures")->required();
}

void PrintSummary(nlohmann::json const& report) {
    fmt::print("{} minutes, {} operations, {} exchanges, {} file bytes compared\n", report["minutes"].dump(),
               report["operations"].dump(), report["exchanges"].dump(), report["fileBytesCompared"].dump());
    fmt::print("operations by interface: {}\n", report["operationsByInterface"].dump());
    fmt::print("faults injected: {}\n", report["faultsInjected"].dump());
    fmt::print("faults survived: {}\n", report["faultsSurvived"].dump());
    fmt::print("before: {}\nafter:  {}\n", report["before"].dump(), report["after"].dump());
}

int Run(Options options, std::vector<std::string> const& addresses) {
    options.addresses =
        addresses.empty() ? OwnAddresses() : Addresses{addresses[0], addresses[1], addresses[2], addresses[3]};
    auto const reportFile = std::filesystem::absolute(options.report);
    Soak soak(options);
    bool const hasPassed = soak.Run();
    PrintSummary(soak.Report());
    std::ofstream(reportFile) << soak.Report().dump(2) << '\n';
    fmt::print("{}\n", hasPassed ? "soak: passed" : "soak: FAILED");
    return hasPassed ? 0 : 1;
}

int ParseAndRun(int argc, char** argv) {
    CLI::App app("Loads virtual controllers in many ways at once and checks every value that it reads.",
                 "harvlink_soak");
    Options options;
    options.faults = DefaultFaults;
    std::vector<std::string> addresses;
    AddOptions(app, options, addresses);
    CLI11_PARSE(app, argc, argv);
    return Run(std::move(options), addresses);
}

} // namespace
} // namespace harvlink::soak

int main(int argc, char** argv) {
    try {
        return harvlink::soak::ParseAndRun(argc, argv);
    } catch (std::exception const& error) {
        std::fprintf(stderr, "harvlink_soak: %s\n", error.what());
        return 1;
    }
}
