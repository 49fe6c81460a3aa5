#include "simulator/program/TrafficReport.h"

#include <fstream>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace harvlink::simulator {

namespace {

std::string FaultCounts(VirtualController& controller) {
    return controller.WithFaults([](FaultInjector const& faults) {
        std::vector<std::string> counts;
        for (std::size_t i = 0; i < FaultKinds; ++i) {
            auto const fault = static_cast<Fault>(i);
            counts.push_back(fmt::format("\"{}\": {}", NameOf(fault), faults.Happened(fault)));
        }
        return fmt::format("{{{}}}", fmt::join(counts, ", "));
    });
}

std::string Describe(VirtualController& controller) {
    auto const traffic = controller.Traffic();
    return fmt::format(R"({{"address": "{}", "requests": {}, "refused": {}, "ignored": {}, "faults": {}}})",
                       controller.Address(), traffic.requests, traffic.refused, traffic.ignored,
                       FaultCounts(controller));
}

} // namespace

bool CanWriteTrafficReport(std::string const& path) {
    return std::ofstream(path, std::ios::app).is_open(); // leaves what an earlier run wrote
}

bool WriteTrafficReport(std::string const& path, std::span<VirtualController* const> controllers) {
    std::vector<std::string> lines;
    for (auto* const controller : controllers) {
        lines.push_back(Describe(*controller));
    }
    std::ofstream file(path);
    file << fmt::format("{{\"controllers\": [\n  {}\n]}}\n", fmt::join(lines, ",\n  "));
    file.close();
    return !file.fail();
}

} // namespace harvlink::simulator
