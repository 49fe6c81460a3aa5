#include "gateway/program/SystemNotice.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string_view>

#include <fmt/format.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace harvlink::gateway {

namespace {

std::string Environment(char const* name) {
    char const* const value = std::getenv(name); // NOLINT(concurrency-mt-unsafe): nothing here sets one
    return value == nullptr ? "" : value;
}

} // namespace

SystemNotice::SystemNotice() : address_(Environment("NOTIFY_SOCKET")) {
    std::string const period = Environment("WATCHDOG_USEC");
    std::int64_t microseconds = 0;
    std::from_chars(period.data(), period.data() + period.size(), microseconds);
    std::string const process = Environment("WATCHDOG_PID");
    if (microseconds > 0 && (process.empty() || process == std::to_string(getpid()))) {
        watchdog_ = std::chrono::microseconds(microseconds);
    }
    bool const isUsable =
        (address_.starts_with('/') || address_.starts_with('@')) && address_.size() < sizeof(sockaddr_un::sun_path);
    if (isUsable) {
        socket_ = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    }
}

SystemNotice::~SystemNotice() {
    if (socket_ >= 0) {
        close(socket_);
    }
}

void SystemNotice::Send(std::string const& text) const {
    if (socket_ < 0) {
        return;
    }
    sockaddr_un target{};
    target.sun_family = AF_UNIX;
    std::copy(address_.begin(), address_.end(), std::begin(target.sun_path));
    if (address_.front() == '@') {
        target.sun_path[0] = '\0'; // an abstract name
    }
    auto const length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + address_.size());
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): as the interface of sockets has it
    sendto(socket_, text.data(), text.size(), MSG_NOSIGNAL, reinterpret_cast<sockaddr const*>(&target), length);
}

void SystemNotice::Ready(std::string const& status) const {
    Send(fmt::format("READY=1\nSTATUS={}", status));
}

void SystemNotice::Reloading() const {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    constexpr std::int64_t Million = 1'000'000;
    Send(fmt::format("RELOADING=1\nMONOTONIC_USEC={}", now.tv_sec * Million + now.tv_nsec / 1000));
}

void SystemNotice::Stopping() const {
    Send("STOPPING=1");
}

void SystemNotice::Alive() const {
    Send("WATCHDOG=1");
}

} // namespace harvlink::gateway
