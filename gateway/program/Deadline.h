#pragma once

#include <atomic>
#include <chrono>
#include <csignal>
#include <thread>

#include "gateway/model/Log.h"

namespace harvlink::gateway {

/// The time after which the program ends, whatever still waits: a name server that does not answer holds a thread for ten seconds
/// and more, a large recording takes its time to open, and nobody can call them back.
class Deadline {
public:
    /// Watches from now on. The time begins when one of `signals`, which all threads block, is sent to the process: also while the
    /// thread that takes them is busy.
    Deadline(Log& log, sigset_t const& signals, std::chrono::milliseconds time);
    Deadline(Deadline const&) = delete;
    Deadline& operator=(Deadline const&) = delete;
    /// In time: the program ends by itself.
    ~Deadline();

    /// The time begins now: a signal was taken, and maybe before it was seen here.
    void Begin();

private:
    void Run(std::chrono::milliseconds time);

    Log& log_;
    int sent_; ///< can be read while a signal is pending
    int wake_;
    std::atomic<bool> isOver_{false};
    std::thread thread_;
};

} // namespace harvlink::gateway
