#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <span>

#include "system/NativeSocket.h"

namespace harvlink {

/// Waits for many descriptors at once. Of one thread. One class for each way in which systems do that, with the same members;
/// Poller is the best one of this system.
class PollPoller {
public:
    using Token = std::uint32_t; ///< what the caller knows a descriptor by

    PollPoller();
    PollPoller(PollPoller const&) = delete;
    PollPoller& operator=(PollPoller const&) = delete;
    ~PollPoller();

    bool IsOpen() const { return true; }

    /// @return false if this computer refused
    bool Watch(NativeSocket descriptor, Token token);
    void Forget(NativeSocket descriptor);

    /// The tokens of readable descriptors, after at most so many nanoseconds. Empty too if a signal came. Valid until the
    /// next call.
    std::span<Token const> Wait(std::int64_t nanoseconds);

    /// Whether the last Wait may have left some out.
    bool IsFull() const { return false; }

private:
    struct Watched;

    std::unique_ptr<Watched> watched;
};

#if defined(__linux__)

/// Costs the same for any number of descriptors.
class EpollPoller {
public:
    using Token = PollPoller::Token;

    EpollPoller();
    EpollPoller(EpollPoller const&) = delete;
    EpollPoller& operator=(EpollPoller const&) = delete;
    ~EpollPoller();

    bool IsOpen() const { return epoll >= 0; }
    bool Watch(NativeSocket descriptor, Token token);
    void Forget(NativeSocket descriptor);
    std::span<Token const> Wait(std::int64_t nanoseconds);
    bool IsFull() const { return readyCount == ready.size(); }

private:
    static constexpr std::size_t mostAtOnce = 256;

    struct Events;

    int WaitEvents(std::int64_t nanoseconds);

    std::array<Token, mostAtOnce> ready{};
    std::size_t readyCount = 0;
    int epoll;
    bool hasFineWait = true;
    std::unique_ptr<Events> events;
};

#endif

#if defined(__linux__) && !defined(HARVLINK_FLEET_POLL)
using Poller = EpollPoller;
#else
using Poller = PollPoller;
#endif

/// Whether a thread can sleep for less than a millisecond. Windows wakes it at a tick of its own, up to 16 ms later.
#if defined(_WIN32)
inline constexpr bool CanSleepFinely = false;
#else
inline constexpr bool CanSleepFinely = true;
#endif

} // namespace harvlink
