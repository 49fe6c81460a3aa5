#include "system/Poller.h"

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <limits>

#include <poll.h>
#include <unistd.h>

#if defined(__linux__)
#include <sys/epoll.h>
#include <sys/syscall.h>
#endif

#include "system/PollSet.h"

namespace harvlink {
namespace {

constexpr std::int64_t nanosecondsInMillisecond = 1'000'000;

/// Rounded up: a wait that ends too early only spins.
int ToMilliseconds(std::int64_t nanoseconds) {
    std::int64_t const milliseconds = (nanoseconds + nanosecondsInMillisecond - 1) / nanosecondsInMillisecond;
    return static_cast<int>(std::clamp<std::int64_t>(milliseconds, 0, std::numeric_limits<int>::max()));
}

} // namespace

struct PollPoller::Watched : PollSet<pollfd> {};

PollPoller::PollPoller() : watched(std::make_unique<Watched>()) {}

PollPoller::~PollPoller() = default;

bool PollPoller::Watch(NativeSocket descriptor, Token token) {
    watched->Add({descriptor, POLLIN, 0}, token);
    return true;
}

void PollPoller::Forget(NativeSocket descriptor) {
    watched->Remove(descriptor);
}

std::span<PollPoller::Token const> PollPoller::Wait(std::int64_t nanoseconds) {
    auto& descriptors = watched->Descriptors();
    int const count = ::poll(descriptors.data(), static_cast<nfds_t>(descriptors.size()), ToMilliseconds(nanoseconds));
    return watched->Ready(count);
}

#if defined(__linux__)

struct EpollPoller::Events : std::array<epoll_event, mostAtOnce> {};

EpollPoller::EpollPoller() : epoll(::epoll_create1(EPOLL_CLOEXEC)), events(std::make_unique<Events>()) {}

EpollPoller::~EpollPoller() {
    if (epoll >= 0) {
        ::close(epoll);
    }
}

bool EpollPoller::Watch(NativeSocket descriptor, Token token) {
    epoll_event event{};
    event.events = EPOLLIN;
    event.data.u32 = token;
    return ::epoll_ctl(epoll, EPOLL_CTL_ADD, descriptor, &event) == 0;
}

/// What is closed is forgotten anyway, unless a child process has it too.
void EpollPoller::Forget(NativeSocket descriptor) {
    ::epoll_ctl(epoll, EPOLL_CTL_DEL, descriptor, nullptr);
}

std::span<EpollPoller::Token const> EpollPoller::Wait(std::int64_t nanoseconds) {
    int const count = WaitEvents(nanoseconds);
    readyCount = static_cast<std::size_t>(std::max(count, 0));
    std::ranges::transform(std::span(*events).first(readyCount), ready.begin(),
                           [](epoll_event const& event) { return event.data.u32; });
    return std::span(ready).first(readyCount);
}

/// Whole milliseconds would make a short period late; older systems have no others.
int EpollPoller::WaitEvents(std::int64_t nanoseconds) {
    int const most = static_cast<int>(events->size());
#if defined(SYS_epoll_pwait2) && defined(__LP64__)
    if (hasFineWait) {
        constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;
        nanoseconds = std::max(nanoseconds, std::int64_t{0});
        timespec const time{nanoseconds / nanosecondsPerSecond, nanoseconds % nanosecondsPerSecond};
        auto const count =
            static_cast<int>(::syscall(SYS_epoll_pwait2, epoll, events->data(), most, &time, nullptr, 0));
        if (count >= 0 || errno != ENOSYS) {
            return count;
        }
        hasFineWait = false;
    }
#endif
    return ::epoll_wait(epoll, events->data(), most, ToMilliseconds(nanoseconds));
}

#endif

} // namespace harvlink
