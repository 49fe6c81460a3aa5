#include "wire/RankedMutex.h"

#include <gtest/gtest.h>

namespace harvlink::test {
namespace {

#ifndef NDEBUG

TEST(RankedMutexDeathTest, EndsTheProgramWhenItIsWaitedForOutOfOrder) {
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    RankedMutex<LockRank::MotionStartStop> startStop;
    RankedMutex<LockRank::MotionQueue> queue;
    RankedMutex<LockRank::FirstExchange> first;
    RankedMutex<LockRank::SecondExchange> second;
    std::unique_lock secondLock(second);
    EXPECT_DEATH(first.lock(), "ranks behind");
    std::unique_lock firstLock(first, std::try_to_lock);
    EXPECT_TRUE(firstLock.owns_lock()) << "what is tried makes nobody wait";
    secondLock.unlock();
    EXPECT_DEATH(queue.lock(), "ranks behind") << "the first is still held";
    RankedMutex<LockRank::FirstExchange> ofAnotherConnection;
    EXPECT_DEATH(ofAnotherConnection.lock(), "ranks behind");
    firstLock.unlock();
    std::unique_lock startStopLock(startStop);
    std::scoped_lock const inOrder(queue);
    startStopLock.unlock();
    EXPECT_DEATH(startStop.lock(), "ranks behind") << "the queue is held";
    firstLock.lock();
    secondLock.lock();
}

#endif

} // namespace
} // namespace harvlink::test
