#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <optional>
#include <thread>

#include "cli/watch/SampleSource.h"

namespace harvlink::cli::watch {

/// Reads from a controller in its own thread, so that keys are noticed while an exchange waits for its answer. Its
/// destructor waits for the running exchange.
class Feed {
public:
    Feed(SampleSource& source, std::chrono::milliseconds interval);
    Feed(Feed const&) = delete;
    Feed& operator=(Feed const&) = delete;
    ~Feed();

    /// The newest sample, once. Throws what the thread has thrown.
    std::optional<Sample> Take();

    /// Becomes readable when there is something to take.
    int Descriptor() const { return wake_[0]; }

    /// Lets the thread end after the running exchange, without waiting for it.
    void Stop();

    /// Whether it has ended, so that the destructor does not wait.
    bool HasEnded() const { return isDone_; }

private:
    void Run();

    SampleSource& source_;
    std::chrono::milliseconds interval_;
    std::array<int, 2> wake_{-1, -1};
    std::mutex mutex_;
    std::condition_variable ended_;
    bool hasEnded_ = false;
    std::optional<Sample> newest_;
    std::exception_ptr failure_;
    std::atomic<bool> isDone_ = false;
    std::thread thread_;
};

} // namespace harvlink::cli::watch
