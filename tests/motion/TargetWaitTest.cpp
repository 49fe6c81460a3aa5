#include <bit>
#include <mutex>
#include <thread>

#include "motion/RunningSession.h"
#include "simulator/network/Server.h"
#include "support/LoopbackAddress.h"
#include "support/ScratchFolder.h"

namespace harvlink::test {
namespace {

constexpr unsigned progress = 844, state = 114, alarms = 112, position = 117;

Bytes Double(double value) {
    auto const bits = std::bit_cast<std::int64_t>(value);
    return U32(bits & 0xffffffff) + U32(bits >> 32);
}

/// A controller that answers what a wait asks.
struct WaitSession : MotionSession {
    explicit WaitSession(ConnectionPolicy const& policy = {.enforced = StrictRules},
                         std::vector<std::int64_t> const& slots = {1})
        : MotionSession(slots, "YA1.00", policy) {
        controller.AnswerRest([this](Datagram const& datagram) { return Answer(datagram); });
    }
    ~WaitSession() { manager.reset(); }

    Replies Answer(Datagram const& datagram) {
        std::lock_guard const lock(mutex);
        unsigned const instance = datagram.bytes[26];
        switch (CommandOf(datagram)) {
        case progress:
            return {Payload(Double(reached[datagram.bytes[32]]))};
        case state:
            return {Payload(Words({0, isAlarming ? 0x10 : 0}))};
        case alarms:
            return {Payload(isAlarming && instance == 2 ? Words({8015, 126, 0}) + Text("", 16) + Text("Servo Off", 32)
                                                        : Bytes(60))};
        case position:
            return {Payload(Words({0, 0, 0, 0, 0, axis[instance - 1], 0, 0, 0, 0, 0, 0, 0}))};
        case target:
            return {isFull ? Refusal(65520) : isRefusing ? Refusal(65534) : Reply{}};
        case alarm:
            isAlarming = true;
            return {Reply{}};
        case clear:
            reached = {};
            return {Reply{.delay = clearDelay}};
        default:
            return {Reply{}};
        }
    }
    void Reach(double count, int at, std::size_t slot = 0) {
        std::lock_guard const lock(mutex);
        reached[slot] = count;
        axis[slot] = at;
    }
    std::uint64_t Add(double x, std::optional<Motion> second = {}) {
        std::uint64_t number = 0;
        EXPECT_EQ(manager->AddPointToTrajectory(number, Point(x), second, {}, {}).StatusCode, 0);
        return number;
    }
    int Wait(std::uint64_t number, unsigned timeout = 0) {
        last = manager->WaitForTarget(number, timeout, 1.0);
        return last.StatusCode;
    }
    void StartAndSend(std::uint64_t number) {
        manager->MotionStart();
        ASSERT_EQ(manager->WaitUntilSent(number, 10000).StatusCode, 0);
    }

    std::mutex mutex;
    std::array<double, 4> reached{};
    std::array<int, 4> axis{};
    std::atomic<bool> isAlarming = false, isFull = false, isRefusing = false;
    std::chrono::milliseconds clearDelay{};
    StatusInfo last;
};

constexpr int timedOut = static_cast<int>(ErrorStatusCodes::WaitTimedOut);
constexpr int withdrawn = static_cast<int>(ErrorStatusCodes::StepWithdrawn);
constexpr int unknown = static_cast<int>(ErrorStatusCodes::UnknownStep);

TEST(TargetWait, CountAndPositionDecide) {
    for (Rules const rules : {NoRules, StrictRules}) {
        WaitSession session({.enforced = rules});
        std::uint64_t const first = session.Add(1000);
        EXPECT_EQ(first, 1U);
        EXPECT_EQ(session.Wait(first), timedOut);
        EXPECT_EQ(session.last.Message, "Step 1 did not arrive within 0 ms. MotionStart was not called.");
        session.StartAndSend(first);
        struct {
            double reached;
            int axis, expected;
        } const cases[] = {
            {0.9, 1000, timedOut}, // only passes
            {1.0, 990, timedOut}, // counted, but not there
            {1.0, 999, 0},         {1.0, 1001, 0}, {1.5, 1002, timedOut},
        };
        for (auto const& example : cases) {
            session.Reach(example.reached, example.axis);
            EXPECT_EQ(session.Wait(first), example.expected) << example.reached << ' ' << example.axis;
        }
        std::uint64_t const second = session.Add(2000);
        ASSERT_EQ(session.manager->WaitUntilSent(second, 10000).StatusCode, 0);
        session.Reach(1.5, 1500);
        EXPECT_EQ(session.Wait(first), 0); // gone on from there
        EXPECT_EQ(session.Wait(second), timedOut);
        session.Reach(2.0, 2000);
        EXPECT_EQ(session.Wait(second), 0);
        for (std::uint64_t const number : {std::uint64_t{0}, second + 1}) {
            EXPECT_EQ(session.Wait(number, 10000), unknown);
            EXPECT_EQ(session.manager->WaitUntilSent(number, 10000).StatusCode, unknown);
        }
    }
}

TEST(TargetWait, EveryGroupOfAStepHasToArrive) {
    WaitSession session({.enforced = StrictRules}, {1, 2});
    std::uint64_t const step = session.Add(100, Point(200, ControlGroupId::R2));
    session.StartAndSend(step);
    session.Reach(1, 100);
    EXPECT_EQ(session.Wait(step), timedOut);
    session.Reach(1, 200, 1);
    EXPECT_EQ(session.Wait(step), 0);
}

TEST(TargetWait, ClearedTargetsNeverArrive) {
    WaitSession session;
    std::uint64_t const sent = session.Add(1000);
    session.StartAndSend(sent);
    session.isFull = true;
    std::uint64_t const queued = session.Add(2000);
    EXPECT_EQ(session.manager->ClearAllTrajectory().StatusCode, 0);
    session.isFull = false;
    EXPECT_EQ(session.Wait(queued, 10000), withdrawn);
    EXPECT_EQ(session.manager->WaitUntilSent(queued, 10000).StatusCode, withdrawn);
    EXPECT_EQ(session.Wait(sent, 10000), withdrawn);
    session.Reach(0, 1000);
    EXPECT_EQ(session.Wait(sent, 10000), 0); // it stands there after all
    // The count begins anew.
    std::uint64_t const next = session.Add(3000);
    ASSERT_EQ(session.manager->WaitUntilSent(next, 10000).StatusCode, 0);
    session.Reach(1, 3000);
    EXPECT_EQ(session.Wait(next), 0);
}

TEST(TargetWait, AfterAClearByAnotherProgramThePositionDecides) {
    WaitSession session;
    for (int i = 1; i <= 3; ++i) {
        session.Add(1000 * i);
    }
    session.StartAndSend(3);
    session.Reach(2.5, 2500);
    EXPECT_EQ(session.Wait(3), timedOut);
    session.Reach(0.0, 3000);
    EXPECT_EQ(session.Wait(3), timedOut); // the progress went back: noticed here
    EXPECT_EQ(session.Wait(3), 0);
    session.manager->ClearAllTrajectory();
    std::uint64_t const next = session.Add(5000);
    ASSERT_EQ(session.manager->WaitUntilSent(next, 10000).StatusCode, 0);
    session.Reach(0.5, 5000);
    EXPECT_EQ(session.Wait(next), timedOut); // counted again
}

TEST(TargetWait, ARefusalReturnsOnlyAfterTheClear) {
    for (Rules const rules : {NoRules, StrictRules}) {
        for (bool const untilSent : {false, true}) {
            SCOPED_TRACE(testing::Message() << rules.bits << untilSent);
            ScratchFolder const folder;
            WaitSession session({.enforced = rules});
            session.clearDelay = 100ms;
            session.StartAndSend(session.Add(1));
            session.isRefusing = true;
            std::uint64_t const refused = session.Add(2);
            std::uint64_t const dropped = session.Add(3);
            if (untilSent) {
                EXPECT_EQ(session.manager->WaitUntilSent(refused, 10000).StatusCode, 65534 - 50000000);
            } else {
                EXPECT_EQ(session.Wait(refused, 10000), 8015);
                EXPECT_EQ(session.last.Message, "Step 2 did not arrive: alarm 8015-126 Servo Off");
            }
            session.isRefusing = false;
            session.isAlarming = false;
            std::uint64_t const next = session.Add(4); // stays
            EXPECT_EQ(session.manager->WaitUntilSent(next, 10000).StatusCode, 0);
            EXPECT_EQ(session.Wait(dropped, 10000), withdrawn);
            EXPECT_EQ(session.Wait(refused, 10000), 65534 - 50000000); // the alarm is reset
            TrajectoryState now;
            EXPECT_EQ(session.manager->GetTrajectoryState(now).StatusCode, 0);
            EXPECT_EQ(now.queued, 4U);
            EXPECT_EQ(now.sent, 2U);
            EXPECT_EQ(now.refused, 1U);
            EXPECT_EQ(now.withdrawn, 1U);
            EXPECT_EQ(now.lastFailure.stepNumber, refused);
            EXPECT_EQ(now.lastFailure.group, ControlGroupId::R1);
            EXPECT_EQ(now.lastFailure.status.StatusCode, 65534 - 50000000);
        }
    }
}

TEST(TargetWait, StateShowsWhatTheMonitorDoes) {
    using enum TrajectoryMonitorState;
    ScratchFolder const folder;
    WaitSession session;
    auto const becomes = [&](TrajectoryMonitorState expected) {
        TrajectoryState now;
        auto const end = std::chrono::steady_clock::now() + 10s;
        do {
            session.manager->GetTrajectoryState(now);
        } while (now.monitor != expected && std::chrono::steady_clock::now() < end);
        EXPECT_EQ(now.monitor, expected);
        EXPECT_EQ(now.heldBackSince == std::chrono::system_clock::time_point{}, expected != HeldBack);
    };
    session.Add(1);
    becomes(NotStarted);
    session.manager->MotionStart();
    becomes(Idle);
    session.isFull = true;
    std::uint64_t const held = session.Add(2);
    becomes(HeldBack);
    EXPECT_EQ(session.Wait(held), timedOut);
    EXPECT_EQ(session.last.Message, "Step 2 did not arrive within 0 ms. The controller has no room for more targets.");
    session.manager->MotionStop(false);
    becomes(Stopped);
    session.isFull = false;
    session.manager->MotionStart();
    becomes(Idle);
    session.isRefusing = true;
    session.Add(3);
    becomes(Failed);
}

TEST(TargetWait, AlarmOfItsOwnStopAndCloseEndAWait) {
    struct {
        char const* what;
        void (*end)(WaitSession&);
        int expected;
    } const cases[] = {
        {"an alarm", [](WaitSession& session) { session.isAlarming = true; }, 8015},
        {"a clear", [](WaitSession& session) { session.manager->ClearAllTrajectory(); }, withdrawn},
        {"a stop", [](WaitSession& session) { session.manager->MotionStop(true); }, withdrawn},
        {"the end", [](WaitSession& session) { session.manager.reset(); }, withdrawn},
    };
    for (auto const& example : cases) {
        SCOPED_TRACE(example.what);
        WaitSession session;
        std::uint64_t const step = session.Add(1000);
        session.StartAndSend(step);
        MotionManager& manager = *session.manager;
        int code = 0;
        std::thread waiting([&] { code = manager.WaitForTarget(step, 60000, 1.0).StatusCode; });
        session.Sent(8); // it has begun to look
        example.end(session);
        waiting.join();
        EXPECT_EQ(code, example.expected);
    }
}

TEST(TargetWait, RemembersAThousandStepsAndKnowsWhatItForgot) {
    WaitSession session;
    session.Add(0);
    session.StartAndSend(1);
    session.manager->MotionStop(false);
    for (int i = 0; i < 3000; ++i) {
        session.Add(i);
    }
    session.manager->MotionStop(true);
    TrajectoryState now;
    session.manager->GetTrajectoryState(now);
    EXPECT_EQ(now.withdrawn, 3000U);
    EXPECT_EQ(session.manager->WaitUntilSent(3001, 0).StatusCode, withdrawn);
    EXPECT_EQ(session.manager->WaitUntilSent(3001 - 1023, 0).StatusCode, withdrawn);
    EXPECT_EQ(session.manager->WaitUntilSent(3001 - 1024, 0).StatusCode, unknown);
    EXPECT_EQ(session.Wait(1), unknown);
}

TEST(TargetWait, OlderControllersSupportNoneOfIt) {
    std::uint64_t number = 7;
    MotionSession old({1}, "FS1.00");
    TrajectoryState now;
    int const unsupported = static_cast<int>(ErrorStatusCodes::UnsupportedOnThisController);
    EXPECT_EQ(old.manager->AddPointToTrajectory(number, Point(1), {}, {}, {}).StatusCode, unsupported);
    EXPECT_EQ(number, 0U);
    EXPECT_EQ(old.manager->WaitForTarget(1, 0, 1.0).StatusCode, unsupported);
    EXPECT_EQ(old.manager->WaitUntilSent(1, 0).StatusCode, unsupported);
    EXPECT_EQ(old.manager->GetTrajectoryState(now).StatusCode, unsupported);
}

TEST(TargetWait, WhatIsQueuedAfterARefusalArrivesAtTheVirtualController) {
    ScratchFolder const folder;
    simulator::Server server;
    simulator::ControllerOptions options;
    options.timeScale = 200.0;
    std::string const address = NextLoopbackAddress();
    auto& controller = server.Add(address, options);
    ASSERT_TRUE(server.Start()) << server.Error();
    StatusInfo status;
    NetworkManager network(address, 8000, 0, status, {.enforced = StrictRules});
    network.SetLogging(false);
    MotionManager manager(&network);
    for (int round = 1; round <= 25 && !HasFailure(); ++round) {
        controller.With([](simulator::ControllerModel& model) {
            model.ResetAlarms();
            model.SetServo(true);
        });
        ASSERT_EQ(manager.MotionStart().StatusCode, 0);
        std::uint64_t step = 0;
        for (double const x : {1000.0 * round, 500.0}) {
            ASSERT_EQ(manager.AddPointToTrajectory(step, Point(x), {}, {}, {}).StatusCode, 0);
        }
        status = manager.WaitForTarget(step, 20000, 1.0);
        EXPECT_EQ(status.StatusCode, 0) << status.Message;
        ASSERT_EQ(manager.AddPointToTrajectory(step, Point(1e8), {}, {}, {}).StatusCode, 0); // nobody turns so far
        status = manager.WaitForTarget(step, 20000, 1.0);
        EXPECT_EQ(status.StatusCode, 8015) << status.Message;
    }
    TrajectoryState totals;
    manager.GetTrajectoryState(totals);
    EXPECT_EQ(totals.sent, 50U);
    EXPECT_EQ(totals.refused, 25U);
    EXPECT_EQ(totals.withdrawn, 0U);
}

} // namespace
} // namespace harvlink::test
