#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

#include "cli/output/Output.h"

namespace harvlink::cli {

/// Shows on a terminal that a transfer is still going on, once it has taken half a second. A transfer is one blocking
/// call that tells nothing of how far it is, so the line shows the time. Wiped off at the end of the scope.
class TransferDisplay {
public:
    TransferDisplay(Output& output, std::string text);
    TransferDisplay(TransferDisplay const&) = delete;
    TransferDisplay& operator=(TransferDisplay const&) = delete;
    ~TransferDisplay();

private:
    void Show();

    Console& console_;
    std::string text_;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    std::mutex mutex_;
    std::condition_variable ended_;
    bool hasEnded_ = false;
    std::thread thread_;
};

} // namespace harvlink::cli
