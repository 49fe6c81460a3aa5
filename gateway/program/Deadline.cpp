#include "gateway/program/Deadline.h"

#include <array>

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <unistd.h>

namespace harvlink::gateway {

Deadline::Deadline(Log& log, sigset_t const& signals, std::chrono::milliseconds time)
    : log_(log), sent_(signalfd(-1, &signals, SFD_CLOEXEC)), wake_(eventfd(0, EFD_CLOEXEC)) {
    thread_ = std::thread([this, time] { Run(time); });
}

Deadline::~Deadline() {
    isOver_ = true;
    Begin();
    thread_.join();
    close(wake_);
    close(sent_);
}

void Deadline::Begin() {
    eventfd_write(wake_, 1);
}

void Deadline::Run(std::chrono::milliseconds time) {
    std::array<pollfd, 2> begins{{{sent_, POLLIN, 0}, {wake_, POLLIN, 0}}};
    poll(begins.data(), begins.size(), -1); // it does not take the signal
    auto const end = std::chrono::steady_clock::now() + time;
    while (!isOver_) {
        auto const left = std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        if (left.count() <= 0) {
            log_.Warning("something did not end in time; the program ends without it");
            _exit(0); // threads still run, so nothing must be destroyed
        }
        pollfd wakes{wake_, POLLIN, 0};
        eventfd_t count = 0;
        if (poll(&wakes, 1, static_cast<int>(left.count())) > 0) {
            eventfd_read(wake_, &count);
        }
    }
}

} // namespace harvlink::gateway
