#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
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

    /// "probe 12 of 200", and a bar
    void Count(std::string_view what, std::size_t number, std::size_t total);

    /// Shows after the text the bytes that `bytes()` counts and how many come in a second, and a bar if the total is known. The
    /// function is called from another thread, as long as this object lives.
    void Follow(std::function<std::uint64_t()> bytes, std::uint64_t total = 0);

    /// Whether a line is on the terminal. A signal handler may call it.
    static bool IsShown();

private:
    void Redraw();
    std::string Line() const;
    std::string Transferred(double seconds) const;

    Console& console_;
    std::string text_;
    std::string bar_; ///< of what is counted
    std::function<std::uint64_t()> bytes_;
    std::uint64_t totalBytes_ = 0;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    std::mutex mutex_;
    std::condition_variable ended_;
    bool hasEnded_ = false;
    std::thread thread_; ///< redraws, as a command may be in one blocking call for long
};

} // namespace harvlink::cli
