#include "kinematics/Kinematics.h"

#include <sstream>

#include "support/ScriptedController.h"

namespace harvlink::test {
namespace {

using enum KinematicConversions;
using Axes = std::array<double, 8>;

std::string Printed(PositionData const& position) {
    std::ostringstream stream;
    stream << static_cast<int>(position.coordinateType) << ' ' << position;
    return stream.str();
}

/// The 48 bytes of a position in an extended command.
Bytes Wire(int type, std::vector<std::int64_t> axes, int figure = 0, int tool = 0, int user = 0) {
    axes.resize(8);
    return U32(type) + U16(user) + U16(tool) + Words({figure, 0}) + Words(axes);
}

Bytes Conversion(unsigned command, Bytes const& position, int groupType = 0, int groupIndex = 0) {
    return RobotRequest(command, 0, 0, 1, Words({groupType, groupIndex}) + position);
}

PositionData Position(CoordinateType type, Axes const& axes) {
    PositionData position;
    position.coordinateType = type;
    position.axes = axes;
    return position;
}

PositionData Sample(CoordinateType type = CoordinateType::BaseCoordinate) {
    PositionData position = Position(type, {1.5, -2, 3, 4.00005, 5, 6, 7, 8.9});
    position.figure.upperOrLower = UpperOrLower::Lower;
    position.toolNumber = 3;
    position.userCoordinateNumber = 4;
    return position;
}

class Conversions : public testing::Test {
protected:
    ScriptedController controller;
    std::unique_ptr<NetworkManager> manager = controller.Connect();
    Kinematics kinematics{manager.get()};
    PositionData result = Sample(CoordinateType::MasterTool);
};

TEST_F(Conversions, ChainsAndTheirResults) {
    Bytes const pulses = Wire(0, {1, -2, 3, 4, 5, 6, 7, 8}, 2, 3, 4);
    Bytes const jointAngles = Wire(1, {15000, -20000, 30000, 40001, 50000, 60000, 70000, 89000}, 2, 3, 4);
    Bytes const reply = Wire(1, {10000, 20000}, 1, 5, 6);
    Bytes const last = Wire(2, {1000, 2000, 0, 30000}, 1, 5, 6);
    PositionData angles = Position(CoordinateType::RobotCoordinate, {1, 2});
    angles.figure.frontOrBack = FrontOrBack::Back;
    angles.toolNumber = 5;
    angles.userCoordinateNumber = 6;
    PositionData cartesian = angles;
    cartesian.coordinateType = CoordinateType::BaseCoordinate;
    cartesian.axes = {1, 2, 0, 3};
    PositionData marked = angles;
    marked.coordinateType = CoordinateType::JointAngle;
    struct {
        KinematicConversions conversion;
        CoordinateType inputType;
        std::vector<std::pair<Bytes, Bytes>> exchanges;
        PositionData expected;
    } const cases[] = {
        // The input counts as joint angles, whatever its type. The output has the type of the reply.
        {JointAngleToCartesianPos, CoordinateType::Pulse, {{Conversion(866, jointAngles), last}}, cartesian},
        {JointAngleToPulse, CoordinateType::Undefined, {{Conversion(869, jointAngles), reply}}, angles},
        {PulseToJointAngle, CoordinateType::Pulse, {{Conversion(868, pulses), reply}}, marked},
        {PulseToCartesianPos,
         CoordinateType::Pulse,
         {{Conversion(868, pulses), reply}, {Conversion(866, reply), last}},
         cartesian},
    };
    for (auto const& [conversion, type, exchanges, expected] : cases) {
        SCOPED_TRACE(static_cast<int>(conversion));
        for (auto const& [request, answer] : exchanges) {
            controller.Expect(request, Payload(answer));
        }
        PositionData input = Sample(type);
        EXPECT_EQ(kinematics.ConvertPosition(ControlGroupId::R1, input, conversion, result).StatusCode, 0);
        EXPECT_EQ(Printed(result), Printed(expected));
    }
}

TEST_F(Conversions, FromCartesian) {
    Axes const previous{12.9, -12.9, 0, 0, 0, 0, 0, 3e9};
    Bytes const request =
        RobotRequest(867, 0, 0, 1,
                     Words({2, 1}) + Wire(2, {1500, -2000, 3000, 40001, 50000, 60000, 70000, 89000}, 2, 3, 4) +
                         Words({12, -12, 0, 0, 0, 0, 0, INT32_MIN, 1}));
    Bytes const angles = Wire(1, {10000, 20000});
    Bytes const pulses = Wire(0, {77, 88});
    PositionData input = Sample();
    auto const convert = [&](KinematicConversions conversion) {
        result = Sample();
        return kinematics.ConvertPositionFromCartesian(ControlGroupId::S1, input, conversion, KinematicType::Delta,
                                                       previous, result);
    };
    controller.Expect(request, Payload(angles));
    EXPECT_EQ(convert(CartesianPosToJointAngle).StatusCode, 0);
    EXPECT_EQ(Printed(result), Printed(Position(CoordinateType::JointAngle, {1, 2})));
    controller.Expect(request, Payload(angles));
    controller.Expect(Conversion(869, angles, 2, 1), Payload(pulses));
    EXPECT_EQ(convert(CartesianPosToPulse).StatusCode, 0);
    EXPECT_EQ(Printed(result), Printed(Position(CoordinateType::Pulse, {77, 88})));

    controller.Expect(request, Refusal(65531));
    EXPECT_EQ(convert(CartesianPosToPulse).Message, "Inverse kinematics wrong.");

    // Without previous angles the library sends zeros; without a type it sends nothing.
    UAPIPositionData out;
    StatusInfo status;
    controller.Expect(RobotRequest(867, 0, 0, 1, Words({0, 0}) + Bytes(48) + Bytes(32) + U32(2)), Payload(angles));
    kinematics.DoConversionCartesianPosToJointAngle(ControlGroupId::R1, {}, out, status, KinematicType::KinematicFigure,
                                                    {});
    EXPECT_EQ(out.axes[0], 10000);
    EXPECT_THROW(kinematics.DoConversionCartesianPosToJointAngle(ControlGroupId::R1, {}, out, status, {}, {}),
                 std::bad_optional_access);
}

TEST_F(Conversions, WrongOnesAreRefusedWithoutAnExchange) {
    PositionData input = Sample();
    for (int const number : {4, 5, 6, -1}) {
        result = Sample();
        StatusInfo const status =
            kinematics.ConvertPosition(ControlGroupId::R1, input, static_cast<KinematicConversions>(number), result);
        EXPECT_EQ(status.StatusCode, 0x20014);
        EXPECT_EQ(status.Message,
                  "The selected Kinematic Conversion type is incorrect for this function. Valid choices are "
                  "JointAngleToCartesianPos), PulseToJointAngle,JointAngleToPulse), PulseToCartesianPos,");
        EXPECT_EQ(Printed(result), Printed(PositionData()));
    }
    for (int const number : {0, 1, 2, 3, 6}) {
        result = Sample();
        StatusInfo const status = kinematics.ConvertPositionFromCartesian(
            ControlGroupId::R1, input, static_cast<KinematicConversions>(number), KinematicType::Delta, {}, result);
        EXPECT_EQ(status.StatusCode, 0x20013);
        EXPECT_EQ(status.Message,
                  "The selected Kinematic Conversion type is incorrect for this function. Valid choices are "
                  "CartesianPosToJointAngle or CartesianPosToPulse.");
        EXPECT_EQ(Printed(result), Printed(PositionData()));
    }
    // Unlike for motion, an unknown generation counts as old.
    for (auto const version : {ControllerVersion::VersionFS, ControllerVersion::VersionUnknown}) {
        manager->controllerVersion = version;
        result = Sample();
        for (StatusInfo const& status :
             {kinematics.ConvertPosition(ControlGroupId::R1, input, PulseToJointAngle, result),
              kinematics.ConvertPositionFromCartesian(ControlGroupId::R1, input, CartesianPosToPulse,
                                                      KinematicType::Delta, {}, result)}) {
            EXPECT_EQ(status.StatusCode, 0x30005);
            EXPECT_EQ(status.Message, "This function is only available on VRK9000 or newer controllers");
        }
        EXPECT_EQ(Printed(result), Printed(Sample())); // untouched
    }
}

TEST_F(Conversions, GroupsAndAliasing) {
    struct {
        int id, type, index;
    } const groups[] = {{1, 0, 0}, {8, 0, 7}, {10, 0, 9}, {11, 1, 0}, {18, 1, 7}, {20, 1, 9}, {21, 2, 1}, {44, 2, 24}};
    for (auto const& [id, type, index] : groups) {
        controller.Expect(Conversion(868, Wire(0, {5}), type, index), Payload(Wire(1, {})));
        PositionData input = Position(CoordinateType::Pulse, {5});
        EXPECT_EQ(
            kinematics.ConvertPosition(static_cast<ControlGroupId>(id), input, PulseToJointAngle, result).StatusCode,
            0);
    }
    // If both are the same record, it is cleared before it is read.
    controller.Expect(Conversion(868, Wire(0, {})), Payload(Wire(1, {10000})));
    PositionData both = Sample();
    EXPECT_EQ(kinematics.ConvertPosition(ControlGroupId::R1, both, PulseToJointAngle, both).StatusCode, 0);
    EXPECT_EQ(both.axes[0], 1.0);
    controller.Expect(RobotRequest(867, 0, 0, 1, Words({0, 0}) + Wire(0, {}) + Bytes(32) + U32(1)),
                      Payload(Wire(1, {})));
    both = Sample();
    EXPECT_EQ(kinematics
                  .ConvertPositionFromCartesian(ControlGroupId::R1, both, CartesianPosToJointAngle,
                                                KinematicType::Delta, {}, both)
                  .StatusCode,
              0);
}

} // namespace
} // namespace harvlink::test
