#include <bit>
#include <cmath>

#include "motion/MotionSession.h"

namespace harvlink::test {
namespace {

using enum TargetControlGroup;

Bytes const startRequest = MotionRequest(839, {0});
Bytes const stopRequest = MotionRequest(840, {0});

Bytes ProgressRequest(int slot) {
    return RobotRequest(844, 0, 0, 1, U32(slot));
}

std::string AddMessage(MotionManager& manager, std::vector<Motion> motions, int code) {
    auto const other = [&](std::size_t i) { return i < motions.size() ? std::optional(motions[i]) : std::nullopt; };
    StatusInfo const status = manager.AddPointToTrajectory(motions.at(0), other(1), other(2), other(3));
    EXPECT_EQ(status.StatusCode, code);
    return status.Message;
}

TEST(MotionManager, AsksForItsSlotsUntilOneIsMissing) {
    struct {
        std::vector<Reply> replies;
        std::vector<std::pair<int, int>> slotOfGroup;
    } const cases[] = {
        {{Payload(U32(1)), Payload(U32(8)), Payload(U32(9)), Payload(U32(16))}, {{1, 0}, {8, 1}, {11, 2}, {18, 3}}},
        {{Payload(U32(17)), Payload(U32(40)), Payload(U32(0))}, {{21, 0}, {44, 1}, {0, -2}}},
        {{Payload(U32(2)), Payload(U32(-1))}, {{2, 0}, {-1, -2}}},
        {{Payload(U32(INT32_MAX))}, {{INT32_MAX, -2}}}, // wraps to a negative group
        {{{.payload = U32(3), .status = 8}}, {{3, -2}}},
        {{Payload({})}, {{0, -2}}},
    };
    for (auto const& example : cases) {
        SCOPED_TRACE(testing::Message() << "case " << &example - cases);
        ScriptedController controller;
        auto const network = controller.Connect();
        for (std::size_t i = 0; i < example.replies.size(); ++i) {
            controller.Expect(SlotRead(33 + static_cast<int>(i)), example.replies[i]);
        }
        controller.Expect(ClearRequest());
        MotionManager manager(network.get());
        for (auto const& [group, slot] : example.slotOfGroup) {
            StatusInfo status;
            if (slot >= 0) {
                controller.Expect(ProgressRequest(slot), Payload(Bytes(8)));
            }
            manager.GetMotionTargetProgress(static_cast<ControlGroupId>(group), status);
            EXPECT_EQ(status.StatusCode, slot >= 0 ? 0 : 65504) << group;
        }
        controller.Expect(SlotRead(99), Refusal(40961));
        ControlGroupId id = ControlGroupId::R5;
        EXPECT_EQ(manager.GetCtrlGroupIds(99, id).StatusCode, 40961);
        EXPECT_EQ(id, ControlGroupId{});
    }
}

TEST(MotionManager, UnknownGenerationCountsAsNew) {
    MotionSession unknown({1}, "ZZ9.99");
    unknown.controller.Expect(stopRequest);
    EXPECT_EQ(unknown.manager->MotionStop(false).StatusCode, 0);
}

TEST(MotionManager, RefusedStepLeavesTheQueueAlone) {
    MotionSession session({1, 2, 17});
    MotionManager& manager = *session.manager;
    Motion const good = Point(1);
    Motion const unknown = Point(1, ControlGroupId::R3);
    Motion tooFast = Point(1, ControlGroupId::R2);
    tooFast.speed = 101;
    std::string const text = "Invalid control group id for the ";
    EXPECT_EQ(AddMessage(manager, {unknown, tooFast}, 3370), text + "first target submitted.");
    EXPECT_EQ(AddMessage(manager, {good, unknown, tooFast}, 3370), text + "second target submitted.");
    EXPECT_EQ(AddMessage(manager, {good, good, unknown}, 3370), text + "third target submitted.");
    EXPECT_EQ(AddMessage(manager, {good, good, good, unknown}, 3370), text + "fourth target submitted.");
    EXPECT_EQ(AddMessage(manager, {good, tooFast, unknown}, 0x30001),
              "Speed value is out of range for a joint move. Valid range is 0.01 - 100.00%.");
    Motion noMove = unknown;
    noMove.moveType = MoveInterpolationType::NoMove;
    EXPECT_EQ(AddMessage(manager, {noMove}, 3370), text + "first target submitted."); // its group counts too
    noMove.controlGroup = ControlGroupId::R1;
    EXPECT_EQ(AddMessage(manager, {noMove, tooFast}, 0x30001).substr(0, 5), "Speed");
    EXPECT_EQ(AddMessage(manager, {noMove}, 0), "Point added to trajectory."); // a step without groups

    session.controller.Expect(startRequest);
    session.controller.Expect(TargetRequest({}));
    EXPECT_EQ(manager.MotionStart().StatusCode, 0);
    session.Sent(2);
}

TEST(MotionManager, OperationsAndTheirCodes) {
    MotionSession session({1, 17});
    MotionManager& manager = *session.manager;
    StatusInfo status;
    for (auto const& [added, code] : {std::pair{65445, -49934555}, {65520, -49934480}, {65505, 65505}}) {
        session.controller.Expect(ClearRequest(2), Refusal(static_cast<std::uint16_t>(added))); // 65520 is not repeated
        EXPECT_FALSE(manager.ClearTrajectory(GroupThree, status));
        EXPECT_EQ(status.StatusCode, code);
    }
    session.controller.Expect(ClearRequest(2));
    EXPECT_TRUE(manager.ClearTrajectory(GroupThree, status));
    session.controller.Expect(startRequest);
    EXPECT_EQ(manager.MotionStart().StatusCode, 0);
    session.controller.Expect(ProgressRequest(1), Payload(Little(std::bit_cast<std::int64_t>(-0.625), 8)));
    EXPECT_EQ(manager.GetMotionTargetProgress(ControlGroupId::S1, status), -0.625);
    EXPECT_EQ(manager.GetMotionTargetProgress(ControlGroupId::R2, status), 0.0);
    EXPECT_EQ(status.StatusCode, 65504);
    EXPECT_EQ(status.Message, "Group does not exist.");
    session.controller.Expect(ProgressRequest(0), Payload(Little(-1, 8))); // returned unchanged
    EXPECT_TRUE(std::isnan(manager.GetMotionTargetProgress(ControlGroupId::R1, status)));
    session.controller.Expect(startRequest); // the monitor is already running
    EXPECT_EQ(manager.MotionStart().StatusCode, 0);
}

TEST(MotionManager, AlarmOnThePendant) {
    MotionSession session;
    std::string const longText = "0123456789abcdefghijklmnopqrstuvwxyzABCD";
    for (std::string const& text : {longText, longText.substr(0, 31), longText.substr(0, 30), std::string()}) {
        session.controller.Expect(AlarmRequest(text, 200));
        EXPECT_EQ(session.manager->SetAlarm(text, 200).StatusCode, 0);
    }
    session.controller.Expect(AlarmRequest("A", 0), Refusal(65535));
    EXPECT_EQ(session.manager->SetAlarm("A", 0).StatusCode, 65535); // not a code of the motion table
    EXPECT_EQ(session.manager->GetShortErrorMessage(65503), "Base Grp Motion is missing.");
    for (int const code : {0, 65535 - 50000000, 65521}) {
        EXPECT_EQ(session.manager->GetShortErrorMessage(code), "Unknown Motion Error. Check HarvlinkLog.");
    }
}

TEST(MotionManager, FourGroupsInOneStepByTheirSlots) {
    MotionSession session({2, 9, 1, 17});
    CircularMotion first{Point(1, ControlGroupId::S1)}; // slot 3
    first.moveType = MoveInterpolationType::Circle;
    first.auxiliaryAxes = {5, 6};
    Motion second = Point(2, ControlGroupId::R1); // slot 2
    second.moveType = MoveInterpolationType::Circle; // without a mid-point of its own
    Motion const third = Point(3, ControlGroupId::R2); // slot 0
    Motion fourth = Point(4, ControlGroupId::B1); // slot 1
    fourth.position.toolNumber = 6;
    EXPECT_EQ(session.manager->AddPointToTrajectory(first, second, third, fourth).StatusCode, 0);

    session.controller.Expect(startRequest);
    for (int slot = 0; slot < 4; ++slot) {
        session.controller.Expect(MotionRequest(845, {slot, 0, 0}));
        session.controller.Expect(MotionRequest(847, {slot, slot < 2 ? 5000 : 0, slot < 2 ? 0 : 500, 0}));
        if (slot == 1) {
            session.controller.Expect(MotionRequest(846, {1, 6}));
        }
    }
    session.controller.Expect(TargetRequest(
        {{0, WireTarget(1, {3})}, {1, WireTarget(1, {4})}, {2, WireTarget(3, {2})}, {3, WireTarget(3, {1}, {5, 6})}}));
    EXPECT_EQ(session.manager->MotionStart().StatusCode, 0);
    session.Sent(11);
}

} // namespace
} // namespace harvlink::test
