#pragma once

#include <array>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <optional>
#include <thread>

#include "cli/watch/Reader.h"
#include "cli/watch/Sample.h"

namespace harvlink::cli::watch {

/// Reads from a controller in its own thread, so that keys are noticed while an exchange waits for its answer. Its
/// destructor waits for the running exchange.
class Feed {
public:
    Feed(Reader& reader, std::chrono::milliseconds interval);
    Feed(Feed const&) = delete;
    Feed& operator=(Feed const&) = delete;
    ~Feed();

    /// The newest sample, once. Throws what the thread has thrown.
    std::optional<Sample> Take();

    /// Becomes readable when there is something to take.
    int Descriptor() const { return wake_[0]; }

private:
    void Run();

    Reader& reader_;
    std::chrono::milliseconds interval_;
    std::array<int, 2> wake_{-1, -1};
    std::mutex mutex_;
    std::condition_variable ended_;
    bool hasEnded_ = false;
    std::optional<Sample> newest_;
    std::exception_ptr failure_;
    std::thread thread_;
};

} // namespace harvlink::cli::watch
