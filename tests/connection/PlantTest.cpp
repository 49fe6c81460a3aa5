#include <atomic>
#include <thread>

#include <gtest/gtest.h>

#include "harvlink/harvlink.h"
#include "simulator/network/Server.h"
#include "support/LoopbackAddress.h"
#include "support/ScratchFolder.h"

// What a plant asks of strict connections: files that are right or not there, and looking that touches nothing.

namespace harvlink::test {
namespace {

constexpr unsigned clearTargets = 841;

ConnectOptions OptionsFor(std::string const& address, Access access, unsigned timeout) {
    ConnectOptions options;
    options.address = address;
    options.timeout = timeout;
    options.retries = 1;
    options.logging = false;
    options.access = access;
    return options;
}

/// No two blocks are alike, so that a missing, doubled or swapped one shows.
std::string NumberedLines(std::size_t size) {
    std::string text;
    for (unsigned line = 0; text.size() < size; ++line) {
        text += std::to_string(line) + "\r\n";
    }
    return text.substr(0, size - 2) + "\r\n";
}

TEST(Plant, OnlyAConnectionThatLogsLeavesALog) {
    simulator::Server server;
    std::string const address = NextLoopbackAddress();
    auto& controller = server.Add(address);
    ASSERT_TRUE(server.Start()) << server.Error();
    ConnectOptions options = OptionsFor(address, Access::Full, 2000);
    for (bool const isStrict : {true, false}) {
        for (bool const logs : {false, true}) {
            ScratchFolder const folder;
            options.logging = logs;
            StatusInfo status;
            Connection const robot = isStrict ? Connect(options, status) : Connect(address, status, 2000, 1, logs);
            ASSERT_TRUE(robot) << status;
            std::uint64_t step = 0;
            Motion beyondReach;
            beyondReach.position.axes[0] = 3e6;
            beyondReach.controlGroup = ControlGroupId::R1;
            beyondReach.moveType = MoveInterpolationType::Joint;
            beyondReach.position.coordinateType = CoordinateType::Pulse;
            beyondReach.speed = 10;
            EXPECT_EQ(robot->MotionManager->AddPointToTrajectory(step, beyondReach, {}, {}, {}).StatusCode, 0);
            controller.With([](simulator::ControllerModel& model) {
                model.ResetAlarms();
                model.SetServo(true);
            });
            EXPECT_EQ(robot->MotionManager->MotionStart().StatusCode, 0);
            status = robot->MotionManager->WaitUntilSent(step, 10'000);
            EXPECT_TRUE(status.StatusCode != 0 && status.StatusCode != 0x50010) << status;
            EXPECT_EQ(std::filesystem::exists("HarvlinkLog.txt"), logs) << "strict: " << isStrict;
        }
    }
}

TEST(Plant, ADownloadIsIdenticalOrFailsWithACode) {
    using simulator::Fault;
    constexpr int downloads = 100;
    std::string const whole = NumberedLines(260'000);
    simulator::Server server;
    simulator::ControllerOptions options;
    ASSERT_EQ(options.faults.Parse("file-duplicate=1%,file-drop=0.05%,file-misnumber=0.1%"), "");
    std::string const address = NextLoopbackAddress();
    auto& controller = server.Add(address, options);
    controller.WithParts([&](simulator::ControllerParts& parts) {
        ASSERT_EQ(parts.files.Put("PLANT.DAT", whole), simulator::Refusal::None);
    });
    ASSERT_TRUE(server.Start()) << server.Error();
    StatusInfo status;
    Connection robot;
    for (int tries = 0; tries < 20 && !robot; ++tries) { // opening reads files too
        robot = Connect(OptionsFor(address, Access::Observe, 20), status);
    }
    ASSERT_TRUE(robot) << status;
    int identical = 0;
    for (int i = 0; i < downloads; ++i) {
        std::string got;
        status = robot->Files->SaveFromControllerToString("PLANT.DAT", got);
        if (status.StatusCode == 0) {
            ASSERT_TRUE(got == whole) << "download " << i << " is wrong and counts as right";
            ++identical;
        }
    }
    EXPECT_GT(identical, downloads / 10);
    EXPECT_LT(identical, downloads) << "no fault came through";
    for (Fault const fault : {Fault::Duplicate, Fault::Drop, Fault::Misnumber}) {
        EXPECT_GT(controller.WithFaults([&](auto& faults) { return faults.Happened(fault); }), 0U);
    }
    auto const statistics = robot->GetConnectionStatistics();
    EXPECT_GT(statistics.doubledAnswers, 0U);
}

/// The second answer to a read waits unread while a download uses up the numbers between two reads of the same number.
TEST(Plant, ADoubledAnswerIsNotThatOfTheReadAfterADownload) {
    constexpr std::size_t numbers = 128;
    constexpr std::size_t blocks = numbers - 2; // one number goes to the request that opens, and one to the first read
    constexpr std::size_t blockSize = 479;
    simulator::Server server;
    simulator::ControllerOptions options;
    ASSERT_EQ(options.faults.Parse("duplicate=100%,file-duplicate=0"), "");
    std::string const address = NextLoopbackAddress();
    auto& controller = server.Add(address, options);
    controller.WithParts([&](simulator::ControllerParts& parts) {
        parts.model.variables.bytes[1] = 11;
        parts.model.variables.bytes[2] = 22;
        ASSERT_EQ(parts.files.Put("PLANT.DAT", NumberedLines(blocks * blockSize)), simulator::Refusal::None);
    });
    ASSERT_TRUE(server.Start()) << server.Error();
    StatusInfo status;
    Connection const robot = Connect(OptionsFor(address, Access::Observe, 8000), status);
    ASSERT_TRUE(robot) << status;
    for (std::uint16_t const index : {std::uint16_t{1}, std::uint16_t{2}}) {
        ByteVariableData variable;
        EXPECT_EQ(robot->Variables->byteVariable->Read(index, variable).StatusCode, 0);
        EXPECT_EQ(variable.value, 11 * index);
        std::string file;
        EXPECT_EQ(robot->Files->SaveFromControllerToString("PLANT.DAT", file).StatusCode, 0);
        EXPECT_EQ(file.size(), blocks * blockSize);
    }
}

TEST(Plant, ObserversLeaveAPathComplete) {
    constexpr std::uint64_t points = 200;
    ScratchFolder const folder;
    simulator::Server server;
    simulator::ControllerOptions options;
    options.timeScale = 200.0;
    std::string const address = NextLoopbackAddress();
    auto& controller = server.Add(address, options);
    std::atomic<unsigned> clears = 0;
    server.SetObserver([&](auto const&, simulator::Request const& request, auto const&) {
        clears += static_cast<unsigned>(request.Command()) == clearTargets ? 1 : 0;
    });
    ASSERT_TRUE(server.Start()) << server.Error();
    controller.With([](simulator::ControllerModel& model) { model.SetServo(true); });
    StatusInfo status;
    Connection const mover = Connect(OptionsFor(address, Access::Full, 8000), status);
    ASSERT_TRUE(mover) << status;
    EXPECT_EQ(clears, 1U);

    std::atomic<bool> isMoving = true;
    std::atomic<unsigned> looks = 0;
    std::jthread const observer([&] {
        while (isMoving) {
            StatusInfo seen;
            Connection const robot = Connect(OptionsFor(address, Access::Observe, 8000), seen);
            ControllerStateData state;
            EXPECT_TRUE(robot && robot->Status->ReadState(state).StatusCode == 0) << seen;
            EXPECT_EQ(robot->MotionManager->ClearAllTrajectory().StatusCode,
                      static_cast<int>(ErrorStatusCodes::AccessDenied));
            ++looks;
        }
    });
    EXPECT_EQ(mover->MotionManager->MotionStart().StatusCode, 0);
    std::uint64_t step = 0;
    for (std::uint64_t i = 1; i <= points; ++i) {
        Motion point;
        point.controlGroup = ControlGroupId::R1;
        point.speed = 100.0;
        point.moveType = MoveInterpolationType::Joint;
        point.position.coordinateType = CoordinateType::Pulse;
        point.position.axes[0] = i % 2 == 0 ? 0.0 : 2000.0;
        ASSERT_EQ(mover->MotionManager->AddPointToTrajectory(step, point, {}, {}, {}).StatusCode, 0);
    }
    status = mover->MotionManager->WaitForTarget(step, 30'000, 1.0);
    isMoving = false;
    EXPECT_EQ(status.StatusCode, 0) << status;
    EXPECT_EQ(step, points);
    EXPECT_GT(looks, 0U);
    EXPECT_EQ(clears, 1U) << "only the program that moves may clear";
    double const reached = controller.WithParts(
        [](simulator::ControllerParts& parts) { return parts.motion.Progress(TargetControlGroup::GroupOne); });
    EXPECT_EQ(reached, static_cast<double>(points));
}

} // namespace
} // namespace harvlink::test
