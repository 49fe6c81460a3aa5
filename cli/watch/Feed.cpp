#include "cli/watch/Feed.h"

#include <cstdint>
#include <stdexcept>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace harvlink::cli::watch {

Feed::Feed(SampleSource& source, std::chrono::milliseconds interval) : source_(source), interval_(interval) {
    if (pipe2(wake_.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        throw std::runtime_error("can't open a pipe for the samples");
    }
    thread_ = std::thread([this] { Run(); });
}

void Feed::Stop() {
    {
        std::lock_guard const lock(mutex_);
        hasEnded_ = true;
    }
    source_.Stop();
    ended_.notify_one();
}

Feed::~Feed() {
    Stop();
    thread_.join();
    for (int const end : wake_) {
        close(end);
    }
}

std::optional<Sample> Feed::Take() {
    std::lock_guard const lock(mutex_);
    char byte = 0;
    [[maybe_unused]] ssize_t const taken = read(wake_[0], &byte, 1);
    if (failure_) {
        std::rethrow_exception(failure_);
    }
    return std::exchange(newest_, std::nullopt);
}

void Feed::Run() {
    std::unique_lock lock(mutex_);
    do {
        lock.unlock();
        std::optional<Sample> sample;
        std::exception_ptr failure;
        try {
            sample = source_.Read();
        } catch (...) {
            failure = std::current_exception();
        }
        lock.lock();
        newest_ = std::move(sample);
        failure_ = failure;
        [[maybe_unused]] ssize_t const ignored = write(wake_[1], "", 1);
    } while (!failure_ && !ended_.wait_for(lock, interval_, [this] { return hasEnded_; }));
    isDone_ = true;
}

} // namespace harvlink::cli::watch
