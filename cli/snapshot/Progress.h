#pragma once

#include <chrono>
#include <string_view>

#include "cli/output/Output.h"

namespace harvlink::cli::snapshot {

/// One line on a terminal that tells what is being read. Wiped off at the end of the scope.
class Progress {
public:
    explicit Progress(Output& output) : output_(output) {}
    Progress(Progress const&) = delete;
    Progress& operator=(Progress const&) = delete;
    ~Progress();

    /// Seldom enough that showing costs nothing against reading.
    void Show(std::string_view what);

private:
    Output& output_;
    std::chrono::steady_clock::time_point last_{};
    bool isShown_ = false;
};

} // namespace harvlink::cli::snapshot
