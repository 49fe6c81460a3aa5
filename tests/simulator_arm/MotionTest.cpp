#include <cmath>
#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "simulator/arm/Frame.h"
#include "simulator_arm/Cell.h"

namespace harvlink::test {
namespace {

using enum MoveInterpolationType;
using simulator::ControlGroup;
using simulator::ControllerModel;
using simulator::HoldSource;
using simulator::Mode;

// Home of the arm and corners of a square before it: 0.001 mm and 0.0001 degree.
constexpr WireAxes Home{790000, 0, 1050000, 1800000, 0, 0, 0, 0};
constexpr WireAxes Corner{700000, 150000, 800000, 1800000, 0, 300000, 0, 0};
constexpr WireAxes Opposite{600000, -150000, 800000, 1800000, 100000, 0, 0, 0};

/// The difference of two poses, in micrometres and ten thousandths of a degree; -180 equals 180 degrees.
double Deviation(WireAxes const& a, WireAxes const& b) {
    double largest = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        double const difference = std::abs(static_cast<double>(a[i]) - b[i]);
        largest = std::max(largest, i < 3 ? difference : std::min(difference, std::abs(difference - 3600000.0)));
    }
    return largest;
}

void SetSpeed(Cell& cell, std::int32_t joint, std::int32_t linear) {
    ASSERT_EQ(cell.Send(CommandNumber::MotionSetSpeed, SetSpeedMsg{{}, {joint, linear, 0}}), 0);
}

TEST(Motion, EndsExactlyWhateverTheInterpolationAndFrames) {
    Cell cell;
    cell.controller.With([](ControllerModel& model) {
        model.frames.tools[2].pose = {10, -20, 150, 5, -40, 30};
        model.frames.users[3] = {{400, 100, 300, 10, 20, 30}, "TABLE", true};
    });
    WireAxes const inUser{200000, -100000, 250000, 1700000, 150000, 100000, 0, 0};
    for (auto const type : {Joint, Line, Circle}) {
        ASSERT_EQ(cell.Start(), 0);
        SetSpeed(cell, 5000, 5000);
        ASSERT_EQ(cell.Send(CommandNumber::MotionSetTool, SetToolMsg{{}, 0}), 0);
        ASSERT_EQ(cell.SetCoordinates(UAPICoordType::UAPIBase), 0);
        ASSERT_EQ(cell.SendTarget(Joint, Home), 0);
        ASSERT_EQ(cell.SendTarget(type, Corner, Opposite), 0);
        cell.Advance(30.0);
        EXPECT_LE(Deviation(cell.Position().axes, Corner), 1.0);

        ASSERT_EQ(cell.Send(CommandNumber::MotionSetTool, SetToolMsg{{}, 2}), 0);
        ASSERT_EQ(cell.SetCoordinates(UAPICoordType::UAPIUser, 3), 0);
        ASSERT_EQ(cell.SendTarget(type, inUser, {250000, -50000, 300000, 1700000, 150000, 100000, 0, 0}), 0);
        cell.Advance(30.0);
        EXPECT_LE(Deviation(cell.Position(4, 2).axes, inUser), 1.0);
        EXPECT_EQ(cell.Position(4, 2).userCoordinateNumber, 2);
    }
}

TEST(Motion, LineAndArcStayOnTheirPathAtTheirSpeed) {
    Cell cell;
    ASSERT_EQ(cell.SetCoordinates(UAPICoordType::UAPIBase), 0);
    SetSpeed(cell, 0, 1000); // 100 mm/s
    WireAxes const end{790000, 300000, 1050000, 1800000, 0, 0, 0, 0};
    WireAxes const top{790000, 150000, 1200000, 1800000, 0, 0, 0, 0};
    ASSERT_EQ(cell.SendTarget(Line, end), 0);
    ASSERT_EQ(cell.SendTarget(Circle, Home, top), 0);
    ASSERT_EQ(cell.Start(), 0);
    auto last = cell.Position().axes;
    double highest = 0.0;
    for (int tick = 0; tick < 5000; ++tick) {
        cell.Advance(0.01);
        auto const at = cell.Position().axes;
        double const radius = std::hypot(at[1] - 150000.0, at[2] - 1050000.0);
        if (cell.Progress() < 1.0) {
            EXPECT_NEAR(at[2], 1050000, 2) << tick;
        } else {
            EXPECT_NEAR(radius, 150000.0, 3) << tick;
        }
        EXPECT_NEAR(at[0], 790000, 2);
        double const step = std::hypot(at[1] - last[1], at[2] - last[2]);
        EXPECT_LE(step, 1000.0 + 3) << tick; // micrometres in 0.01 s
        highest = std::max<double>(highest, at[2]);
        last = at;
    }
    EXPECT_EQ(cell.Progress(), 2.0);
    EXPECT_NEAR(highest, 1200000, 5);
    EXPECT_LE(Deviation(last, Home), 1.0);
}

TEST(Motion, ProgressErrorAndTorqueFollowTheMove) {
    Cell cell;
    auto const error = [&] {
        EXPECT_EQ(cell.Read(CommandNumber::PositionErrorRead, 1), 0);
        return cell.Answer<WireAxes>();
    };
    auto const torque = [&] {
        EXPECT_EQ(cell.Read(CommandNumber::TorqueRead, 1), 0);
        return cell.Answer<WireAxes>();
    };
    EXPECT_EQ(error(), WireAxes{});
    WireAxes const atRest = torque();
    EXPECT_LT(atRest[1], 0); // the forearm pulls forward
    cell.Advance(100.0); // the motion must not make up for time before the start
    SetSpeed(cell, 10000, 0);
    ASSERT_EQ(cell.Send(CommandNumber::MotionSetAccelRatio, SetAccelRatioMsg{{}, 2000}), 0);
    ASSERT_EQ(cell.SendTarget(Joint, {182000, 0, 0, 0, -122850, 0, 0, 0}), 0); // S to 100 degrees
    ASSERT_EQ(cell.Start(), 0);
    EXPECT_EQ(cell.Progress(), 0.0);
    cell.Advance(0.2);
    double const early = cell.Progress();
    EXPECT_GT(early, 0.0);
    EXPECT_LT(early, 0.1); // at 20 % acceleration
    EXPECT_GT(error()[0], 0);
    EXPECT_GT(torque()[0], atRest[0]);
    EXPECT_EQ(error()[1], 0);
    cell.Advance(5.0);
    EXPECT_EQ(cell.Progress(), 1.0);
    EXPECT_EQ(error(), WireAxes{});
    EXPECT_EQ(cell.Read(CommandNumber::RobotPositionRead, 1), 0);
    EXPECT_EQ(cell.Answer<RobotPositionMsg>().axes[0], 182000);
    cell.controller.With([](ControllerModel& model) { model.SetServo(false); });
    EXPECT_EQ(torque(), WireAxes{});
}

TEST(Motion, BufferHolds24StepsAndTakesMoreAsTheyArePlayed) {
    Cell cell;
    for (int i = 0; i < 24; ++i) {
        ASSERT_EQ(cell.SendTarget(Joint, {1820 * (i % 2), 0, 0, 0, -122850, 0, 0, 0}), 0) << i;
    }
    EXPECT_EQ(cell.SendTarget(Joint, {}), 65520);
    ASSERT_EQ(cell.Start(), 0);
    EXPECT_EQ(cell.SendTarget(Joint, {}), 65520);
    cell.Advance(1.0);
    EXPECT_GT(cell.Progress(), 1.0);
    EXPECT_EQ(cell.SendTarget(Joint, {}), 0);
    cell.Advance(60.0);
    EXPECT_EQ(cell.Progress(), 25.0);
    cell.Clear();
    EXPECT_EQ(cell.Progress(), 0.0);
}

TEST(Motion, HaltsOnItsPathAndGoesOn) {
    using Change = void (*)(ControllerModel&);
    struct Case {
        std::string name;
        Change halt, release;
        bool needsStart;
        std::uint16_t meanwhile; ///< the code of the reply to a start
    };
    Change const powerOn = [](ControllerModel& model) {
        model.SetMode(Mode::Remote);
        model.ResetAlarms();
        model.SetServo(true);
    };
    Case const cases[] = {
        {"stop", nullptr, powerOn, true, 0},
        {"hold", [](ControllerModel& model) { model.SetHold(HoldSource::Pendant, true); },
         [](ControllerModel& model) { model.SetHold(HoldSource::Pendant, false); }, false, 65533},
        {"servo", [](ControllerModel& model) { model.SetServo(false); }, powerOn, true, 65534},
        {"alarm", [](ControllerModel& model) { model.RaiseAlarm(4100, 1, "X"); }, powerOn, true, 65532},
        {"play", [](ControllerModel& model) { model.SetMode(Mode::Play); }, powerOn, true, 65535},
        {"teach", [](ControllerModel& model) { model.SetMode(Mode::Teach); }, powerOn, true, 65529},
    };
    Cell cell;
    ASSERT_EQ(cell.SetCoordinates(UAPICoordType::UAPIBase), 0);
    std::int32_t side = 300000;
    for (auto const& [name, halt, release, needsStart, meanwhile] : cases) {
        SCOPED_TRACE(name);
        ASSERT_EQ(cell.Start(), 0);
        WireAxes const end{790000, side, 1050000, 1800000, 0, 0, 0, 0};
        ASSERT_EQ(cell.SendTarget(Line, end), 0);
        cell.Advance(1.0);
        if (halt == nullptr) {
            cell.Stop();
        } else {
            cell.controller.With(halt);
        }
        cell.Advance(0.2);
        auto const halted = cell.Position().axes;
        EXPECT_NEAR(halted[2], 1050000, 2);
        cell.Advance(10.0);
        EXPECT_EQ(cell.Position().axes, halted);
        EXPECT_TRUE(meanwhile == 0 || cell.Start() == meanwhile);
        EXPECT_EQ(cell.SendTarget(Line, end), needsStart ? meanwhile : 0);
        cell.controller.With(release);
        cell.Advance(1.0);
        EXPECT_EQ(cell.Position().axes == halted, needsStart);
        EXPECT_EQ(cell.SendTarget(Line, end), needsStart && meanwhile != 0 ? 65519 : 0);
        EXPECT_EQ(cell.Start(), 0);
        cell.Advance(20.0);
        EXPECT_LE(Deviation(cell.Position().axes, end), 1.0);
        side = -side;
    }
}

TEST(Motion, ClearWhileMovingEndsOnThePathAndTheNextTargetStartsThere) {
    Cell cell;
    ASSERT_EQ(cell.SetCoordinates(UAPICoordType::UAPIBase), 0);
    ASSERT_EQ(cell.Start(), 0);
    WireAxes const away{790000, 400000, 1050000, 1800000, 0, 0, 0, 0};
    ASSERT_EQ(cell.SendTarget(Line, away), 0);
    ASSERT_EQ(cell.SendTarget(Line, Corner), 0);
    cell.Advance(1.0);
    ASSERT_EQ(cell.Clear(), 0);
    ASSERT_EQ(cell.SendTarget(Line, Home), 0); // planned from the position where the arm will stop
    auto last = cell.Position().axes;
    for (int tick = 0; tick < 1000; ++tick) {
        cell.Advance(0.005);
        auto const at = cell.Position().axes;
        EXPECT_LE(Deviation(at, last), 600.0) << tick; // no jump: 100 mm/s
        last = at;
    }
    EXPECT_LE(Deviation(last, Home), 1.0);
    EXPECT_EQ(cell.Progress(), 1.0);
    ASSERT_EQ(cell.SendTarget(Line, away), 0);
    cell.controller.With([](ControllerModel& model) { model.RaiseAlarm(8015, 1, "refused"); });
    ASSERT_EQ(cell.Clear(), 0);
    cell.controller.With([](ControllerModel& model) {
        model.ResetAlarms();
        model.SetServo(true);
    });
    EXPECT_EQ(cell.SendTarget(Line, Corner), 0) << "a cleared trajectory is no longer interrupted";
    cell.Advance(20.0);
    EXPECT_LE(Deviation(cell.Position().axes, Corner), 1.0);
}

TEST(Motion, FourGroupsStartTogetherAndTheBaseCarriesTheArm) {
    Cell cell({{ControlGroupId::R1, 6}, {ControlGroupId::B1, 1}, {ControlGroupId::S1, 2}, {ControlGroupId::R2, 6}});
    ASSERT_EQ(cell.SetCoordinates(UAPICoordType::UAPIBase, 0, 0), 0);
    ASSERT_EQ(cell.SetCoordinates(UAPICoordType::UAPIBase, 0, 1), 0);
    MotionTargetSend step;
    step.groupBits = 0xF;
    step.targets[0] = {};
    step.targets[0].moveType = Line;
    step.targets[0].axes = {2290000, 100000, 1050000, 1800000, 0, 0, 0, 0};
    step.targets[1].moveType = Line;
    step.targets[1].axes = {1500000};
    step.targets[2].moveType = Joint;
    step.targets[2].axes = {8000, -8000};
    step.targets[3].moveType = Joint;
    step.targets[3].axes = {182000, 0, 0, 0, -122850};
    ASSERT_EQ(cell.Send(CommandNumber::MotionSendTarget, step), 0);
    ASSERT_EQ(cell.Start(), 0);
    cell.Advance(0.3);
    for (std::int32_t slot = 0; slot < 4; ++slot) {
        EXPECT_GT(cell.Progress(slot), 0.0) << slot;
        EXPECT_LT(cell.Progress(slot), 1.0) << slot;
    }
    cell.Advance(60.0);
    EXPECT_LE(Deviation(cell.Position().axes, step.targets[0].axes), 1.0);
    EXPECT_EQ(cell.Position(1).axes[0], 790000); // in robot coordinates
    EXPECT_EQ(cell.Position(0, 0, ControlGroupId::B1).axes[0], 1500000);
    EXPECT_EQ(cell.Position(0, 0, ControlGroupId::S1).axes, step.targets[2].axes);
    for (std::int32_t slot = 0; slot < 4; ++slot) {
        EXPECT_EQ(cell.Progress(slot), 1.0) << slot;
    }
}

TEST(Motion, ToolCoordinatesCountFromTheToolAndFigureChoosesThePosture) {
    Cell cell;
    ASSERT_EQ(cell.Start(), 0);
    ASSERT_EQ(cell.SetCoordinates(UAPICoordType::UAPITool), 0);
    EXPECT_EQ(cell.SendTarget(Line, {0, 0, 50000}), 65445);
    ASSERT_EQ(cell.Send(CommandNumber::MotionSetTool, SetToolMsg{{}, 1}), 0);
    EXPECT_EQ(cell.SendTarget(Line, {0, 0, 50000}), 0);
    cell.Advance(10.0);
    EXPECT_NEAR(cell.Position().axes[2], 1000000, 1); // the tool looks down
    ASSERT_EQ(cell.SetCoordinates(UAPICoordType::UAPIBase), 0);
    ASSERT_EQ(cell.Send(CommandNumber::MotionSetConfig, RobotConfigMsg{{}, 4}), 0);
    ASSERT_EQ(cell.SendTarget(Joint, Home), 0);
    cell.Advance(60.0);
    EXPECT_LE(Deviation(cell.Position().axes, Home), 1.0);
    EXPECT_EQ(cell.Position().figure, 4U);
}

TEST(Motion, Refusals) {
    Cell cell;
    cell.controller.With([](ControllerModel& model) { model.frames.users[1].isDefined = true; });
    using Command = CommandNumber;
    auto const slot = [](int number) { return static_cast<TargetControlGroup>(number); };
    struct Case {
        std::string name;
        std::uint16_t code, expected;
    };
    MotionTargetSend second;
    second.groupBits = 2;
    MotionTargetSend fifth;
    fifth.groupBits = 17;
    auto const minimum = std::numeric_limits<std::int32_t>::min();
    Case const cases[] = {
        {"tool -1", cell.Send(Command::MotionSetTool, SetToolMsg{{}, -1}), 65491},
        {"tool 64", cell.Send(Command::MotionSetTool, SetToolMsg{{}, 64}), 65491},
        {"tool 63", cell.Send(Command::MotionSetTool, SetToolMsg{{}, 63}), 0},
        {"acceleration 19.99", cell.Send(Command::MotionSetAccelRatio, SetAccelRatioMsg{{}, 1999}), 65489},
        {"acceleration 100.01", cell.Send(Command::MotionSetAccelRatio, SetAccelRatioMsg{{}, 10001}), 65489},
        {"deceleration NaN", cell.Send(Command::MotionSetDecelRatio, SetDecelRatioMsg{{}, minimum}), 65488},
        {"deceleration 20", cell.Send(Command::MotionSetDecelRatio, SetDecelRatioMsg{{}, 2000}), 0},
        {"speed NaN", cell.Send(Command::MotionSetSpeed, SetSpeedMsg{{}, {minimum, 0, 0}}), 45060},
        {"joint speed 100.01", cell.Send(Command::MotionSetSpeed, SetSpeedMsg{{}, {10001, 0, 0}}), 45060},
        {"speed 1500.1", cell.Send(Command::MotionSetSpeed, SetSpeedMsg{{}, {0, 15001, 0}}), 45060},
        {"empty slot", cell.Send(Command::MotionSetTool, SetToolMsg{slot(1), 0}), 65504},
        {"slot -2", cell.Send(Command::MotionSetSpeed, SetSpeedMsg{slot(-2), {}}), 65504},
        {"figure of slot 4", cell.Send(Command::MotionSetConfig, RobotConfigMsg{slot(4), 0}), 65504},
        {"progress of slot 3", cell.Send(Command::MotionTargetProgress, 3, 0, ServiceReadAll), 65504},
        {"clear slot 2", cell.Clear(2), 65504},
        {"clear slot 14", cell.Clear(14), 65504},
        {"clear slot 0", cell.Clear(0), 0},
        {"target of slot 1", cell.Send(Command::MotionSendTarget, second), 65504},
        {"target of slot 4", cell.Send(Command::MotionSendTarget, fifth), 65504},
        {"no group at all", cell.Send(Command::MotionSendTarget, MotionTargetSend{}), 0},
        {"master tool", cell.SetCoordinates(UAPICoordType::UAPIMasterTool), 45067},
        {"no coordinates", cell.SetCoordinates(UAPICoordType::UAPIInvalid), 45067},
        {"user 0", cell.SetCoordinates(UAPICoordType::UAPIUser, 0), 65446},
        {"user not taught", cell.SetCoordinates(UAPICoordType::UAPIUser, 2), 65446},
        {"user 64", cell.SetCoordinates(UAPICoordType::UAPIUser, 64), 65501},
        {"user 1", cell.SetCoordinates(UAPICoordType::UAPIUser, 1), 0},
        {"base", cell.SetCoordinates(UAPICoordType::UAPIBase), 0},
        {"no move", cell.SendTarget(NoMove, Home), 65502},
        {"unknown move", cell.SendTarget(static_cast<MoveInterpolationType>(4), Home), 65502},
        {"arc without an end", cell.SendTarget(Circle, Home, Corner), 65502},
        {"out of reach", cell.SendTarget(Joint, {1600000, 0, 500000, 1800000}), 0x5120},
        {"line out of reach", cell.SendTarget(Line, {1600000, 0, 500000, 1800000}), 0x5120},
        {"before the shoulder", cell.SendTarget(Joint, {790000, 0, 350000, 1800000}), 0},
        {"line through the shoulder", cell.SendTarget(Line, {-500000, 0, 350000, 1800000}), 0x5120},
        {"behind the shoulder", cell.SendTarget(Joint, {-500000, 0, 350000, 1800000}), 0},
        {"pulse", cell.SetCoordinates(UAPICoordType::UAPIPulse), 0},
        {"beyond the limits", cell.SendTarget(Joint, {1820 * 191}), 0x5120},
        {"on the limit", cell.SendTarget(Joint, {1820 * 190}), 0},
    };
    for (auto const& [name, code, expected] : cases) {
        EXPECT_EQ(code, expected) << name;
    }
}

TEST(Motion, OnlyArmsAndBasesGoStraight) {
    Cell cell({{ControlGroupId::S1, 2}, {ControlGroupId::R1, 4}, {ControlGroupId::B1, 1}, {ControlGroupId::B1, 1}});
    MotionTargetSend step;
    for (std::uint32_t slot = 0; slot < 3; ++slot) {
        step.groupBits = 1U << slot;
        step.targets[slot].moveType = Line;
        EXPECT_EQ(cell.Send(CommandNumber::MotionSendTarget, step), slot == 2 ? 0 : 65502) << slot;
        step.targets[slot].moveType = Circle;
        EXPECT_EQ(cell.Send(CommandNumber::MotionSendTarget, step), 65502) << slot;
        EXPECT_EQ(cell.SetCoordinates(UAPICoordType::UAPIRobot, 0, static_cast<int>(slot)), 0);
        step.targets[slot].moveType = Joint;
        EXPECT_EQ(cell.Send(CommandNumber::MotionSendTarget, step), slot == 2 ? 0 : 45067) << slot;
    }
    step.groupBits = 0xC;
    EXPECT_EQ(cell.Send(CommandNumber::MotionSendTarget, step), 65527);
}

} // namespace
} // namespace harvlink::test
