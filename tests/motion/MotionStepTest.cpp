#include <cmath>
#include <cstring>
#include <limits>
#include <sstream>

#include "motion/MotionSession.h"
#include "support/Printed.h"

namespace harvlink::test {
namespace {

using enum MoveInterpolationType;
using enum CoordinateType;
using enum TargetControlGroup;

constexpr double notSpecified = std::numeric_limits<double>::max();
double const notANumber = std::nan("");
double const infinity = std::numeric_limits<double>::infinity();

Bytes MemoryOf(Target const& target) {
    Bytes bytes(sizeof(target));
    std::memcpy(bytes.data(), &target, bytes.size());
    return bytes;
}

TEST(MotionStep, ChecksInTheirOrderWithTheirLimits) {
    constexpr auto joint = "Speed value is out of range for a joint move. Valid range is 0.01 - 100.00%.";
    constexpr auto linear = "Speed value is out of range. Valid range is 0.1 - 1500.00";
    constexpr auto acceleration = "Acceleration Value Out Of Range";
    constexpr auto deceleration = "Deceleration Value Out Of Range";
    struct {
        MoveInterpolationType type;
        CoordinateType coordinates;
        double speed, accelerationRatio, decelerationRatio;
        int code;
        char const* message;
    } const cases[] = {
        {Joint, Pulse, 0.01, notSpecified, notSpecified, 0, ""},
        {Joint, Pulse, 100.0, 20.0, 100.0, 0, ""},
        {Joint, Pulse, 0.009, 100.0, 20.0, 0x30001, joint},
        {Joint, Pulse, 100.01, 100.0, 20.0, 0x30001, joint},
        {Joint, Pulse, -infinity, notSpecified, notSpecified, 0x30001, joint},
        {Joint, Pulse, notANumber, notANumber, notANumber, 0, ""},
        {Line, BaseCoordinate, 0.1, 20.0, 20.0, 0, ""},
        {Line, RobotCoordinate, 1500.0, 100.0, 100.0, 0, ""},
        {Line, UserCoordinate, 0.09, notSpecified, notSpecified, 0x30002, linear},
        {Line, ToolCoordinate, 1500.1, notSpecified, notSpecified, 0x30002, linear},
        {Circle, MasterTool, 1500.1, notSpecified, notSpecified, 0x30002, linear},
        {Circle, Undefined, 0.1, notSpecified, notSpecified, 0, ""},
        {Circle, Pulse, 0.09, notSpecified, notSpecified, 0x30002, linear},
        {static_cast<MoveInterpolationType>(4), Pulse, -1e300, notSpecified, notSpecified, 0, ""},
        {static_cast<MoveInterpolationType>(-1), Pulse, 1e300, notSpecified, notSpecified, 0, ""},
        {Joint, Pulse, 50.0, 19.99, notSpecified, 0x30009, acceleration},
        {Joint, Pulse, 50.0, 100.01, 19.99, 0x30009, acceleration},
        {Joint, Pulse, 0.0, infinity, notSpecified, 0x30009, acceleration}, // before the speed
        {Joint, Pulse, 50.0, -notSpecified, notSpecified, 0x30009, acceleration},
        {Joint, Pulse, 50.0, notSpecified, 19.99, 0x30010, deceleration},
        {Joint, Pulse, 0.0, 20.0, 100.01, 0x30010, deceleration},
        {Joint, JointAngle, 0.0, 0.0, 0.0, 0x20015, "Invalid Coordinate Type for this operation"},
        {static_cast<MoveInterpolationType>(9), JointAngle, 1, 50, 50, 0x20015,
         "Invalid Coordinate Type for this operation"},
        {NoMove, JointAngle, -1.0, 0.0, 0.0, 0, ""},
    };
    for (auto const& example : cases) {
        SCOPED_TRACE(testing::Message() << "case " << &example - cases);
        CircularMotion motion{Point(7)};
        motion.moveType = example.type;
        motion.position.coordinateType = example.coordinates;
        motion.speed = example.speed;
        motion.accelerationRatio = example.accelerationRatio;
        motion.decelerationRatio = example.decelerationRatio;
        MotionStep step;
        StatusInfo status{77, "old"};
        EXPECT_EQ(step.SetTarget(motion, GroupThree, status), example.code == 0);
        EXPECT_EQ(status.StatusCode, example.code);
        if (example.code != 0) {
            EXPECT_EQ(status.Message, example.message);
        }
        bool const isStored = example.code == 0 && example.type != NoMove;
        EXPECT_EQ(step.groups.to_ulong(), isStored ? 4U : 0U);
        EXPECT_EQ(step.targets[2].axes[0] != 0, isStored);
    }
    // In a direct call, NoMove counts as a joint move.
    StatusInfo status;
    EXPECT_FALSE(TargetProfile().CheckSpeed(100.01, NoMove, status));
    EXPECT_EQ(status.StatusCode, 0x30001);
}

TEST(MotionStep, TargetsOnTheWire) {
    CircularMotion circle{Point(0)};
    circle.moveType = Circle;
    circle.speed = 10.0;
    circle.position.axes = {1.0004, -1.0005, 2.9, -0.00005, 9.99994, -9.99995, 1e9, notANumber};
    circle.auxiliaryAxes = {-1.9, 0.0005, 3.0, 0.00005, 4, 5, 6, 7.7};
    MotionStep step;
    StatusInfo status;
    ASSERT_TRUE(step.SetTarget(circle, GroupTwo, status));
    EXPECT_TRUE(SameBytes(WireTarget(3, {1, -1, 2, 0, 9, -9, 1000000000, INT32_MIN}, {-1, 0, 3, 0, 4, 5, 6, 7}),
                          MemoryOf(step.targets[1])));
    Bytes const scaledAxes = Words({1000, -1001, 2900, -1, 99999, -100000, INT32_MIN, INT32_MIN});
    circle.position.coordinateType = Undefined;
    ASSERT_TRUE(step.SetTarget(circle, GroupTwo, status)); // the second of one group replaces the first
    EXPECT_TRUE(SameBytes(Words({0, 3}) + scaledAxes + Words({-1900, 1, 3000, 1, 40000, 50000, 60000, 77000}),
                          MemoryOf(step.targets[1])));
    EXPECT_EQ(step.profiles[1].coordinateType, Undefined);
    circle.moveType = Line;
    ASSERT_TRUE(step.SetTarget(circle, GroupTwo, status));
    EXPECT_TRUE(SameBytes(Words({0, 2}) + scaledAxes + Bytes(32), MemoryOf(step.targets[1])));
    EXPECT_EQ(step.groups.to_ulong(), 2U);
    EXPECT_TRUE(SameBytes(Bytes(72), MemoryOf(step.targets[0])));
}

TEST(GroupNumberMap, WalksFilledSlotsInOrder) {
    GroupNumberMap map;
    map.SetGroupOne(ControlGroupId::R2);
    map.SetGroupTwo(ControlGroupId::S24);
    EXPECT_EQ(map.GetGroup(ControlGroupId::R2), GroupOne);
    EXPECT_EQ(map.GetGroup(Point(0, ControlGroupId::S24)), GroupTwo);
    for (int const id : {0, 1, 3, -2, 45}) {
        EXPECT_EQ(map.GetGroup(static_cast<ControlGroupId>(id)), GroupNotFound) << id;
    }
    EXPECT_EQ(map.GetTargetControlGroup(ControlGroupId::S24), GroupTwo);
    EXPECT_EQ(map.GetTargetControlGroup(ControlGroupId{}), std::nullopt);
    map.SetGroupThree(ControlGroupId::R2);
    map.SetGroupFour(ControlGroupId::B8);
    EXPECT_EQ(map.GetGroup(ControlGroupId::R2), GroupOne);
    EXPECT_EQ(map.GetGroup(ControlGroupId::B8), GroupFour);
    map.groups[0].reset(); // an empty slot is skipped
    EXPECT_EQ(map.GetGroup(ControlGroupId::R2), GroupThree);
    for (int const count : {3, 2, 0, -1}) {
        map.groupCount = count;
        EXPECT_EQ(map.GetGroup(ControlGroupId::B8), GroupNotFound) << count;
        EXPECT_EQ(map.GetTargetControlGroup(ControlGroupId::R2), count == 3 ? std::optional(GroupThree) : std::nullopt);
    }
    MotionStep step;
    StatusInfo status;
    EXPECT_FALSE(step.SetTarget(Point(1, ControlGroupId::R7), map, status));
    EXPECT_EQ(status.StatusCode, 3370);
    EXPECT_EQ(status.Message, "Invalid control group id.");
}

TEST(MotionText, IsExact) {
    EXPECT_EQ(Printed(Joint) + Printed(Line) + Printed(Circle), "JointLineCircle");
    for (auto const type : {NoMove, static_cast<MoveInterpolationType>(4), static_cast<MoveInterpolationType>(-1)}) {
        EXPECT_EQ(Printed(type), "Invalid or undefined");
    }
    EXPECT_EQ(Printed(SpeedStruct{1234, -5, 6}),
              "Linear Speed: -5 mm/sec\nJoint Speed: 1234%\nAngular Speed: 6 deg/sec");
    std::ostringstream stream;
    stream.precision(3);
    harvlink::operator<<(stream, std::array<double, 8>{1, 2.5, -3, 0, 0.00012345, 1e10, 7, 8});
    EXPECT_EQ(stream.str(), "1, 2.5, -3, 0, 0.000123, 1e+10, 7, 8");
}

} // namespace
} // namespace harvlink::test
