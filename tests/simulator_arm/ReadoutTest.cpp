#include <cmath>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "kinematics/KinematicsMessages.h"
#include "simulator_arm/Cell.h"

namespace harvlink::test {
namespace {

using simulator::ControllerModel;
using Command = CommandNumber;

constexpr WireAxes HomePulses{0, 0, 0, 0, -122850, 0, 0, 0};
constexpr WireAxes HomeAngles{0, 0, 0, 0, -900000, 0, 0, 0};
constexpr WireAxes HomePose{790000, 0, 1050000, 1800000, 0, 0, 0, 0};

TEST(Readouts, OlderCommands) {
    Cell cell({{ControlGroupId::R1, 6}, {ControlGroupId::R2, 7}, {ControlGroupId::B1, 1}, {ControlGroupId::S12, 2}});
    struct Case {
        std::uint16_t instance;
        std::string letters;
        WireAxes pulses;
        std::uint32_t baseType; ///< the type of the reply to a read of base coordinates
        WireAxes base;
    };
    Case const cases[] = {
        {1, "SLURBT", HomePulses, 16, HomePose},
        {2, "SLURBTE", HomePulses, 16, HomePose},
        {11, "X", {}, 16, {}},
        {32, "12", {}, 0, {}},
    };
    for (auto const& [instance, letters, pulses, baseType, base] : cases) {
        SCOPED_TRACE(letters);
        ASSERT_EQ(cell.Read(Command::AxisConfigurationRead, instance), 0);
        auto const names = cell.Answer<AxisConfigurationDataMsg>().axisNames;
        for (std::size_t i = 0; i < names.size(); ++i) {
            EXPECT_EQ(names[i], i < letters.size() ? static_cast<std::uint32_t>(letters[i]) : 0U);
        }
        ASSERT_EQ(cell.Read(Command::RobotPositionRead, instance), 0);
        auto const inPulses = cell.Answer<RobotPositionMsg>();
        EXPECT_EQ(inPulses.coordinateType, 0U);
        EXPECT_EQ(inPulses.axes, pulses);
        ASSERT_EQ(cell.Read(Command::RobotPositionRead, static_cast<std::uint16_t>(instance + 100)), 0);
        auto const inBase = cell.Answer<RobotPositionMsg>();
        EXPECT_EQ(inBase.coordinateType, baseType);
        EXPECT_EQ(inBase.axes, base);
        EXPECT_EQ(cell.Read(Command::PositionErrorRead, instance), 0);
        EXPECT_EQ(cell.Read(Command::TorqueRead, instance), 0);
    }
    for (auto const command : {Command::AxisConfigurationRead, Command::RobotPositionRead, Command::PositionErrorRead,
                               Command::TorqueRead}) {
        for (int const unknown : {0, 3, 9, 12, 21, 45, 100, 103, 65535}) {
            EXPECT_EQ(cell.Read(command, static_cast<std::uint16_t>(unknown)), 40961) << unknown;
        }
    }
    EXPECT_EQ(cell.Read(Command::TorqueRead, 101), 40961) << "only positions have base coordinates";
}

TEST(Readouts, SelectedCoordinates) {
    Cell cell({{ControlGroupId::R1, 6}, {ControlGroupId::B1, 1}, {ControlGroupId::S1, 1}});
    cell.controller.With([](ControllerModel& model) {
        model.frames.tools[1].pose = {0, 0, 50, 0, 0, 0};
        model.frames.users[63] = {{790, 100, 1000, 0, 0, 90}, "", true};
    });
    EXPECT_EQ(cell.Position(0, 1).axes, (WireAxes{790000, 0, 1000000, 1800000}));
    EXPECT_EQ(cell.Position(1).coordinateType, UAPICoordType::UAPIRobot);
    auto const user = cell.Position(64, 1);
    EXPECT_EQ(user.coordinateType, UAPICoordType::UAPIUser);
    EXPECT_EQ(user.userCoordinateNumber, 62);
    EXPECT_EQ(user.toolNumber, 1);
    EXPECT_EQ(user.axes, (WireAxes{-100000, 0, 0, 1800000, 0, -900000}));
    EXPECT_EQ(cell.Position(0, 0, ControlGroupId::S1).coordinateType, UAPICoordType::UAPIPulse);

    auto const read = [&](GroupAddress group, int selector, int tool) {
        return cell.Send(
            Command::UAPIPositionRead,
            UAPIGetPositionSendData{group, static_cast<std::uint16_t>(selector), static_cast<std::uint16_t>(tool), 0},
            0, ServiceReadAll);
    };
    GroupAddress const r1(ControlGroupId::R1);
    EXPECT_EQ(read(r1, 0, 64), 45069);
    EXPECT_EQ(read(r1, 65, 0), 45070);
    EXPECT_EQ(read(r1, 5, 0), 0x3350) << "not taught";
    EXPECT_EQ(read(GroupAddress(ControlGroupId::R2), 0, 0), 40961);
    GroupAddress strange;
    strange.kind = 0xFFFFFFFF;
    strange.index = 0xFFFFFFFF;
    EXPECT_EQ(read(strange, 0, 0), 40961);
}

UAPIPositionData PositionOf(UAPICoordType type, WireAxes const& axes, int tool = 0, int user = 0) {
    UAPIPositionData position;
    position.coordinateType = type;
    position.axes = axes;
    position.toolNumber = static_cast<std::int16_t>(tool);
    position.userCoordinateNumber = static_cast<std::int16_t>(user);
    return position;
}

class Conversions : public ::testing::Test {
protected:
    std::uint16_t Convert(Command command, UAPIPositionData const& position,
                          ControlGroupId group = ControlGroupId::R1) {
        return cell.Send(command, ConversionMsg{GroupAddress(group), position}, 0, ServiceReadAll);
    }
    std::uint16_t FromCartesian(UAPIPositionData const& position, KinematicType type = KinematicType::KinematicFigure,
                                ControlGroupId group = ControlGroupId::R1) {
        return cell.Send(Command::ConvertCartesianToJointAngle,
                         ConvertCartPosToJointAngleMsg{GroupAddress(group), position, {}, type}, 0, ServiceReadAll);
    }

    Cell cell{{{ControlGroupId::R1, 6}, {ControlGroupId::B1, 1}, {ControlGroupId::S1, 2}, {ControlGroupId::R2, 4}}};
};

TEST_F(Conversions, ThereAndBackThroughAllForms) {
    cell.controller.With([](ControllerModel& model) {
        model.frames.tools[1].pose = {15, -10, 120, 0, 30, 0};
        model.frames.users[1] = {{300, 0, 100, 0, 0, 45}, "", true};
    });
    std::mt19937 random(3);
    std::uniform_int_distribution<std::int32_t> offset(-60000, 60000);
    for (int i = 0; i < 200; ++i) {
        WireAxes pulses = HomePulses;
        for (std::size_t axis = 0; axis < 6; ++axis) {
            pulses[axis] += offset(random);
        }
        ASSERT_EQ(Convert(Command::ConvertPulseToJointAngle, PositionOf(UAPICoordType::UAPIPulse, pulses, 1)), 0);
        auto angles = cell.Answer<UAPIPositionData>();
        ASSERT_EQ(angles.coordinateType, UAPICoordType::UAPIJointAngle);
        ASSERT_EQ(Convert(Command::ConvertJointAngleToCartesian, angles), 0);
        auto pose = cell.Answer<UAPIPositionData>();
        ASSERT_EQ(pose.coordinateType, UAPICoordType::UAPIBase);
        ASSERT_EQ(pose.toolNumber, 1);
        ASSERT_EQ(FromCartesian(pose), 0);
        auto const back = cell.Answer<UAPIPositionData>();
        ASSERT_EQ(Convert(Command::ConvertJointAngleToPulse, back), 0);
        auto const pulsesBack = cell.Answer<UAPIPositionData>().axes;
        for (std::size_t axis = 0; axis < 6; ++axis) {
            // The error from rounding to 0.001 mm and 0.0001 degree; it is larger when the wrist is nearly straight.
            double const b = angles.axes[4] / 10000.0 * 0.0174533;
            ASSERT_NEAR(pulsesBack[axis], pulses[axis], 1.0 + 1.0 / (0.01 + std::abs(std::sin(b)))) << i << ' ' << axis;
        }
    }
    ASSERT_EQ(FromCartesian(PositionOf(UAPICoordType::UAPIUser, {346482, -346482, 950000, 1800000, 0, -450000}, 0, 1)),
              0);
    EXPECT_NEAR(cell.Answer<UAPIPositionData>().axes[4], HomeAngles[4], 1);
}

TEST_F(Conversions, Refusals) {
    using enum UAPICoordType;
    auto const pose = PositionOf(UAPIBase, HomePose);
    auto const angles = PositionOf(UAPIJointAngle, HomeAngles);
    auto bent = pose;
    bent.figure = 1; // with this figure the wrist cannot be behind the S axis
    struct Case {
        std::string name;
        std::uint16_t code, expected;
    };
    Case const cases[] = {
        {"unknown group", Convert(Command::ConvertPulseToJointAngle, angles, ControlGroupId::R3), 65533},
        {"unknown group from pose", FromCartesian(pose, KinematicType::KinematicFigure, ControlGroupId::S2), 65533},
        {"angles as pulses", Convert(Command::ConvertPulseToJointAngle, angles), 65535},
        {"pose as angles", Convert(Command::ConvertJointAngleToPulse, pose), 65535},
        {"base axes", Convert(Command::ConvertPulseToJointAngle, PositionOf(UAPIPulse, {}), ControlGroupId::B1), 65534},
        {"station", Convert(Command::ConvertPulseToJointAngle, PositionOf(UAPIPulse, {}), ControlGroupId::S1), 0},
        {"pose of a station", Convert(Command::ConvertJointAngleToCartesian, angles, ControlGroupId::S1), 65534},
        {"four axes", Convert(Command::ConvertJointAngleToCartesian, angles, ControlGroupId::R2), 65534},
        {"tool", Convert(Command::ConvertJointAngleToCartesian, PositionOf(UAPIJointAngle, {}, 64)), 65534},
        {"pulses beyond the wire", Convert(Command::ConvertJointAngleToPulse, PositionOf(UAPIJointAngle, {2147483647})),
         0},
        {"delta", FromCartesian(pose, KinematicType::Delta), 65534},
        {"kind of kinematics", FromCartesian(pose, static_cast<KinematicType>(9)), 65535},
        {"by system parameter", FromCartesian(pose, KinematicType::KinematicFromSystem), 0},
        {"pulses", FromCartesian(PositionOf(UAPIPulse, {})), 65530},
        {"tool coordinates", FromCartesian(PositionOf(UAPITool, HomePose)), 65530},
        {"user not taught", FromCartesian(PositionOf(UAPIUser, HomePose, 0, 9)), 65530},
        {"user -1", FromCartesian(PositionOf(UAPIUser, HomePose, 0, -1)), 65530},
        {"tool -1", FromCartesian(PositionOf(UAPIBase, HomePose, -1)), 65530},
        {"out of reach", FromCartesian(PositionOf(UAPIBase, {2000000})), 65531},
        {"figure", FromCartesian(bent), 65531},
    };
    for (auto const& [name, code, expected] : cases) {
        EXPECT_EQ(code, expected) << name;
    }
}

} // namespace
} // namespace harvlink::test
