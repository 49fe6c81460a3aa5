#include "simulator/program/FaultLog.h"

#include <cerrno>
#include <chrono>
#include <system_error>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace harvlink::simulator {

FaultLog::FaultLog(std::string const& path) : file_(path) {
    if (!file_) {
        throw std::system_error(errno, std::generic_category(), path);
    }
}

void FaultLog::Write(VirtualController& controller, Request const& request) {
    auto const hits = controller.WithFaults([](FaultInjector const& faults) { return faults.LastHits(); });
    if (hits.none()) {
        return;
    }
    std::vector<std::string> names;
    for (std::size_t i = 0; i < FaultKinds; ++i) {
        if (hits[i]) {
            names.push_back(fmt::format("\"{}\"", NameOf(static_cast<Fault>(i))));
        }
    }
    std::chrono::duration<double> const time = std::chrono::system_clock::now().time_since_epoch();
    file_ << fmt::format(
        R"({{"time": {:.6f}, "controller": "{}", "port": {}, "command": {}, "instance": {}, "service": {}, "faults": [{}]}})",
        time.count(), controller.Address(), static_cast<int>(request.port), request.subHeader.command,
        request.subHeader.instance, request.subHeader.service, fmt::join(names, ", "));
    file_ << std::endl; // flushes on purpose
}

} // namespace harvlink::simulator
