#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

#include "cli/output/Output.h"

namespace harvlink::cli {

/// One line on a terminal that shows what a command is doing and for how long. It appears after half a second, and is
/// wiped off at the end of the scope: nothing else may be printed until then. Off a terminal it shows nothing.
class Progress {
public:
    Progress(Output& output, std::string_view text);
    Progress(Progress const&) = delete;
    Progress& operator=(Progress const&) = delete;
    ~Progress();

    /// Replaces the text. Cheap enough to be called for every exchange.
    void Show(std::string_view text);

    /// "probe 12 of 200"
    void Count(std::string_view what, std::size_t number, std::size_t total);

private:
    void Redraw();
    std::string Line() const;

    Console& console_;
    std::string text_;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    std::mutex mutex_;
    std::condition_variable ended_;
    bool hasEnded_ = false;
    std::thread thread_; ///< redraws, as a command may be in one blocking call for long
};

} // namespace harvlink::cli
