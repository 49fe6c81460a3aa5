#include <ctime>

#include "behaviour/Image.h"
#include "controller/AlarmRequests.h"
#include "controller/ControlGroupRequests.h"
#include "controller/ControlRequests.h"
#include "controller/JobRequests.h"
#include "controller/OperatingTimeRequest.h"
#include "controller/PositionRequests.h"
#include "controller/StateRequests.h"
#include "controller/SystemRequests.h"
#include "files/FileDownload.h"
#include "io/SignalRequests.h"
#include "kinematics/ConversionRequests.h"
#include "motion/MotionRequests.h"
#include "support/WireBytes.h"
#include "variables/Rs022.h"
#include "variables/VariableRequests.h"
#include "wire/OnlyReads.h"

namespace harvlink::test {
namespace {

using enum ControlGroupId;
using enum CoordinateType;

/// Moves no datagram: keeps the bytes of the request and hands back those of a reply.
struct MemoryEngine {
    Bytes reply{};
    StatusInfo status = StatusInformation(ErrorStatusCodes::Ok);
    Bytes sent{};

    StatusInfo Exchange(OutgoingView request, IncomingView incoming, std::optional<unsigned char>, bool) {
        auto const* const bytes = reinterpret_cast<std::uint8_t const*>(request.bytes.data());
        sent.assign(bytes, bytes + HeaderSize + request.header.payloadSize);
        std::ranges::copy(std::as_bytes(std::span(reply)), incoming.bytes.subspan(HeaderSize).begin());
        incoming.header.payloadSize = static_cast<std::uint16_t>(reply.size());
        return status;
    }
};

StatusInfo const refusal = StatusInformation(8288);

/// One read: its request, what answers it, and the record that this gives. A refused one leaves `afterRefusal`.
template <typename R, typename Out>
void CheckRead(int line, R const& request, Bytes const& bytes, Bytes const& reply, Out const& record,
               Out const& afterRefusal = {}) {
    SCOPED_TRACE(line);
    MemoryEngine engine{.reply = reply};
    Out out{};
    Poison(out);
    EXPECT_EQ(CarryOut(engine, request, out).StatusCode, 0);
    EXPECT_TRUE(SameRequest(bytes, engine.sent));
    EXPECT_EQ(Image(out, false), Image(record, false));
    EXPECT_TRUE(OnlyReads(Division::RobotControl, request.command, static_cast<std::uint8_t>(request.service)));

    engine.status = refusal;
    Poison(out);
    EXPECT_EQ(CarryOut(engine, request, out).StatusCode, 8288);
    EXPECT_EQ(Image(out, false), Image(afterRefusal, false));
}

template <typename R>
void CheckWrite(int line, R const& request, Bytes const& bytes, char const* message = "OK") {
    SCOPED_TRACE(line);
    MemoryEngine engine;
    StatusInfo const status = CarryOut(engine, request);
    EXPECT_EQ(status.StatusCode, 0);
    EXPECT_EQ(status.Message, message);
    EXPECT_TRUE(SameRequest(bytes, engine.sent));
    EXPECT_FALSE(OnlyReads(Division::RobotControl, request.command, static_cast<std::uint8_t>(request.service)));
    engine.status = refusal;
    EXPECT_EQ(CarryOut(engine, request).Message, refusal.Message);
}

Bytes Read(unsigned command, unsigned instance, Bytes const& payload = {}) {
    return RobotRequest(command, instance, 0, 1, payload);
}
Bytes ReadOne(unsigned command, unsigned instance) {
    return RobotRequest(command, instance, 1, 14);
}

Bytes const axesOnWire = Words({1000, -2000, 3, 40000, 50000, 60000, 70000, 80000});
WireAxes const wireAxes{1000, -2000, 3, 40000, 50000, 60000, 70000, 80000};
std::array<double, 8> const pulses{1000, -2000, 3, 40000, 50000, 60000, 70000, 80000};
std::array<double, 8> const cartesian{1, -2, 0.003, 4, 5, 6, 7, 8};
std::array<double, 8> const baseAxes{1, -2, 0.003, 40, 50, 60, 70, 80};

TEST(Requests, ReadStateAndSystem) {
    CheckRead(
        __LINE__, StateRequest{}, Read(114, 1), Words({0xca, 0x58}),
        ControllerStateData{CycleMode::Cycle, true, ControllerStateData::ControlMode::Remote, true, true, false, true});
    CheckRead(__LINE__, RemoteModeRequest{}, ReadOne(114, 1), Words({0x80}), true, true); // a refusal's payload counts
    CheckRead(__LINE__, SystemInformationRequest(SystemInfoId::Robot1), Read(137, 11),
              Text("YA4.10", 24) + Text("MODEL", 16) + Bytes(8, 1),
              SystemInfoData{"YA4.10" + std::string(18, '\0'), "MODEL" + std::string(11, '\0')});
    CheckRead(__LINE__, ParameterRequest(SystemParameterType::S2C, 430, 1), Read(924, 0, Words({1, 1, 430})),
              Words({-7}), -7);
    std::tm startDay{};
    startDay.tm_mday = 2;
    startDay.tm_year = 70;
    CheckRead(__LINE__, OperatingTimeRequest{TimeCounterInstance(S1, TimeType::MovingStation, {})}, Read(136, 221),
              Text("1970/01/02 00:00") + Text("12:34'56", 12), TimeData{std::mktime(&startDay), {56, 34, 12}});
}

TEST(Requests, ReadGroups) {
    CheckRead(__LINE__, AxisConfigurationRequest(S1), Read(116, 21), Words({'S', 'L', 0x155, 0, 0, 0, 0, 'W'}),
              std::array<char, 8>{'S', 'L', 'U', 0, 0, 0, 0, 'W'});
    CheckRead(__LINE__, PositionErrorRequest(B2), Read(118, 12), axesOnWire, PositionErrorData{wireAxes});
    CheckRead(__LINE__, TorqueRequest(R2), Read(119, 2), axesOnWire, TorqueData{R1, wireAxes},
              TorqueData{R1, wireAxes}); // a refusal's payload counts
    PositionData const inPulses{.toolNumber = 2, .axes = pulses};
    PositionData const inBase{.coordinateType = BaseCoordinate,
                              .figure = {.frontOrBack = FrontOrBack::Back, .lAngle = AxisAngle::GreaterThan180},
                              .toolNumber = 2,
                              .userCoordinateNumber = 5,
                              .axes = cartesian};
    CheckRead(__LINE__, RobotPositionRequest(R1, Pulse), Read(117, 1), Words({0, 0, 2, 0, 0}) + axesOnWire, inPulses,
              inPulses);
    CheckRead(__LINE__, RobotPositionRequest(R2, BaseCoordinate), Read(117, 102), Words({16, 1, 2, 5, 1}) + axesOnWire,
              inBase, inBase);
    CheckRead(
        __LINE__, ExtendedPositionRequest(S2, UserCoordinate, 7, 3), Read(829, 0, Words({2, 2, 0x30008, 0})),
        Words({4, 0x20007, 0, 0}) + axesOnWire,
        PositionData{.coordinateType = UserCoordinate, .toolNumber = 2, .userCoordinateNumber = 7, .axes = cartesian});
}

TEST(Requests, ReadJobs) {
    CheckRead(__LINE__, ExecutingJobRequest(TesselTaskNumber::Sub5), Read(115, 6),
              Text("WELD", 32) + Words({12, 3, 5000}), JobData{"WELD" + std::string(28, '\0'), 12, 3, 50});
    CheckRead(__LINE__, JobStackRequest(TesselTaskNumber::Sub5), Read(981, 0, U32(5)),
              Words({1}) + Text("MAIN", 33) + Text("OTHER", 33),
              std::vector<std::string>{"MAIN" + std::string(29, '\0')});
}

TEST(Requests, ReadVariables) {
    constexpr int countFromOne = 0;
    CheckRead(__LINE__, ScalarRead<std::uint8_t>(CommandNumber::ByteVariable, 2048, countFromOne), ReadOne(122, 2049),
              U8(200), ByteVariableData{200, 2048}, ByteVariableData{0, 2048});
    CheckRead(__LINE__, ScalarRead<std::int16_t>(CommandNumber::IntegerVariable, 0, 1), ReadOne(123, 0), U16(-2),
              IntegerVariableData{-2, 0});
    CheckRead(__LINE__, ScalarRead<std::int32_t>(CommandNumber::DoubleIntVariable, 3, 1), ReadOne(124, 3), U32(-3),
              DoubleIntVariableData{-3, 3}, DoubleIntVariableData{0, 3});
    CheckRead(__LINE__, ScalarRead<float>(CommandNumber::RealVariable, 4, 1), ReadOne(125, 4), U32(0xbe200000),
              RealVariableData{-0.15625F, 4}, RealVariableData{0, 4});
    CheckRead(__LINE__, StringRead(CommandNumber::StringVariable, 5, countFromOne), ReadOne(140, 6),
              Text(std::string_view("a\0b", 3)), StringVariableData{std::string("a\0b", 3), 5},
              StringVariableData{"", 5});
    CheckRead(__LINE__, RobotPositionVariableRead(CommandNumber::RobotPositionVariable, 6, countFromOne), Read(127, 7),
              Words({17, 0, 1, 0, 0}) + axesOnWire,
              RobotPositionVariableData{{.coordinateType = RobotCoordinate, .toolNumber = 1, .axes = cartesian}, 6},
              RobotPositionVariableData{{}, 6});
    // A successful read of these two hands back index 0.
    CheckRead(__LINE__, BasePositionVariableRead(CommandNumber::BasePositionVariable, 7, 1), Read(128, 7),
              Words({19}) + axesOnWire,
              BaseAxisPositionVariableData{{.coordinateType = UserCoordinate, .axes = baseAxes}, 0},
              BaseAxisPositionVariableData{{}, 7});
    CheckRead(__LINE__, StationPositionVariableRead(CommandNumber::StationPositionVariable, 8, 1), Read(129, 8),
              Words({19}) + axesOnWire,
              StationPositionVariableData{{.coordinateType = UserCoordinate, .axes = pulses}, 0},
              StationPositionVariableData{{}, 8});
    CheckRead(__LINE__, RegisterRead{9}, ReadOne(121, 9), U16(0xfedc), std::uint16_t{0xfedc});
    CheckRead(__LINE__, SignalGroupRead(27010), ReadOne(120, 2701), U8(0x5a), std::uint8_t{0x5a}, std::uint8_t{0x5a});
    EXPECT_EQ(Rs022FromFile("//RS\r\nx y 1\r\n0,0,1,0").value_or(-1), 1);
    EXPECT_FALSE(Rs022FromFile("//RS\r\nx y 1\r\n0,0"));
}

TEST(Requests, ReadMotion) {
    CheckRead(__LINE__, TargetProgressRequest{TargetControlGroup::GroupTwo}, Read(844, 0, U32(1)),
              Words({0, 0x3fe80000}), 0.75);
    CheckRead(__LINE__, MotionSlotRequest(33), Read(924, 0, Words({11, 0, 33})), U32(17), S1, ControlGroupId{});
    CheckRead(__LINE__, KinematicTypeRequest{}, Read(924, 0, Words({1, 1, 430})), U32(1), KinematicType::Delta,
              KinematicType::Delta);
}

TEST(Requests, Write) {
    auto const one = [](unsigned command, unsigned instance, Bytes const& payload) {
        return RobotRequest(command, instance, 1, 16, payload);
    };
    auto const whole = [](unsigned command, unsigned instance, Bytes const& payload) {
        return RobotRequest(command, instance, 0, 2, payload);
    };
    CheckWrite(__LINE__, SwitchRequest{SwitchRequest::hold, SignalStatus::Off}, one(131, 1, U32(2)));
    CheckWrite(__LINE__, SwitchRequest{SwitchRequest::servos, SignalStatus::On}, one(131, 2, U32(1)));
    CheckWrite(__LINE__, CycleModeRequest(CycleMode::Automatic), one(132, 2, U32(3)));
    CheckWrite(__LINE__, JobStartRequest{}, one(134, 1, U32(1)));
    CheckWrite(__LINE__, ResetAlarmRequest, one(130, 1, U32(1)));
    CheckWrite(__LINE__, CancelErrorRequest, one(130, 2, U32(1)));
    CheckWrite(__LINE__, JobSelectRequest("weld.jbi", 7), whole(135, 1, Text("WELD", 32) + U32(7)));
    CheckWrite(__LINE__, SignalGroupWrite<std::uint64_t>{2701, 0x5a}, one(120, 2701, Little(0x5a, 8)));
    CheckWrite(__LINE__, SignalWrite{{10010, 1}}, whole(909, 0, Words({10010, 1})));
    CheckWrite(__LINE__, WriteRequest(CommandNumber::IntegerVariable, IntegerVariableData{-2, 0}, 1),
               one(123, 0, U16(-2)));
    CheckWrite(__LINE__, WriteRequest(CommandNumber::DoubleIntVariable, DoubleIntVariableData{-3, 3}, 0),
               one(124, 4, U32(-3)));
    CheckWrite(__LINE__, WriteRequest(CommandNumber::RealVariable, RealVariableData{-0.15625F, 4}, 1),
               one(125, 4, U32(0xbe200000)));
    CheckWrite(__LINE__, MotionStartRequest{}, whole(839, 0, U32(0)));
    CheckWrite(__LINE__, MotionStopRequest{}, whole(840, 0, U32(0)));
    CheckWrite(__LINE__, ClearTargetsRequest{{15}}, whole(841, 0, Words({15, 0})));
    CheckWrite(__LINE__, SetToolRequest{{TargetControlGroup::GroupThree, 4}}, whole(846, 0, Words({2, 4})));
    CheckWrite(__LINE__, SetAlarmRequest("Servo Off", 9), whole(916, 0, U16(8015) + Text("Servo Off", 32) + U16(9)));

    std::string const text = "0123456789abcdefghijklmnopqrstuvwxyzABCD";
    struct {
        std::string text;
        std::size_t onPendant, inVariable;
    } const texts[] = {
        {"", 0, 0},
        {text.substr(0, 30), 30, 30},
        {text.substr(0, 32), 30, 32},
        {text, 30, 32},
        {text + std::string(65536 + 4 - 40, 'x'), 4, 4}, // only the low 16 bits of the length count
    };
    for (auto const& [shown, onPendant, inVariable] : texts) {
        CheckWrite(__LINE__, PendantMessageRequest(shown), one(133, 1, Text(text.substr(0, onPendant))));
        CheckWrite(__LINE__, WriteRequest(CommandNumber::StringVariable, StringVariableData{shown, 4}, 1),
                   one(140, 4, Text(text.substr(0, inVariable))),
                   shown.size() == text.size() ? "OK String was truncated to 32 characters" : "OK");
    }
}

/// What a fleet does: several sequences under way in one thread, each a step at a time.
TEST(Requests, SequencesAreTakenAStepAtATime) {
    ActiveAlarms active;
    AlarmHistory history;
    std::bitset<16> word;
    ActiveAlarmsSequence activeSequence(active);
    AlarmHistorySequence historySequence(AlarmCategory::Minor, 2, history);
    SignalWordSequence wordSequence(20, word);
    IncomingPacket<FaultMessages::AlarmDataMsg> alarm;
    for (std::uint16_t step = 1; step <= 4; ++step) {
        EXPECT_EQ(activeSequence.Next()->instance, step);
        EXPECT_EQ(activeSequence.Next()->instance, step); // asking again changes nothing
        alarm.payload.code = step % 2;
        activeSequence.Take({}, alarm);
        if (step <= 2) {
            EXPECT_EQ(historySequence.Next()->instance, 1000 + step);
            alarm.payload.code = step;
            historySequence.Take({}, alarm);
            EXPECT_EQ(wordSequence.Next()->instance, step + 1);
            IncomingPacket<std::uint8_t> group;
            group.payload = static_cast<std::uint8_t>(step);
            wordSequence.Take({}, group);
        }
    }
    EXPECT_FALSE(activeSequence.Next() || historySequence.Next() || wordSequence.Next());
    EXPECT_EQ(active.numberOfAlarms, 2U);
    EXPECT_EQ(history.alarms[1].code, 2U);
    EXPECT_EQ(word.to_ulong(), 0x0201U);
    for (unsigned failed = 1; failed <= 2; ++failed) {
        SignalWordSequence sequence(20, word);
        for (unsigned step = 1; step <= failed; ++step) {
            ASSERT_TRUE(sequence.Next());
            sequence.Take(step == failed ? refusal : StatusInfo{}, {});
        }
        EXPECT_FALSE(sequence.Next());
        EXPECT_EQ(sequence.Result().StatusCode, 8288);
        EXPECT_TRUE(word.none());
    }
}

TEST(Requests, ADownloadAcknowledgesEachBlockAndWaitsForNoneAfterTheLast) {
    FileDownload download(FileServices::SaveFile, "TEST.JBI");
    FileReply reply;
    reply.header.requestId = 9;
    struct {
        std::uint32_t acknowledged; ///< in the request
        std::uint32_t answered;
        std::uint16_t payloadSize;
    } const steps[] = {{0, 7, 8}, {7, 3, 0}, {3, 0x80000009, 0}, {0x80000009, 0, 0}};
    for (auto const& step : steps) {
        bool const isFirst = step.payloadSize != 0;
        auto const next = download.Next();
        ASSERT_TRUE(next);
        EXPECT_EQ(next->request.header.blockNumber, step.acknowledged);
        EXPECT_EQ(next->request.header.ack, isFirst ? 0 : 1);
        EXPECT_EQ(next->request.header.payloadSize, step.payloadSize);
        EXPECT_EQ(next->requestId, isFirst ? std::nullopt : std::optional<std::uint8_t>(9));
        EXPECT_EQ(next->waitForReply, step.answered != 0);
        EXPECT_TRUE(OnlyReads(next->request.header.division, {}, next->request.subHeader.service));
        reply.header.blockNumber = step.answered;
        reply.payload = {'a', 'b', '\0', 'c'};
        download.Take({}, reply);
    }
    EXPECT_FALSE(download.Next());
    std::string text;
    download.MoveTextTo(text);
    EXPECT_EQ(text, "ababab");
}

} // namespace
} // namespace harvlink::test
