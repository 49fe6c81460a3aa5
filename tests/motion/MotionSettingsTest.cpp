#include <cmath>
#include <functional>

#include "motion/MotionSession.h"

namespace harvlink::test {
namespace {

using enum MoveInterpolationType;
using enum CoordinateType;
using enum TargetControlGroup;
using Setter = std::function<void(Motion&)>;

/// A line in which every setting differs from those that a new manager takes as already sent.
Motion FullLine() {
    Motion motion = Point(1);
    motion.moveType = Line;
    motion.speed = 123.456;
    motion.accelerationRatio = 33.339;
    motion.decelerationRatio = 100.0;
    motion.position.coordinateType = BaseCoordinate;
    motion.position.figure.rAngle = AxisAngle::GreaterThan180;
    motion.position.toolNumber = 3;
    motion.position.userCoordinateNumber = 9;
    return motion;
}

std::vector<Bytes> const fullLineSettings{
    MotionRequest(845, {0, 2, 0}), MotionRequest(847, {0, 0, 1234, 0}), MotionRequest(850, {0, 8}),
    MotionRequest(846, {0, 3}),    MotionRequest(848, {0, 3333}),       MotionRequest(849, {0, 10000}),
};
Bytes const fullLineTarget = TargetRequest({{0, WireTarget(2, {1000})}});

MotionStep StepOf(Motion const& motion, TargetControlGroup group = GroupOne) {
    MotionStep step;
    StatusInfo status;
    EXPECT_TRUE(step.SetTarget(motion, group, status)) << status.Message;
    return step;
}

/// What the class offers beside its interface, and does not need itself.
TEST(MotionManager, CommandsAndStepsOneByOne) {
    MotionSession session;
    std::uint32_t const word = 3;
    std::pair<Reply, int> const answers[] = {{Payload(U32(77)), 0}, {Refusal(65534), 65534}};
    for (auto const& [answer, code] : answers) { // not folded
        session.controller.Expect(RobotRequest(844, 0, 0, 1, Words({3})), answer);
        StatusInfo status;
        auto const reply = session.manager->SendMotionCommand<std::uint32_t const, std::uint32_t>(
            word, CommandNumber::MotionTargetProgress, status, ServiceReadAll);
        EXPECT_EQ(status.StatusCode, code);
        EXPECT_EQ(reply.payload, code == 0 ? 77U : 0U);
    }
    for (double const x : {1.0, 2.0}) {
        session.manager->AddPointToTrajectory(Point(x), {}, {}, {});
    }
    for (std::uint64_t const withdrawn : {1U, 2U, 2U}) { // the third finds nothing
        session.manager->TryPopFrontTrajectory();
        TrajectoryState state;
        session.manager->GetTrajectoryState(state);
        EXPECT_EQ(state.withdrawn, withdrawn);
    }
}

TEST(MotionSettings, GoOutInTheirOrderAndOnlyOnce) {
    MotionSession session;
    for (Bytes const& setting : fullLineSettings) {
        session.controller.Expect(setting);
    }
    session.controller.Expect(fullLineTarget);
    EXPECT_EQ(session.manager->SendTarget(StepOf(FullLine())).StatusCode, 0);

    Motion second = FullLine();
    second.position.axes = {0, 0, 0, 0, 0, 0, 0, -2};
    session.controller.Expect(TargetRequest({{0, WireTarget(2, {0, 0, 0, 0, 0, 0, 0, -20000})}}));
    EXPECT_EQ(session.manager->SendTarget(StepOf(second)).StatusCode, 0);
    // Each group gets its own settings.
    session.controller.Expect(MotionRequest(845, {3, 0, 0}));
    session.controller.Expect(MotionRequest(847, {3, 5000, 0, 0}));
    session.controller.Expect(TargetRequest({{3, WireTarget(1, {7})}}));
    EXPECT_EQ(session.manager->SendTarget(StepOf(Point(7), GroupFour)).StatusCode, 0);
    session.controller.Expect(TargetRequest({}));
    EXPECT_EQ(session.manager->SendTarget(MotionStep()).StatusCode, 0);
}

TEST(MotionSettings, EachComparesInItsOwnWay) {
    struct {
        char const* what;
        Setter change;
        std::vector<Bytes> settings;
    } const cases[] = {
        {"first, with what is taken for told left out",
         [](Motion& m) {
             m.accelerationRatio = m.decelerationRatio = RatioNotSpecified;
             m.position.figure = {};
             m.position.toolNumber = -1;
         },
         {fullLineSettings[0], fullLineSettings[1]}},
        {"same", [](Motion&) {}, {}},
        {"user coordinates",
         [](Motion& m) { m.position.coordinateType = UserCoordinate; },
         {MotionRequest(845, {0, 4, 9})}},
        {"user number alone", [](Motion& m) { m.position.userCoordinateNumber = 5; }, {}},
        {"type without a number",
         [](Motion& m) { m.position.coordinateType = Undefined; },
         {MotionRequest(845, {0, 255, 0})}},
        {"master tool", [](Motion& m) { m.position.coordinateType = MasterTool; }, {MotionRequest(845, {0, 7, 0})}},
        {"joint speed", [](Motion& m) { m.moveType = Joint, m.speed = 12.345; }, {MotionRequest(847, {0, 1234, 0, 0})}},
        {"move type alone", [](Motion& m) { m.moveType = Line; }, {}},
        {"NaN speed", [](Motion& m) { m.speed = std::nan(""); }, {MotionRequest(847, {0, 0, INT32_MIN, 0})}},
        {"NaN speed again", [](Motion&) {}, {MotionRequest(847, {0, 0, INT32_MIN, 0})}},
        {"a number", [](Motion& m) { m.speed = 1.0; }, {MotionRequest(847, {0, 0, 10, 0})}},
        {"E and W angle",
         [](Motion& m) { m.position.figure.eAngle = m.position.figure.wAngle = AxisAngle::GreaterThan180; },
         {}},
        {"L angle, which has no bit",
         [](Motion& m) { m.position.figure.lAngle = AxisAngle::GreaterThan180; },
         {MotionRequest(850, {0, 0})}},
        {"B angle, which has none either",
         [](Motion& m) { m.position.figure.bAngle = AxisAngle::GreaterThan180; },
         {MotionRequest(850, {0, 0})}},
        {"back, lower, no flip, T, S",
         [](Motion& m) {
             m.position.figure.frontOrBack = FrontOrBack::Back;
             m.position.figure.upperOrLower = UpperOrLower::Lower;
             m.position.figure.flipOrNoFlip = FlipOrNoFlip::NoFlip;
             m.position.figure.tAngle = m.position.figure.sAngle = AxisAngle::GreaterThan180;
         },
         {MotionRequest(850, {0, 0b110111})}},
        {"figure in pulses",
         [](Motion& m) { m.position.coordinateType = Pulse, m.position.figure.frontOrBack = FrontOrBack::Front; },
         {MotionRequest(845, {0, 0, 0})}},
        {"back to the last figure told",
         [](Motion& m) {
             m.position.coordinateType = ToolCoordinate, m.position.figure.frontOrBack = FrontOrBack::Back;
         },
         {MotionRequest(845, {0, 6, 0})}},
        {"tool", [](Motion& m) { m.position.toolNumber = 0; }, {MotionRequest(846, {0, 0})}},
        {"tool -1", [](Motion& m) { m.position.toolNumber = -1; }, {MotionRequest(846, {0, -1})}},
        {"ratios",
         [](Motion& m) { m.accelerationRatio = 20, m.decelerationRatio = 99.999; },
         {MotionRequest(848, {0, 2000}), MotionRequest(849, {0, 9999})}},
        {"ratios unspecified", [](Motion& m) { m.accelerationRatio = m.decelerationRatio = RatioNotSpecified; }, {}},
        {"ratios as before", [](Motion& m) { m.accelerationRatio = 20, m.decelerationRatio = 99.999; }, {}},
        {"NaN ratio",
         [](Motion& m) { m.accelerationRatio = std::nan(""), m.decelerationRatio = RatioNotSpecified; },
         {MotionRequest(848, {0, INT32_MIN})}},
    };
    MotionSession session;
    Motion motion = FullLine();
    for (auto const& example : cases) {
        SCOPED_TRACE(example.what);
        example.change(motion);
        auto const before = session.Sent().size();
        session.controller.AnswerRest([](Datagram const&) { return Replies{{}}; });
        EXPECT_EQ(session.manager->SendTarget(StepOf(motion)).StatusCode, 0);
        auto const sent = session.Sent();
        ASSERT_EQ(sent.size() - before, example.settings.size() + 1);
        for (std::size_t i = 0; i < example.settings.size(); ++i) {
            EXPECT_TRUE(SameRequest(example.settings[i], sent[before + i].bytes));
        }
        EXPECT_EQ(CommandOf(sent.back()), 842U);
    }
}

TEST(MotionSettings, RefusedSettingKeepsTheTargetBackAndIsSentAgain) {
    MotionSession session;
    MotionStep const step = StepOf(FullLine());
    for (std::size_t refused = 0; refused < fullLineSettings.size(); ++refused) {
        SCOPED_TRACE(refused);
        if (refused > 0) {
            session.controller.Expect(fullLineSettings[refused - 1]);
        }
        session.controller.Expect(fullLineSettings[refused], Refusal(65491));
        StatusInfo const status = session.manager->SendTarget(step);
        EXPECT_EQ(status.StatusCode, 65491 - 50000000);
        EXPECT_EQ(status.Message, "Tool Number Out Of Range");
    }
    session.controller.Expect(fullLineSettings.back());
    session.controller.Expect(fullLineTarget);
    EXPECT_EQ(session.manager->SendTarget(step).StatusCode, 0);

    // Ratios are checked again before they are sent.
    MotionStep wrong = step;
    wrong.profiles[0].accelerationRatio = 19.9;
    EXPECT_EQ(session.manager->SendTarget(wrong).Message,
              "Acceleration ratio out of range. Valid ranges are 20.0%-100.00%.");
    wrong.profiles[0].accelerationRatio = 20.0;
    wrong.profiles[0].decelerationRatio = 100.1;
    session.controller.Expect(MotionRequest(848, {0, 2000}));
    StatusInfo const status = session.manager->SendTarget(wrong);
    EXPECT_EQ(status.StatusCode, 0x30010);
    EXPECT_EQ(status.Message, "Deceleration ratio out of range. Valid ranges are 20.00%-100.00%.");
}

TEST(MotionSettings, FullBufferRepeatsTheTargetAlone) {
    MotionSession session;
    session.controller.Expect(MotionRequest(845, {0, 0, 0}));
    session.controller.Expect(MotionRequest(847, {0, 5000, 0, 0}));
    Bytes const target = TargetRequest({{0, WireTarget(1, {7})}});
    for (int i = 0; i < 9; ++i) {
        session.controller.Expect(target, Refusal(65520));
    }
    session.controller.Expect(target);
    EXPECT_EQ(session.manager->SendTarget(StepOf(Point(7))).StatusCode, 0);
    auto const sent = session.Sent(12);
    EXPECT_GE(sent[11].time - sent[2].time, std::chrono::milliseconds(9));

    session.controller.Expect(target, Refusal(65520));
    session.controller.Expect(target, Refusal(65533));
    EXPECT_EQ(session.manager->SendTarget(StepOf(Point(7))).Message, "Hold Is On");
    // A setting is not repeated, whatever the code of its refusal.
    session.controller.Expect(MotionRequest(845, {0, 3, 0}), Refusal(65520));
    Motion other = Point(7);
    other.position.coordinateType = RobotCoordinate;
    EXPECT_EQ(session.manager->SendTarget(StepOf(other)).StatusCode, 65520 - 50000000);
}

TEST(MotionSettings, DirectSettersNeitherCheckNorRemember) {
    MotionSession session({}, "FS2.00"); // and the generation is not checked
    MotionManager& manager = *session.manager;
    Figure figure;
    figure.upperOrLower = UpperOrLower::Lower;
    figure.bAngle = AxisAngle::GreaterThan180;
    struct {
        Bytes request;
        std::function<StatusInfo()> set;
    } const cases[] = {
        {MotionRequest(845, {2, 4, 63}), [&] { return manager.SetCoord(GroupThree, UserCoordinate, 63); }},
        {MotionRequest(845, {2, 6, 0}), [&] { return manager.SetCoord(GroupThree, ToolCoordinate, 63); }},
        {MotionRequest(845, {-2, 255, 0}), [&] { return manager.SetCoord(GroupNotFound, JointAngle, 1); }},
        {MotionRequest(847, {1, 7, -8, 9}),
         [&] {
             return manager.SetSpeed(GroupTwo, {7, -8, 9});
         }},
        {MotionRequest(850, {0, 2}), [&] { return manager.SetConfig(GroupOne, figure); }},
        {MotionRequest(846, {3, -7}), [&] { return manager.SetTool(GroupFour, -7); }},
        {MotionRequest(848, {0, 1}), [&] { return manager.SetAccelRatio(GroupOne, 1); }},
        {MotionRequest(849, {0, -50}), [&] { return manager.SetDecelRatio(GroupOne, -50); }},
    };
    for (auto const& example : cases) {
        session.controller.Expect(example.request);
        EXPECT_EQ(example.set().StatusCode, 0);
        session.controller.Expect(example.request, Refusal(65489));
        EXPECT_EQ(example.set().StatusCode, -49934511);
    }
    EXPECT_EQ(manager.GetCachedValues(GroupFour)->toolNumber, -1);
    EXPECT_FALSE(manager.GetCachedValues(GroupNotFound));
}

} // namespace
} // namespace harvlink::test
