#include "gateway/http/Worker.h"

namespace harvlink::gateway {

Worker::Worker() : thread_([this] { Run(); }) {}

Worker::~Worker() {
    {
        std::scoped_lock const lock(mutex_);
        stop_.request_stop();
    }
    wake_.notify_one();
    thread_.join();
}

bool Worker::Put(Job job) {
    std::scoped_lock const lock(mutex_);
    if (jobs_.size() >= MostWaiting) {
        return false;
    }
    jobs_.push_back(std::move(job));
    wake_.notify_one();
    return true;
}

void Worker::Run() {
    std::unique_lock lock(mutex_);
    while (true) {
        wake_.wait(lock, [this] { return stop_.stop_requested() || !jobs_.empty(); });
        if (stop_.stop_requested()) {
            return;
        }
        auto const job = std::move(jobs_.front());
        jobs_.pop_front();
        lock.unlock();
        job(stop_.get_token());
        lock.lock();
    }
}

} // namespace harvlink::gateway
