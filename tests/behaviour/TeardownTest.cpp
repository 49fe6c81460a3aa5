#include <atomic>
#include <thread>

#include "behaviour/MemoryController.h"
#include "harvlink/harvlink.h"

// Closing connections in every state.

namespace harvlink::test {
namespace {

constexpr unsigned startCommand = 839, targetCommand = 842;
constexpr std::uint16_t bufferFull = 65520;
constexpr std::uint16_t servoOff = 65534;

/// A connection to a controller that accepts every point, unless `refusal` is set, and counts the datagrams.
struct Cell {
    Cell() {
        robot.machine.AnswerAll([this](unsigned command) { return Answer(command); });
    }

    std::optional<std::uint16_t> Answer(unsigned command) {
        ++exchanges;
        if (command == targetCommand) {
            ++targets;
            targets.notify_all();
        }
        bool const isLost = isGone && command != startCommand;
        return isLost ? std::nullopt : std::optional(command == targetCommand ? refusal.load() : std::uint16_t{0});
    }

    void Add(int points) {
        Motion point{.controlGroup = ControlGroupId::R1, .speed = 50.0, .moveType = MoveInterpolationType::Joint};
        point.position.toolNumber = -1;
        for (int i = 0; i < points; ++i) {
            EXPECT_EQ(robot.controller->MotionManager->AddPointToTrajectory(point).StatusCode, 0);
        }
    }
    void Start() { EXPECT_EQ(robot.controller->MotionManager->MotionStart().StatusCode, 0); }
    void WaitForTargets(unsigned count) {
        for (unsigned seen = targets; seen < count; seen = targets) {
            targets.wait(seen);
        }
    }
    void Close() { robot.controller.reset(); }

    std::atomic<unsigned> targets = 0;
    std::atomic<unsigned> exchanges = 0;
    std::atomic<std::uint16_t> refusal = 0;
    std::atomic<bool> isGone = false; ///< only the start is answered
    Robot robot;
};

TEST(Teardown, SendsNothingUnlessTheMonitorRuns) {
    Cell idle;
    idle.Close();
    EXPECT_EQ(idle.exchanges, 0U);
    Cell queued;
    queued.Add(1000);
    queued.Close();
    EXPECT_EQ(queued.exchanges, 0U);
    Cell stopped;
    stopped.Start();
    EXPECT_EQ(stopped.robot.controller->MotionManager->MotionStop(false).StatusCode, 0);
    stopped.Close();
    EXPECT_EQ(stopped.exchanges, 2U);
}

TEST(Teardown, QueueIsSentToItsEndOrItsFirstFailure) {
    struct {
        bool isGone;
        std::uint16_t refusal;
        unsigned exchanges;
    } const cases[] = {{false, 0, 1000 + 3}, // the start and two settings
                       {true, 0, 1 + 3}, // the start, and three time-outs: a setting, an alarm, a clear
                       {false, servoOff, 1 + 5}};
    for (auto const& [isGone, refusal, exchanges] : cases) {
        Cell cell;
        cell.isGone = isGone;
        cell.refusal = refusal;
        cell.Add(1000);
        cell.Start();
        cell.Close();
        EXPECT_EQ(cell.exchanges, exchanges);
    }
}

/// On purpose, the library waits without limit for room in a full buffer.
TEST(Teardown, FullBufferIsWaitedFor) {
    Cell cell;
    cell.refusal = bufferFull;
    cell.Add(10);
    cell.Start();
    cell.WaitForTargets(3);
    std::atomic<bool> isClosed = false;
    std::thread closing([&] {
        cell.Close();
        isClosed = true;
    });
    cell.WaitForTargets(cell.targets + 20);
    EXPECT_FALSE(isClosed);
    cell.refusal = 0;
    closing.join();
    EXPECT_GE(cell.targets, 30U) << "nothing of the queue is lost";
}

} // namespace
} // namespace harvlink::test
