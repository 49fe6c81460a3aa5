#include <bit>
#include <sstream>

#include "support/Printed.h"
#include "support/ScriptedController.h"
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
    VariablesImplementation fromOne{manager.get(), 0, toolFiles}; // the controller counts from 1

    /// Checks that hold for all kinds. `written` is the payload of `record`. Reading `read` gives the same record, except
    /// for the index.
    template <typename Record, typename IsSame>
    void CheckKind(VariableInterface<Record>* VariablesInterface::*kind, unsigned command, Bytes const& read,
                   Bytes const& written, Record record, IsSame isSame, bool keepsIndex = true) {
        SCOPED_TRACE(testing::Message() << "command " << command);
        bool const isPosition = command >= 127 && command <= 129;
        auto const request = [=](unsigned instance, bool writes, Bytes const& payload) {
            unsigned const service = isPosition ? (writes ? 2U : 1U) : (writes ? 16U : 14U);
            return RobotRequest(command, instance, isPosition ? 0 : 1, service, payload);
        };
        for (VariablesImplementation* const all : {&variables, &fromOne}) {
            unsigned const offset = all == &fromOne ? 1 : 0;
            for (std::uint16_t const index : {std::uint16_t{0}, std::uint16_t{2048}}) {
                Record back{};
                controller.Expect(request(index + offset, false, {}), Payload(read));
                EXPECT_EQ((all->*kind)->Read(index, back).StatusCode, 0);
                EXPECT_EQ(back.variableIndex, keepsIndex ? index : 0);
                EXPECT_TRUE(isSame(back)) << Printed(back);
                controller.Expect(request(index + offset, true, written));
                record.variableIndex = index;
                EXPECT_EQ((all->*kind)->Write(record).StatusCode, 0);
            }
        }
        struct {
            std::uint16_t index;
            bool isSent;
        } const failures[] = {{2049, false}, {65535, false}, {7, true}};
        for (auto const& [index, isSent] : failures) {
            Record back = record;
            record.variableIndex = index;
            if (isSent) {
                controller.Expect(request(index, true, written), Refusal(40961));
                controller.Expect(request(index, false, {}), Refusal(40961));
            }
            for (StatusInfo const& status : {(variables.*kind)->Write(record), (variables.*kind)->Read(index, back)}) {
                EXPECT_EQ(status.StatusCode, 0x30008);
                EXPECT_EQ(status.Message, invalidIndex);
            }
            Record empty{};
            empty.variableIndex = index;
            EXPECT_EQ(Printed(back), Printed(empty)); // the requested index, and nothing else
        }
    }

    template <typename Value>
    void CheckScalar(VariableInterface<ScalarVariableData<Value>>* VariablesInterface::*kind, unsigned command,
                     Value value, Bytes const& wire) {
        CheckKind(kind, command, wire, wire, ScalarVariableData<Value>{value, 0},
                  [=](auto const& back) { return back.value == value; });
    }
};

TEST_F(VariablesTest, EveryKindOnTheWire) {
    CheckScalar<std::uint8_t>(&VariablesInterface::byteVariable, 122, 0xfe, U8(0xfe));
    CheckScalar<std::int16_t>(&VariablesInterface::integerVariable, 123, -2, U16(-2));
    CheckScalar<std::int32_t>(&VariablesInterface::doubleIntVariable, 124, -123456789, U32(-123456789));
    CheckScalar<float>(&VariablesInterface::realVariable, 125, -0.15625F, U32(0xbe200000));
    std::string const text("a\0\xff z\0", 6);
    CheckKind(&VariablesInterface::stringVariable, 140, Text(text), Text(text), StringVariableData{text, 0},
              [&](auto const& back) { return back.value == text; });

    PositionData position;
    position.coordinateType = CoordinateType::UserCoordinate;
    position.figure.flipOrNoFlip = FlipOrNoFlip::NoFlip;
    position.figure.wAngle = AxisAngle::GreaterThan180;
    position.toolNumber = toolFiles;
    position.userCoordinateNumber = 63;
    position.axes = {1.5, -2.25, 3, 4.125, 5, 6, 7, -8};
    Bytes const robot = Words({19, 4, toolFiles, 63, 16, 1500, -2250, 3000, 41250, 50000, 60000, 70000, -80000});
    CheckKind(&VariablesInterface::robotPositionVariable, 127, robot, robot, RobotPositionVariableData{position, 0},
              [&](auto const& back) { return Printed(back.positionData) == Printed(position); });

    PositionData plain; // without the fields that the other two kinds do not have
    plain.coordinateType = CoordinateType::UserCoordinate;
    plain.axes = position.axes;
    Bytes const base = Words({19, 1500, -2250, 3000, 4125, 5000, 6000, 7000, -8000});
    CheckKind(
        &VariablesInterface::basePositionVariable, 128, base, base, BaseAxisPositionVariableData{position, 0},
        [&](auto const& back) { return Printed(back.positionData) == Printed(plain); }, false);
    plain.axes = {1, -2, 3, 4, 5, 6, 7, -8};
    // A read keeps the type of the reply, a write sends type 0.
    CheckKind(
        &VariablesInterface::stationPositionVariable, 129, Words({19, 1, -2, 3, 4, 5, 6, 7, -8}),
        Words({0, 1, -2, 3, 4, 5, 6, 7, -8}), StationPositionVariableData{position, 0},
        [&](auto const& back) { return Printed(back.positionData) == Printed(plain); }, false);
}

TEST_F(VariablesTest, StringLengths) {
    std::string const thirtyTwo = "0123456789abcdefghijklmnopqrstuv";
    std::string const truncated = "OK String was truncated to 32 characters";
    struct {
        std::string text, sent, message;
    } const writes[] = {
        {"", "", "OK"},
        {thirtyTwo, thirtyTwo, "OK"},
        {thirtyTwo + 'w', thirtyTwo, truncated},
        {std::string(65535, 'x'), std::string(32, 'x'), truncated},
        {std::string(65536, 'x'), "", "OK"}, // only the low 16 bits of the length count
        {std::string(65537, 'x'), "x", "OK"},
        {std::string(65569, 'x'), std::string(32, 'x'), truncated},
    };
    for (auto const& [text, sent, message] : writes) {
        controller.Expect(RobotRequest(140, 4, 1, 16, Text(sent)));
        StatusInfo const status = variables.stringVariable->Write({text, 4});
        EXPECT_EQ(status.StatusCode, 0);
        EXPECT_EQ(status.Message, message);
    }
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
