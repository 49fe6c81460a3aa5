#include "gateway/program/Deadline.h"

#include <csignal>

#include <gtest/gtest.h>
#include <unistd.h>

namespace harvlink::gateway {
namespace {

constexpr std::chrono::milliseconds Short(50);

/// The thread that would take the signal waits for something that does not come.
void HangAfter(bool isSignalTaken) {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    Log log;
    Deadline deadline(log, signals, Short);
    if (isSignalTaken) {
        deadline.Begin();
    } else {
        kill(getpid(), SIGTERM);
    }
    for (;;) {
        pause();
    }
}

class DeadlineOfHangingProgram : public testing::TestWithParam<bool> {};

TEST_P(DeadlineOfHangingProgram, EndsIt) {
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // it starts a thread
    EXPECT_EXIT(HangAfter(GetParam()), testing::ExitedWithCode(0), "the program ends without it");
}

INSTANTIATE_TEST_SUITE_P(Signal, DeadlineOfHangingProgram, testing::Bool(),
                         [](auto const& signal) { return signal.param ? "IsTaken" : "Waits"; });

TEST(DeadlineTest, LeavesAloneWhatHasTime) {
    sigset_t none;
    sigemptyset(&none);
    Log log([](LogLevel, std::string const& line) { ADD_FAILURE() << line; });
    { Deadline const unused(log, none, Short); }
    Deadline used(log, none, std::chrono::hours(1));
    used.Begin();
}

} // namespace
} // namespace harvlink::gateway
