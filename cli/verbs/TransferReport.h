#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "cli/output/Output.h"
#include "harvlink/StatusInfo.h"

namespace harvlink::cli {

/// Reports each file of one command, and the sum at its end.
class TransferReport {
public:
    TransferReport(Output& output, std::string verb) : output_(output), verb_(std::move(verb)) {}

    /// `path` is where a file of the controller was stored here; empty for the other direction. Returns false after a time-out:
    /// the other files would only wait for one each.
    bool Add(std::string const& name, StatusInfo const& status, std::uintmax_t bytes, std::string const& path = {});

    void Finish(std::size_t wanted);

private:
    void ShowStatus(std::string const& name, StatusInfo const& status);

    Output& output_;
    std::string verb_;
    Json rows_ = Json::array();
    std::size_t done_ = 0;
    std::uintmax_t bytes_ = 0;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

} // namespace harvlink::cli
