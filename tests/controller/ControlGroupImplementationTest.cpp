#include "controller/ControlGroupImplementation.h"

#include <sstream>

#include "support/ScriptedController.h"

namespace harvlink::test {
namespace {

using enum ControlGroupId;
using enum CoordinateType;

constexpr int toolFiles = 4;

Bytes const extendedPosition =
    U32(4) + U16(5) + U16(2) + Words({0b100001, 0, 1500, -2500, 3, 40000, 50000, 60001, -70000, 80000});

struct Session {
    explicit Session(char const* software) : manager(controller.Connect(software)) {
        for (auto const group : {R1, R2, B1, S1}) {
            manager->AddToControlGroupsAttached({group, group == R2 ? 8U : group == B1 ? 0xffffffffU : 6U});
        }
    }
    StatusInfo Read(ControlGroupId group, CoordinateType type, int user = 0, int tool = 0) {
        position.toolNumber = 99;
        return groups.ReadPositionData(group, type, static_cast<unsigned char>(user), static_cast<unsigned char>(tool),
                                       position);
    }

    ScriptedController controller;
    std::unique_ptr<NetworkManager> manager;
    ControlGroupImplementation groups{manager.get(), toolFiles};
    PositionData position;
};

bool IsZero(PositionData const& position) {
    return position.coordinateType == Pulse && position.toolNumber == 0 && position.userCoordinateNumber == 0 &&
           position.axes == std::array<double, 8>{};
}

TEST(ControlGroup, TypeOfTheReplyDecidesAndSoDoesTheNumberOfAxes) {
    Session session("FS1");
    // The type of the reply decides the scaling; a group without eight axes has no eighth value.
    session.controller.Expect(RobotRequest(117, 121, 0, 1), Payload(Words({0, 0, 0, 0, 0, 1, 2, 3, 4, 5, 6, 7, 8})));
    EXPECT_EQ(session.Read(S1, BaseCoordinate).StatusCode, 0);
    EXPECT_EQ(session.position.axes, (std::array<double, 8>{1, 2, 3, 4, 5, 6, 7, 0}));
    EXPECT_EQ(session.position.coordinateType, Pulse);
}

TEST(ControlGroup, ExtendedCommandRequests) {
    struct {
        ControlGroupId group;
        CoordinateType type;
        int user, tool;
        Bytes request;
        int userInResult;
    } const cases[] = {
        {R1, BaseCoordinate, 9, 4, Words({0, 0}) + U16(0) + U16(4) + U32(0), 5},
        {R2, RobotCoordinate, 9, 0, Words({0, 1}) + U16(1) + U16(0) + U32(0), 5},
        {B1, UserCoordinate, 1, 1, Words({1, 0}) + U16(2) + U16(1) + U32(0), 6},
        {S1, UserCoordinate, 63, 4, Words({2, 1}) + U16(64) + U16(4) + U32(0), 6},
    };
    Session session("YA1");
    for (auto const& example : cases) {
        session.controller.Expect(RobotRequest(829, 0, 0, 1, example.request), Payload(extendedPosition));
        EXPECT_EQ(session.Read(example.group, example.type, example.user, example.tool).StatusCode, 0);
        EXPECT_EQ(session.position.coordinateType, UserCoordinate);
        EXPECT_EQ(session.position.userCoordinateNumber, example.userInResult);
        EXPECT_EQ(session.position.axes[6], -7.0);
        EXPECT_EQ(session.position.axes[7], example.group == R2 ? 8.0 : 0.0);
        EXPECT_EQ(session.position.figure.lAngle, AxisAngle::LessThan180);
    }
    // Pulses use the older command, for any tool and user coordinate.
    session.controller.Expect(RobotRequest(117, 1, 0, 1), Payload(Words({0, 0, 3, 0, 0, -1})));
    EXPECT_EQ(session.Read(R1, Pulse, 255, 255).StatusCode, 0);
    EXPECT_EQ(session.position.axes[0], -1.0);
}

/// Each road by itself takes no notice of the generation.
TEST(ControlGroup, RoadsOneByOne) {
    Session session("FS1");
    StatusInfo status;
    session.controller.Expect(RobotRequest(117, 101, 0, 1), Payload(Words({16, 0, 3, 0, 0, 1000})));
    EXPECT_EQ(session.groups.HSEReadPositionData(R1, BaseCoordinate, status).axes[0], 1.0);
    EXPECT_EQ(status.StatusCode, 0);
    EXPECT_TRUE(IsZero(session.groups.HSEReadPositionData(R1, UserCoordinate, status)));
    EXPECT_EQ(status.StatusCode, 0x20015);
    session.controller.Expect(RobotRequest(829, 0, 0, 1, Words({0, 0}) + U16(2) + U16(4) + U32(0)),
                              Payload(extendedPosition));
    EXPECT_EQ(session.groups.UAPIReadPositionData(R1, UserCoordinate, 1, 4, status).userCoordinateNumber, 5);
    EXPECT_EQ(status.StatusCode, 0);
    EXPECT_TRUE(IsZero(session.groups.UAPIReadPositionData(R1, UserCoordinate, 64, 4, status)));
    EXPECT_EQ(status.StatusCode, 45070);
}

TEST(ControlGroup, ArgumentsAreRefusedBeforeAnythingIsSent) {
    constexpr char const* notAttached = "This Control Group is not attached to the controller.";
    constexpr char const* wrongType = "Coordinate type is not valid for position data retrieval.";
    constexpr char const* activeToolOnly = "This controller generation only returns position data for the active tool. "
                                           "Please pass 0 for the tool selection.";
    struct {
        char const* software;
        ControlGroupId group;
        CoordinateType type;
        int user, tool, code;
        char const* message;
    } const cases[] = {
        {"YA", R3, Pulse, 0, 0, 0x30015, notAttached},
        {"FS", R3, Pulse, 0, 1, 0x30015, notAttached},
        {"FS", R1, Pulse, 0, 1, 0x20016, activeToolOnly},
        {"ZZ", R1, BaseCoordinate, 0, 1, 0x20016, activeToolOnly}, // an unknown generation counts as older here
        {"FS", R1, RobotCoordinate, 0, 0, 0x20015, wrongType},
        {"DN", R1, UserCoordinate, 1, 0, 0x20015, wrongType},
        {"YA", R1, ToolCoordinate, 0, 0, 0x20015, wrongType},
        {"YN", R1, JointAngle, 0, 0, 0x20015, wrongType},
        {"YA", R1, UserCoordinate, 0, 5, 45069, "Tool Number is out of range."},
        {"YA", R1, UserCoordinate, 0, 4, 45070, "User Coordinate Number is out of range."},
        {"YA", R1, UserCoordinate, 64, 0, 45070, "User Coordinate Number is out of range."},
        // The tool is not checked here, on purpose.
        {"YA", R1, BaseCoordinate, 0, 5, 0, "OK"},
        {"YA", R1, RobotCoordinate, 0, 255, 0, "OK"},
    };
    for (auto const& example : cases) {
        Session session(example.software);
        StatusInfo const status = session.Read(example.group, example.type, example.user, example.tool);
        EXPECT_EQ(status.StatusCode, example.code);
        EXPECT_EQ(status.Message, example.message);
        EXPECT_TRUE(IsZero(session.position));
    }
}

TEST(ControlGroup, Text) {
    std::ostringstream text;
    text << PositionErrorData{{1, -2, 3, 4, 5, 6, 7, 8}} << TorqueData{B2, {1, -2, 3, 4, 5, 6, 7, 8}};
    EXPECT_EQ(text.str(),
              "Axis 0 : 1\nAxis 1 : -2\nAxis 2 : 3\nAxis 3 : 4\nAxis 4 : 5\nAxis 5 : 6\nAxis 6 : 7\nAxis 7 : 8\n"
              "Control Group Id: B2\nAxis 0 : 1\nAxis 1 : -2\nAxis 2 : 3\nAxis 3 : 4\nAxis 4 : 5\nAxis 5 : 6"
              "\nAxis 6 : 7");
}

} // namespace
} // namespace harvlink::test
