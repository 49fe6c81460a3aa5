#include <bit>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <thread>

#include "motion/RunningSession.h"
#include "support/ScratchFolder.h"

// Each rule of the monitor beside the designed behaviour.

namespace harvlink::test {
namespace {

constexpr Rules Only(Rule rule) {
    return NoRules.With(rule);
}

std::uint64_t CountOf(Rule rule, MotionSession const& session) {
    return session.network->Statistics()
        .Snapshot()
        .ruleCounts[static_cast<std::size_t>(std::countr_zero(static_cast<std::uint32_t>(rule)))];
}

void AwaitIdle(MotionSession& session) {
    auto const end = std::chrono::steady_clock::now() + 10s;
    TrajectoryState state;
    while (state.monitor != TrajectoryMonitorState::Idle && std::chrono::steady_clock::now() < end) {
        session.manager->GetTrajectoryState(state);
    }
}

std::set<std::string> Threads() {
    std::set<std::string> threads;
    for (auto const& entry : std::filesystem::directory_iterator("/proc/self/task")) {
        threads.insert(entry.path().filename());
    }
    return threads;
}

/// 'R' while a thread runs or could, 'S' while it sleeps.
char StateOf(std::string const& thread) {
    std::ifstream file("/proc/self/task/" + thread + "/stat");
    std::string line;
    std::getline(file, line);
    std::size_t const end = line.rfind(") ");
    return end == std::string::npos ? '?' : line[end + 2];
}

/// The thread that feeds motion.
std::string MonitorOf(MotionSession& session) {
    auto const before = Threads();
    session.manager->MotionStart();
    for (std::string const& thread : Threads()) {
        if (!before.contains(thread)) {
            return thread;
        }
    }
    return "";
}

bool FallsAsleep(std::string const& thread) {
    auto const end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (StateOf(thread) != 'S' && std::chrono::steady_clock::now() < end) {
        std::this_thread::yield();
    }
    return StateOf(thread) == 'S';
}

TEST(TrajectoryRules, IdleMonitorSleepsAndWakesForEveryPoint) {
    MotionSession session({1}, "YA1.00", {.enforced = Only(Rule::IdleMonitor)});
    session.controller.AnswerRest([](Datagram const&) { return Replies{{}}; });
    std::string const monitor = MonitorOf(session);
    for (int i = 1; i <= 20; ++i) {
        if (i % 2 == 0) {
            ASSERT_TRUE(FallsAsleep(monitor)) << i;
        }
        std::uint64_t number = 0;
        session.manager->AddPointToTrajectory(number, Point(i), {}, {}, {});
        ASSERT_EQ(session.manager->WaitUntilSent(number, 10000).StatusCode, 0) << i;
    }
    EXPECT_TRUE(FallsAsleep(monitor));
    EXPECT_GE(session.network->Statistics().Snapshot().ruleCounts[9], 10U);
    session.manager.reset(); // wakes it for the last time
}

TEST(TrajectoryRules, DesignedMonitorNeverSleepsAndIsCountedOncePerPause) {
    MotionSession session({1}, "YA1.00", {.audited = Only(Rule::IdleMonitor)});
    session.controller.AnswerRest([](Datagram const&) { return Replies{{}}; });
    std::string const monitor = MonitorOf(session);
    auto const count = [&] { return session.network->Statistics().Snapshot().ruleCounts[9]; };
    while (count() == 0) {
        std::this_thread::yield();
    }
    for (int looks = 0; looks < 1000; ++looks) {
        ASSERT_EQ(StateOf(monitor), 'R');
    }
    EXPECT_EQ(count(), 1U);
}

TEST(TrajectoryRules, AfterAClearTheStepThatWasSentIsTheOneThatGoes) {
    struct {
        ConnectionPolicy policy;
        Sequence expected;
        std::uint64_t refusals, withdrawn;
    } const cases[] = {
        {{}, {{target, 1}, {clear, 0}, {target, 1}, {target, 4}}, 0, 2},
        {{.audited = StrictRules}, {{target, 1}, {clear, 0}, {target, 1}, {target, 4}}, 1, 2},
        {{.enforced = Only(Rule::SentStep)}, {{target, 1}, {clear, 0}, {target, 1}, {target, 3}, {target, 4}}, 1, 1},
        {{.enforced = StrictRules}, {{target, 1}, {clear, 0}, {target, 3}, {target, 4}}, 0, 2},
    };
    for (auto const& example : cases) {
        SCOPED_TRACE(testing::Message() << "case " << &example - cases);
        RunningSession session(example.policy);
        session.isFull = true;
        session.Add(1);
        session.Add(2);
        session.Sent(1);
        EXPECT_EQ(session.manager->ClearAllTrajectory().StatusCode, 0);
        session.Add(3);
        std::uint64_t last = 0;
        session.manager->AddPointToTrajectory(last, Point(4), {}, {}, {});
        session.isFull = false;
        EXPECT_EQ(session.manager->WaitUntilSent(last, 10000).StatusCode, 0);
        EXPECT_EQ(session.network->Statistics().Snapshot().ruleCounts[10], example.refusals);
        TrajectoryState state;
        session.manager->GetTrajectoryState(state);
        EXPECT_EQ(state.withdrawn, example.withdrawn);
        EXPECT_EQ(state.queued, state.sent + state.withdrawn);
        EXPECT_EQ(session.Finish(), example.expected);
    }
}

/// What went out when a full buffer met a stop or clear, with all repetitions taken as one.
Sequence WhileFull(ConnectionPolicy const& policy, StatusInfo (*operation)(MotionManager&), bool startsAgain) {
    RunningSession session(policy);
    session.isFull = true;
    for (int i = 1; i <= 2; ++i) {
        session.Add(i);
    }
    session.Sent(3); // the repetitions have begun
    EXPECT_EQ(operation(*session.manager).StatusCode, 0);
    // As designed, the repetition still goes on when this has its answer; under the rule nothing comes between.
    session.manager->SetTool(TargetControlGroup::GroupTwo, 0);
    bool const isWatched = policy.Watches(Rule::BoundedClose);
    auto const end = std::chrono::steady_clock::now() + 10s;
    while (isWatched && CountOf(Rule::BoundedClose, session) == 0 && std::chrono::steady_clock::now() < end) {
        std::this_thread::yield();
    }
    EXPECT_EQ(CountOf(Rule::BoundedClose, session) > 0, isWatched);
    session.isFull = false;
    if (startsAgain) {
        session.manager->MotionStart();
    }
    std::uint64_t number = 0;
    session.manager->AddPointToTrajectory(number, Point(3), {}, {}, {});
    if (startsAgain) {
        EXPECT_EQ(session.manager->WaitUntilSent(number, 10000).StatusCode, 0);
    }
    return session.Finish();
}

TEST(TrajectoryRules, StopAndClearEndTheWaitForRoom) {
    constexpr unsigned tool = 846;
    auto const halt = [](MotionManager& manager) { return manager.MotionStop(false); };
    auto const stopAndClear = [](MotionManager& manager) { return manager.MotionStop(true); };
    auto const drop = [](MotionManager& manager) { return manager.ClearAllTrajectory(); };
    ConnectionPolicy const bounded{.enforced = Only(Rule::BoundedClose).With(Rule::SentStep)};

    EXPECT_EQ(WhileFull(bounded, halt, false), (Sequence{{target, 1}, {stop, 0}, {tool, 0}}));
    EXPECT_EQ(WhileFull(bounded, halt, true),
              (Sequence{{target, 1}, {stop, 0}, {tool, 0}, {start, 0}, {target, 1}, {target, 2}, {target, 3}}));
    EXPECT_EQ(WhileFull(bounded, stopAndClear, true),
              (Sequence{{target, 1}, {stop, 0}, {clear, 0}, {tool, 0}, {start, 0}, {target, 3}}));
    EXPECT_EQ(WhileFull(bounded, drop, true), (Sequence{{target, 1}, {clear, 0}, {tool, 0}, {start, 0}, {target, 3}}));

    // As designed the step that is under way goes out whatever happens, and a stop holds nothing.
    for (Rules const audited : {NoRules, StrictRules.Without(Rule::SentStep)}) {
        for (auto const& [operation, command] : {std::pair{+halt, stop}, {+stopAndClear, clear}, {+drop, clear}}) {
            auto const designed = WhileFull({.enforced = Only(Rule::SentStep), .audited = audited}, operation, true);
            auto const halted = std::ranges::find(designed, std::pair{command, 0});
            EXPECT_GT(std::count(halted, designed.end(), std::pair{target, 1}), 0);
            if (command == stop) {
                EXPECT_EQ(designed.back(), (std::pair{target, 3}));
            }
        }
    }
}

/// The stop comes second while the start still waits for its answer: it decides.
TEST(TrajectoryRules, AStopBehindAStartThatIsUnderWayHoldsTheQueue) {
    RunningSession session({.enforced = StrictRules});
    session.controller.AnswerRest(
        [](Datagram const& datagram) { return Replies{{.delay = CommandOf(datagram) == start ? 200ms : 0ms}}; });
    std::jthread starter([&] { EXPECT_EQ(session.manager->MotionStart().StatusCode, 0); });
    session.Sent(1);
    EXPECT_EQ(session.manager->MotionStop(false).StatusCode, 0);
    starter.join();
    session.Add(1);
    TrajectoryState state;
    session.manager->GetTrajectoryState(state);
    EXPECT_EQ(state.monitor, TrajectoryMonitorState::Stopped);
    EXPECT_EQ(session.Finish(), (Sequence{{start, 0}, {stop, 0}}));
}

/// The controller may have taken a stop whose answer is lost, so it holds; one that was refused holds nothing.
TEST(TrajectoryRules, AStopHoldsUnlessItIsRefused) {
    struct {
        char const* what;
        Replies toStop;
        bool clears, holds;
    } const cases[] = {
        {"refused", {Refusal(65535)}, false, false},
        {"refused, with clear", {Refusal(8288)}, true, false},
        {"lost", {}, false, true},
        {"lost, with clear", {}, true, true},
    };
    for (auto const& example : cases) {
        SCOPED_TRACE(example.what);
        RunningSession session({.enforced = StrictRules});
        session.controller.AnswerRest(
            [&](Datagram const& datagram) { return CommandOf(datagram) == stop ? example.toStop : Replies{{}}; });
        Hurry(*session.network);
        EXPECT_NE(session.manager->MotionStop(example.clears).StatusCode, 0);
        std::uint64_t number = 0;
        session.manager->AddPointToTrajectory(number, Point(1), {}, {}, {});
        TrajectoryState state;
        session.manager->GetTrajectoryState(state);
        EXPECT_EQ(state.monitor == TrajectoryMonitorState::Stopped, example.holds);
        if (example.holds) {
            EXPECT_EQ(Summary(session.Sent(1)), (Sequence{{stop, 0}}));
            session.manager->MotionStart();
        }
        EXPECT_EQ(session.manager->WaitUntilSent(number, 10000).StatusCode, 0);
    }
}

/// Once for each stop behind which a step waits, in an audit too: what stands still with the rule has to show without it.
TEST(TrajectoryRules, AStopCountsForTheStepsThatItHolds) {
    using Play = void (*)(RunningSession&);
    std::pair<Play, std::uint64_t> const cases[] = {
        {[](RunningSession& s) { s.Add(1); }, 0},
        {[](RunningSession& s) { s.manager->MotionStop(false); }, 0},
        {[](RunningSession& s) { s.manager->MotionStop(true), s.Add(1); }, 0},
        {[](RunningSession& s) { s.manager->MotionStop(false), s.manager->MotionStart(), s.Add(1); }, 0},
        {[](RunningSession& s) { s.manager->MotionStop(false), s.Add(1), s.Add(2); }, 1},
        {[](RunningSession& s) { s.manager->MotionStop(false), s.Add(1), s.manager->MotionStop(false), s.Add(2); }, 2},
    };
    ConnectionPolicy const policies[] = {{}, {.enforced = StrictRules}, {.audited = StrictRules}};
    for (auto const& example : cases) {
        for (ConnectionPolicy const& policy : policies) {
            SCOPED_TRACE(testing::Message() << "case " << &example - cases << ", policy " << &policy - policies);
            RunningSession session(policy);
            AwaitIdle(session);
            example.first(session);
            bool const isWatched = policy.Watches(Rule::BoundedClose);
            EXPECT_EQ(CountOf(Rule::BoundedClose, session), isWatched ? example.second : 0);
        }
    }
}

TEST(TrajectoryRules, CloseDropsTheQueueAndTakesTwoExchangesAtMost) {
    auto const slowly = [](Reply reply) {
        reply.delay = 200ms; // so that the close begins while the exchange is under way
        return Replies{reply};
    };
    struct {
        char const* what;
        Replies replies; ///< to a target
        Sequence expected;
    } const cases[] = {
        {"a full buffer", slowly(Refusal(65520)), {{target, 1}}},
        {"a refusal", slowly(Refusal(65534)), {{target, 1}, {alarm, 0}}},
        {"silence", {}, {{target, 1}, {alarm, 0}}},
        {"success", slowly({}), {{target, 1}}},
    };
    for (auto const& example : cases) {
        SCOPED_TRACE(example.what);
        ScratchFolder const folder;
        RunningSession session({.enforced = StrictRules});
        session.controller.AnswerRest(
            [&](Datagram const& datagram) { return CommandOf(datagram) == target ? example.replies : Replies{{}}; });
        if (example.replies.empty()) {
            Hurry(*session.network);
        }
        for (int i = 1; i <= 100; ++i) {
            session.Add(i);
        }
        session.Sent(1);
        EXPECT_EQ(session.Finish(), example.expected);
    }
}

TEST(TrajectoryRules, AFailureNamesControllerStepAndGroup) {
    for (bool const isStrict : {false, true}) {
        SCOPED_TRACE(isStrict);
        ScratchFolder const folder;
        RunningSession session(isStrict ? ConnectionPolicy{.enforced = StrictRules}
                                        : ConnectionPolicy{.audited = StrictRules});
        session.controller.AnswerRest(
            [](Datagram const& datagram) { return Replies{CommandOf(datagram) == target ? Refusal(65534) : Reply{}}; });
        std::uint64_t number = 0;
        session.manager->AddPointToTrajectory(number, Point(1), {}, {}, {});
        StatusInfo const status = session.manager->WaitUntilSent(number, 10000);
        std::string const place = "Controller " + session.controller.Address() + ", step 2, group R1.";
        EXPECT_EQ(status.StatusCode, 65534 - 50000000);
        EXPECT_EQ(status.Message, isStrict ? "Servo Off\n" + place : "Servo Off");
        std::string log = ContentOf(folder.Path() / "HarvlinkLog.txt");
        std::string lines;
        for (std::size_t begin = 0, end = 0; (end = log.find('\n', begin)) != std::string::npos; begin = end + 1) {
            lines += log.substr(log.find("Code", begin), end + 1 - log.find("Code", begin));
        }
        EXPECT_EQ(lines,
                  "Code (49934466): Servo Off\n" + (isStrict ? "Code (49934466): " + place + '\n' : std::string()));
    }
}

} // namespace
} // namespace harvlink::test
