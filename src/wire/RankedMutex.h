#pragma once

#include <cstdint>
#include <mutex>

#ifndef NDEBUG
#include <cstdio>
#include <cstdlib>
#endif

namespace harvlink {

/// The library's locks, in the order in which a thread may wait for them: only for a lock of a higher rank than all it holds.
enum class LockRank : std::uint8_t { MotionStartStop, MotionQueue, MotionTargets, FirstExchange, SecondExchange };

#ifdef NDEBUG

template <LockRank>
using RankedMutex = std::mutex;

#else

/// One bit for each rank of which this thread holds a lock.
// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): every thread has its own
inline thread_local unsigned heldLockRanks = 0;

/// A mutex that ends the program when it is waited for out of order, so that even a possible deadlock shows. A lock that
/// is only tried never waits and may be taken in any order.
template <LockRank rank>
class RankedMutex {
public:
    void lock() {
        if (heldLockRanks >= bit) {
            std::fputs("harvlink: waiting for a lock while holding one that ranks behind it\n", stderr);
            std::abort();
        }
        mutex.lock();
        heldLockRanks |= bit;
    }
    bool try_lock() {
        bool const isLocked = mutex.try_lock();
        heldLockRanks |= isLocked ? bit : 0U;
        return isLocked;
    }
    void unlock() {
        heldLockRanks &= ~bit;
        mutex.unlock();
    }

private:
    static constexpr unsigned bit = 1U << static_cast<unsigned>(rank);
    std::mutex mutex;
};

#endif

} // namespace harvlink
