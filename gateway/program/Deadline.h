#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "gateway/model/Log.h"

namespace harvlink::gateway {

/// The time after which the program ends, whatever still waits: a name server that does not answer holds a thread for ten seconds
/// and more, and nobody can call it back.
class Deadline {
public:
    explicit Deadline(Log& log) : log_(log) {}
    Deadline(Deadline const&) = delete;
    Deadline& operator=(Deadline const&) = delete;
    /// In time: the program ends by itself.
    ~Deadline();

    /// From now on, that much time is left.
    void Start(std::chrono::milliseconds time);

private:
    Log& log_;
    std::mutex mutex_;
    std::condition_variable wake_;
    bool isOver_ = false;
    std::thread thread_;
};

} // namespace harvlink::gateway
