#include "gateway/program/Deadline.h"

#include <unistd.h>

namespace harvlink::gateway {

Deadline::~Deadline() {
    {
        std::scoped_lock const lock(mutex_);
        isOver_ = true;
    }
    wake_.notify_one();
    if (thread_.joinable()) {
        thread_.join();
    }
}

void Deadline::Start(std::chrono::milliseconds time) {
    thread_ = std::thread([this, time] {
        std::unique_lock lock(mutex_);
        if (!wake_.wait_for(lock, time, [this] { return isOver_; })) {
            log_.Warning("something did not end in time; the program ends without it");
            _exit(0); // threads still run, so nothing must be destroyed
        }
    });
}

} // namespace harvlink::gateway
