#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <functional>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "cases/Cases.h"

// Times whole operations of the library against the bare socket on the same machine in the same run. Both sides take
// turns, and the median of the ratios of the rounds counts.

namespace harvlink::bench {
namespace {

struct Family {
    std::string_view name;
    void (*run)(Report&);
};

constexpr Family families[] = {{"exchange", ExchangeCases},  {"peer", PeerCase},      {"file", FileCases},
                               {"motion", MotionCases},      {"thread", ThreadCases}, {"connection", ConnectionCases},
                               {"simulator", SimulatorCase}, {"fleet", FleetCases}};

int RunFamilies(std::vector<std::string> const& wanted, std::string const& jsonPath) {
    Report report;
    std::printf("%-58s %12s %12s  %9s\n", "case", "floor", "harvlink", "gated");
    for (Family const& family : families) {
        if (wanted.empty() || std::ranges::find(wanted, family.name) != wanted.end()) {
            family.run(report);
        }
    }
    report.WriteJson(jsonPath);
    return report.AllMet() ? 0 : 3;
}

} // namespace
} // namespace harvlink::bench

/// harvlink_bench JSON-FILE [FAMILY...]  or  harvlink_bench --exchanges|--strict-exchanges COUNT
int main(int argc, char** argv) {
    std::vector<std::string> const arguments(argv + 1, argv + argc);
    try {
        bool const isStrict = !arguments.empty() && arguments[0] == "--strict-exchanges";
        if (arguments.size() == 2 && (isStrict || arguments[0] == "--exchanges")) {
            harvlink::bench::RunExchanges(std::stoi(arguments[1]), isStrict);
            return 0;
        }
        if (arguments.empty()) {
            std::cerr << "usage: harvlink_bench JSON-FILE [FAMILY...] | --exchanges|--strict-exchanges COUNT\n";
            return 2;
        }
        return harvlink::bench::RunFamilies({arguments.begin() + 1, arguments.end()}, arguments[0]);
    } catch (std::exception const& error) {
        std::cerr << "harvlink_bench: " << error.what() << '\n';
        return 1;
    }
}
