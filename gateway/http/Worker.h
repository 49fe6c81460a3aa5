#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <stop_token>
#include <thread>

namespace harvlink::gateway {

/// Does on a thread of its own what the listener must not wait for. Of bounded length: who comes when it is full is sent away.
class Worker {
public:
    using Job = std::function<void(std::stop_token const&)>;

    static constexpr std::size_t MostWaiting = 64;

    Worker();
    Worker(Worker const&) = delete;
    Worker& operator=(Worker const&) = delete;
    /// Tells the job that runs to stop, and waits for it; what waits is not done.
    ~Worker();

    /// False if too much waits.
    bool Put(Job job);

private:
    void Run();

    std::mutex mutex_;
    std::condition_variable wake_;
    std::deque<Job> jobs_;
    std::stop_source stop_;
    std::thread thread_;
};

} // namespace harvlink::gateway
