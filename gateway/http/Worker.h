#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace harvlink::gateway {

/// Does on a thread of its own what the listener must not wait for. Of bounded length: who comes when it is full is sent away.
class Worker {
public:
    static constexpr std::size_t MostWaiting = 64;

    Worker();
    Worker(Worker const&) = delete;
    Worker& operator=(Worker const&) = delete;
    /// Waits for what runs; what waits is not done.
    ~Worker();

    /// False if too much waits.
    bool Put(std::function<void()> job);

private:
    void Run();

    std::mutex mutex_;
    std::condition_variable wake_;
    std::deque<std::function<void()>> jobs_;
    bool isStopping_ = false;
    std::thread thread_;
};

} // namespace harvlink::gateway
