#include <algorithm>
#include <bit>
#include <cstring>
#include <sstream>

#include "support/Printed.h"
#include "support/ScriptedController.h"
#include "variables/VariableFunctions.h"
#include "variables/VariablesImplementation.h"

namespace harvlink::test {
namespace {

constexpr char const* invalidIndex = "The requested variable index is invalid.";
constexpr char const* activeAlarm = "There is an active Error or Alarm.";
constexpr int toolFiles = 16;

class VariablesTest : public testing::Test {
protected:
    ScriptedController controller;
    std::unique_ptr<NetworkManager> manager = controller.Connect();
    VariablesImplementation variables{manager.get(), 1, toolFiles};
};

TEST_F(VariablesTest, IndexIsCheckedAndIsAllThatARefusalLeaves) {
    for (auto const& [index, isSent] : {std::pair{2048, true}, {2049, false}, {65535, false}}) {
        RobotPositionVariableData record;
        record.variableIndex = static_cast<std::uint16_t>(index);
        record.positionData.toolNumber = 3;
        std::string const written = Printed(record);
        RobotPositionVariableData const empty{{}, record.variableIndex};
        if (isSent) {
            controller.Expect(RobotRequest(127, 2048, 0, 2, Words({0, 0, 3}) + Bytes(40)), Refusal(40961));
            controller.Expect(RobotRequest(127, 2048, 0, 1), Refusal(40961));
        }
        auto& kind = *variables.robotPositionVariable;
        for (StatusInfo const& status : {kind.Write(record), kind.Read(record.variableIndex, record)}) {
            EXPECT_EQ(status.StatusCode, 0x30008);
            EXPECT_EQ(status.Message, invalidIndex);
        }
        EXPECT_NE(Printed(record), written);
        EXPECT_EQ(Printed(record), Printed(empty));
    }
    VariablesImplementation fromOne(manager.get(), 0, toolFiles); // the controller counts from 1
    controller.Expect(RobotRequest(122, 2049, 1, 16, U8(9)));
    EXPECT_EQ(fromOne.byteVariable->Write({9, 2048}).StatusCode, 0);
}

/// Each kind by its command, whose number decides between the one value and the whole record.
TEST_F(VariablesTest, GetVariableReadsEveryKind) {
    auto const get = [&]<typename Value>(unsigned command, bool isWhole, Bytes const& payload, Value const& expected) {
        SCOPED_TRACE(command);
        controller.Expect(RobotRequest(command, 6, isWhole ? 0 : 1, isWhole ? 1 : 14), Payload(payload));
        StatusInfo status;
        auto const reply =
            VariableFunctions::GetVariable<Value>(5, static_cast<CommandNumber>(command), status, manager.get(), 0);
        EXPECT_EQ(status.StatusCode, 0);
        EXPECT_EQ(std::memcmp(&reply.payload, &expected, sizeof(Value)), 0);
        Value const none{};
        for (auto const& [index, answer] : {std::pair{2049, 0}, {2048, 40961}}) {
            if (answer != 0) {
                controller.Expect(RobotRequest(command, 2048, isWhole ? 0 : 1, isWhole ? 1 : 14), Refusal(40961));
            }
            auto const refused = VariableFunctions::GetVariable<Value>(
                static_cast<unsigned short>(index), static_cast<CommandNumber>(command), status, manager.get(), 1);
            EXPECT_EQ(status.StatusCode, 0x30008);
            EXPECT_EQ(status.Message, invalidIndex);
            EXPECT_EQ(std::memcmp(&refused.payload, &none, sizeof(Value)), 0);
        }
    };
    std::array<char, 32> text{};
    std::ranges::copy(std::string_view("hello"), text.begin());
    get(122, false, U8(200), std::uint8_t{200});
    get(123, false, U16(0xfffe), std::int16_t{-2});
    get(124, false, U32(0xfffffffe), std::int32_t{-2});
    get(125, false, U32(0x3fc00000), 1.5F);
    get(140, false, Text("hello", 32), text);
    get(127, true, Words({0, 0, 3}) + Bytes(40), RobotPositionMsg{.toolNumber = 3});
    get(128, true, Words({7}) + Bytes(32), std::bit_cast<BasePositionVariableMsg>(std::array<std::int32_t, 9>{7}));
    get(129, true, Words({7}) + Bytes(32), std::bit_cast<StationPositionVariableMsg>(std::array<std::int32_t, 9>{7}));
}

TEST_F(VariablesTest, StringLengths) {
    std::string const thirtyTwo = "0123456789abcdefghijklmnopqrstuv";
    controller.Expect(RobotRequest(140, 4, 1, 16, Text(thirtyTwo)), Refusal(8288));
    EXPECT_EQ(variables.stringVariable->Write({thirtyTwo + 'w', 4}).Message, activeAlarm);
    EXPECT_EQ(variables.stringVariable->Write({thirtyTwo + 'w', 2049}).Message, invalidIndex);

    for (std::string const& text : {std::string(), thirtyTwo, thirtyTwo + "more than fits"}) {
        controller.Expect(RobotRequest(140, 4, 1, 14), Payload(Text(text)));
        StringVariableData back{"old", 1};
        EXPECT_EQ(variables.stringVariable->Read(4, back).StatusCode, 0);
        EXPECT_EQ(back.value, text.substr(0, 32));
    }
}

TEST_F(VariablesTest, RobotPositionsAreCheckedInOrder) {
    using enum CoordinateType;
    constexpr char const* missingTool = "Tool File does not exist. Check tool number.";
    constexpr char const* userNumber = "User Coordinate Number is out of range.";
    struct {
        CoordinateType type;
        int tool, user, code;
        char const* message;
    } const cases[] = {
        {JointAngle, -1, 0, 0x20015, "Invalid Coordinate Type for this operation"},
        {Undefined, -1, 0, 3460, "Coordinate Type is undefined."},
        {UserCoordinate, -1, 0, 0xb00d, missingTool},
        {Pulse, toolFiles + 1, 0, 0xb00d, missingTool},
        {UserCoordinate, 0, 0, 0xb00e, userNumber},
        {UserCoordinate, toolFiles, 64, 0xb00e, userNumber},
        {UserCoordinate, 0, -1, 0xb00e, userNumber},
        {UserCoordinate, 0, 1, 0, "OK"},
        {UserCoordinate, 0, 63, 0, "OK"},
        {RobotCoordinate, 0, 64, 0, "OK"},
        {static_cast<CoordinateType>(99), toolFiles, -1, 0, "OK"},
    };
    for (auto const& [type, tool, user, code, message] : cases) {
        RobotPositionVariableData record;
        record.variableIndex = 3;
        record.positionData.coordinateType = type;
        record.positionData.toolNumber = tool;
        record.positionData.userCoordinateNumber = user;
        if (code == 0) {
            controller.Expect(
                RobotRequest(127, 3, 0, 2, Words({static_cast<int>(type), 0, tool, user, 0, 0, 0, 0, 0, 0, 0, 0, 0})));
        }
        StatusInfo const status = variables.robotPositionVariable->Write(record);
        EXPECT_EQ(status.StatusCode, code);
        EXPECT_EQ(status.Message, message);
    }
}

TEST_F(VariablesTest, PositionsScaleEachInTheirWay) {
    PositionData position;
    position.axes = {1.9, -1.9, 0.0005, 0, 0, 0, 2.4, -2.4};
    controller.Expect(RobotRequest(127, 1, 0, 2, Words({0, 0, 0, 0, 0, 1, -1, 0, 0, 0, 0, 2, -2})));
    variables.robotPositionVariable->Write({position, 1});
    controller.Expect(RobotRequest(128, 1, 0, 2, Bytes(36))); // pulses are read but not written
    variables.basePositionVariable->Write({position, 1});
    position.coordinateType = CoordinateType::BaseCoordinate;
    controller.Expect(RobotRequest(128, 1, 0, 2, Words({16, 1900, -1900, 1, 0, 0, 0, 2400, -2400})));
    variables.basePositionVariable->Write({position, 1});
    controller.Expect(RobotRequest(129, 1, 0, 2, Words({0, 1, -1, 0, 0, 0, 0, 2, -2})));
    variables.stationPositionVariable->Write({position, 1});

    BaseAxisPositionVariableData base;
    controller.Expect(RobotRequest(128, 9, 0, 1), Payload(Words({0, 1500, 0, 0, 0, 0, 0, 0, -7})));
    EXPECT_EQ(variables.basePositionVariable->Read(9, base).StatusCode, 0);
    EXPECT_EQ(base.positionData.axes[0], 1500.0);
    EXPECT_EQ(base.positionData.axes[7], -7.0);
    // A record from a read is written back to index 0.
    controller.Expect(RobotRequest(128, 0, 0, 2, Bytes(36)));
    variables.basePositionVariable->Write(base);
}

TEST_F(VariablesTest, Texts) {
    EXPECT_EQ(Printed(ByteVariableData{200, 7}), "B007=200");
    EXPECT_EQ(Printed(ByteVariableData{5, 1234}), "B1234=5");
    EXPECT_EQ(Printed(IntegerVariableData{-3, 0}), "I000=-3");
    EXPECT_EQ(Printed(DoubleIntVariableData{-2000000000, 12}), "D012=-2000000000");
    EXPECT_EQ(Printed(RealVariableData{0.1F, 123}), "R123=0.1");
    EXPECT_EQ(Printed(StringVariableData{"abc", 4}), "S004=abc");
    std::ostringstream stream;
    stream.precision(12);
    stream << RealVariableData{0.1F, 1}; // printed as a double
    stream.width(4);
    stream << 7; // the fill stays
    EXPECT_EQ(stream.str(), "R001=0.100000001490007");

    PositionData position;
    position.axes = {1.5, 2, 3, 4, 5, 6, 7, -8};
    EXPECT_EQ(Printed(RobotPositionVariableData{position, 12}), "P012:\n" + Printed(position));
    std::string const axes = "[1.5] [2] [3] [4] [5] [6] [7] [-8] ";
    EXPECT_EQ(Printed(BaseAxisPositionVariableData{position, 5}), "Variable Index: 5\nCoordinate Type: Pulse\n" + axes);
    position.coordinateType = CoordinateType::BaseCoordinate;
    EXPECT_EQ(Printed(BaseAxisPositionVariableData{position, 5}), "Variable Index: 5\nCoordinate Type: Base\n" + axes);
    position.coordinateType = CoordinateType::RobotCoordinate;
    EXPECT_EQ(Printed(BaseAxisPositionVariableData{position, 5}), "Variable Index: 5\n" + axes);
    EXPECT_EQ(Printed(StationPositionVariableData{position, 5}),
              "VariableIndex: 5\nCoordinates: 1.5, 2, 3, 4, 5, 6, 7, -8, ");
}

} // namespace
} // namespace harvlink::test
