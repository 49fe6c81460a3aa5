#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include <poll.h>

#if defined(__linux__)
#include <sys/epoll.h>
#endif

namespace harvlink::fleet {

/// Waits for many descriptors at once: epoll on Linux, poll elsewhere. Of one thread.
class Poller {
public:
    using Token = std::uint32_t; ///< what the caller knows a descriptor by

    Poller();
    Poller(Poller const&) = delete;
    Poller& operator=(Poller const&) = delete;
    ~Poller();

    bool IsOpen() const;

    /// @return false if this computer refused
    bool Watch(int descriptor, Token token);
    void Forget(int descriptor);

    /// The tokens of readable descriptors, after at most so many nanoseconds. Empty too if a signal came. Valid until the
    /// next call.
    std::span<Token const> Wait(std::int64_t nanoseconds);

    /// Whether the last Wait may have left some out.
    bool IsFull() const { return readyCount == ready.size(); }

private:
    static constexpr std::size_t mostAtOnce = 256;

    std::array<Token, mostAtOnce> ready{};
    std::size_t readyCount = 0;
#if defined(__linux__)
    int WaitEvents(std::int64_t nanoseconds);

    int epoll;
    bool hasFineWait = true;
    std::array<epoll_event, mostAtOnce> events{};
#else
    std::vector<pollfd> descriptors;
    std::vector<Token> tokens;
#endif
};

} // namespace harvlink::fleet
