#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>

#include "system/WakeUp.h"

namespace harvlink::fleet {

/// Lets threads wait until the engine has put something into a queue. The engine makes a system call only if somebody waits.
class Inbox {
public:
    bool IsOpen() const { return wakeUp.IsOpen(); }

    /// Called after something was put in. Both sides write first and then look at what the other one wrote, so one of them
    /// sees the other.
    void Announce() {
        if (waiting.load(std::memory_order_seq_cst) > 0) {
            wakeUp.Set();
        }
    }

    /// Calls `take` until it returns a number that is not 0, or the time is over.
    template <typename TakeSome, typename IsEmpty>
    std::size_t Take(std::chrono::milliseconds time, TakeSome const& take, IsEmpty const& isEmpty) {
        using Clock = std::chrono::steady_clock;
        constexpr std::chrono::milliseconds longest = std::chrono::hours(24);
        auto const end = Clock::now() + std::clamp(time, std::chrono::milliseconds(0), longest);
        for (;;) {
            std::size_t const taken = take();
            auto const rest = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
            if (taken > 0 || rest.count() <= 0) {
                PassOn(isEmpty);
                return taken;
            }
            waiting.fetch_add(1, std::memory_order_seq_cst);
            if (isEmpty()) {
                (void)wakeUp.Wait(rest);
            }
            waiting.fetch_sub(1, std::memory_order_seq_cst);
            wakeUp.Clear();
        }
    }

private:
    /// What is left is for another one that waits: its wakeUp may just have been cleared.
    template <typename IsEmpty>
    void PassOn(IsEmpty const& isEmpty) {
        if (waiting.load(std::memory_order_seq_cst) > 0 && !isEmpty()) {
            wakeUp.Set();
        }
    }

    WakeUp wakeUp;
    std::atomic<int> waiting = 0;
};

} // namespace harvlink::fleet
