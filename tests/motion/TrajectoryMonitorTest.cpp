#include <algorithm>
#include <atomic>
#include <thread>

#include "motion/RunningSession.h"
#include "support/ScratchFolder.h"

namespace harvlink::test {
namespace {

/// Half a second: short enough for lost answers, long enough for answers that come.
void ShortenTimeout(NetworkManager& manager) {
    manager.ResetTimeout();
    manager.ResetTimeout();
}
TEST(TrajectoryMonitor, SendsInOrderFromTheStartOn) {
    MotionSession session;
    session.controller.AnswerRest([](Datagram const&) { return Replies{{}}; });
    for (int i = 1; i <= 3; ++i) {
        session.manager->AddPointToTrajectory(Point(i), {}, {}, {});
    }
    session.controller.Expect(MotionRequest(start, {0}), Refusal(65534));
    EXPECT_EQ(session.manager->MotionStart().StatusCode, 65534 - 50000000);
    session.manager->MotionStop(false);
    EXPECT_EQ(Summary(session.Sent()), (Sequence{{start, 0}, {stop, 0}})); // nothing is sent until a start succeeds
    session.manager->MotionStart();
    session.Sent(8);
    session.manager->MotionStop(false);
    session.manager->AddPointToTrajectory(Point(4), {}, {}, {}); // does not need another start
    session.Sent(10);
    session.manager->MotionStart();
    session.manager->AddPointToTrajectory(Point(5), {}, {}, {});
    EXPECT_EQ(Summary(session.Sent(12)), (Sequence{{start, 0},
                                                   {stop, 0},
                                                   {start, 0},
                                                   {845, 0},
                                                   {847, 0},
                                                   {target, 1},
                                                   {target, 2},
                                                   {target, 3},
                                                   {stop, 0},
                                                   {target, 4},
                                                   {start, 0},
                                                   {target, 5}}));
}

TEST(TrajectoryMonitor, FailureRaisesAnAlarmLogsAndClears) {
    struct {
        Replies replies;
        unsigned refusedCommand;
        char const* alarmText;
        int subCode;
        char const* logged;
    } const cases[] = {
        {{Refusal(65534)}, target, "Servo Off", 0x7e, "Code (49934466): Servo Off"},
        {{Refusal(65535)},
         target,
         "Motion fail Check remote mode.",
         0x7f,
         "Code (49934465): MotionManager failure. Ensure remote control mode is selected."},
        {{Refusal(65520)}, 845, "Timeout", 0x70, "Code (49934480): Timeout"},
        {{Refusal(65502)}, 847, "Interpolation Out Of Range", 0x5e, "Code (49934498): Interpolation Out Of Range"},
        {{Refusal(8288)},
         target,
         "Unknown Motion Error. Check Har",
         0x60,
         "Code (8288): There is an active Error or Alarm."},
        {{},
         target,
         "Unknown Motion Error. Check Har",
         0x06,
         "Code (196614): No response from controller after 0 retries."},
    };
    std::vector<unsigned> const commands{845, 847, target};
    for (auto const& example : cases) {
        SCOPED_TRACE(example.logged);
        ScratchFolder const folder;
        std::atomic<bool> isBroken = true;
        RunningSession session;
        if (example.replies.empty()) {
            ShortenTimeout(*session.network);
        }
        session.controller.AnswerRest([&](Datagram const& datagram) {
            unsigned const command = CommandOf(datagram);
            bool const fails = isBroken && command == example.refusedCommand;
            return fails ? example.replies : Replies{command == alarm ? Refusal(8288) : Reply{}};
        });
        Motion point = Point(1);
        point.speed = 60.0;
        point.position.coordinateType = CoordinateType::RobotCoordinate;
        session.manager->AddPointToTrajectory(point, {}, {}, {});
        auto const failed = std::ranges::find(commands, example.refusedCommand) - commands.begin();
        auto const failedIndex = static_cast<std::size_t>(failed);
        auto sent = session.Sent(failedIndex + 3);
        EXPECT_EQ(CommandOf(sent[failedIndex]), example.refusedCommand);
        EXPECT_TRUE(SameRequest(AlarmRequest(example.alarmText, example.subCode), sent[failedIndex + 1].bytes));
        EXPECT_TRUE(SameRequest(ClearRequest(), sent[failedIndex + 2].bytes));
        std::string const log = ContentOf(folder.Path() / "HarvlinkLog.txt");
        EXPECT_EQ(log.substr(log.find(" Code") + 1), std::string(example.logged) + '\n');

        // The thread continues with the setting that was refused.
        isBroken = false;
        session.manager->AddPointToTrajectory(point, {}, {}, {});
        sent = session.Sent(commands.size() + 3);
        std::vector<unsigned> again;
        std::ranges::transform(sent.begin() + failed + 3, sent.end(), std::back_inserter(again), CommandOf);
        EXPECT_EQ(again, std::vector<unsigned>(commands.begin() + failed, commands.end()));
    }
}

TEST(TrajectoryMonitor, ManyThreadsAtOnce) {
    MotionSession session;
    session.controller.AnswerRest([](Datagram const&) { return Replies{{}}; });
    MotionManager& manager = *session.manager;
    auto const repeat = [](int times, auto action) {
        return std::thread([=] {
            for (int i = 1; i <= times; ++i) {
                action(i);
            }
        });
    };
    auto const adder = [&](int axis) {
        return repeat(300, [&manager, axis](int i) {
            Motion point = Point(0);
            point.position.axes[static_cast<std::size_t>(axis)] = i;
            manager.AddPointToTrajectory(point, {}, {}, {});
        });
    };
    std::thread threads[] = {
        adder(1),
        adder(2),
        repeat(10, [&](int) { manager.ClearAllTrajectory(); }),
        repeat(20, [&](int) { EXPECT_EQ(manager.MotionStart().StatusCode, 0); }),
        repeat(10, [&](int i) { manager.MotionStop(i % 4 == 0); }),
        repeat(50,
               [&](int) {
                   StatusInfo status;
                   manager.GetMotionTargetProgress(ControlGroupId::R1, status);
                   EXPECT_EQ(status.StatusCode, 0);
               }),
    };
    for (std::thread& thread : threads) {
        thread.join();
    }
    session.manager.reset();
    // A clear may remove points, but the remaining points of a thread stay in order and are sent once.
    for (std::size_t const axis : {1U, 2U}) {
        int last = 0;
        for (Datagram const& datagram : session.Sent()) {
            if (CommandOf(datagram) == target && AxisOf(datagram, axis) != 0) {
                EXPECT_GT(AxisOf(datagram, axis), last);
                last = AxisOf(datagram, axis);
            }
        }
    }
}

} // namespace
} // namespace harvlink::test
