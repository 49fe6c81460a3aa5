#include "controller/ControlCommandsImplementation.h"
#include "support/ScriptedController.h"
#include "wire/FakeTransport.h"

namespace harvlink::test {
namespace {

class ControlCommands : public testing::Test {
protected:
    static Bytes Command(unsigned command, unsigned instance, Bytes const& payload) {
        return RobotRequest(command, instance, 1, 16, payload);
    }

    ScriptedController controller;
    std::unique_ptr<NetworkManager> manager = controller.Connect();
    ControlCommandsImplementation commands{manager.get()};
    Bytes const modeQuery = RobotRequest(114, 1, 1, 14);
};

TEST_F(ControlCommands, ServosExplainTheirFailure) {
    constexpr char const* notRemote = "Unable to turn on servos. Remote Mode is not selected.";
    struct {
        Reply command;
        std::vector<Reply> modes; ///< answers to the mode queries
        int code;
        char const* message;
    } const cases[] = {
        {{}, {Payload(U32(0))}, 0, "OK"},
        {{}, {Refusal(8288)}, 0, "OK"},
        {Refusal(8288), {Payload(U32(0x80)), Payload(U32(0x7f))}, 8288, notRemote},
        {Refusal(8288), {Payload(U32(0)), Payload(U32(0x80))}, 8288, "There is an active Error or Alarm."},
        {Refusal(8288), {Payload(U32(0x80)), Payload(U32(0x8000))}, 8288, notRemote}, // only the first byte
        {Refusal(8288), {Payload(U32(0x80)), Refusal(31)}, 8288, notRemote},
    };
    for (auto const& [command, modes, code, message] : cases) {
        for (auto const state : {SignalStatus::On, SignalStatus::Off}) {
            controller.Expect(Command(131, 2, U32(static_cast<int>(state))), command);
            for (Reply const& mode : modes) {
                controller.Expect(modeQuery, mode);
            }
            StatusInfo const status = commands.SetServos(state);
            EXPECT_EQ(status.StatusCode, code);
            EXPECT_EQ(status.Message, message);
        }
    }
    for (bool const isRemote : {true, false}) {
        controller.Expect(modeQuery, Payload(U32(isRemote ? 0xff : 0x7f)));
        EXPECT_EQ(commands.CheckExternalMode(), isRemote);
    }
}

TEST(ControlCommandsTimeout, IsFourfoldForTheServoCommandAndThenAsBefore) {
    FakeSession session(30);
    ControlCommandsImplementation commands(&session.manager);
    for (bool const answers : {true, false}) {
        session.record->periods.clear();
        session.record->onReceive = answers ? FakeTransport::AnswerAtOnce : FakeTransport::Silence;
        StatusInfo const status = commands.SetServos(SignalStatus::On);
        EXPECT_EQ(status.StatusCode, answers ? 0 : 0x30006);
        std::vector<long> microseconds;
        for (std::chrono::microseconds const& period : session.record->periods) {
            microseconds.push_back(static_cast<long>(period.count()));
        }
        EXPECT_EQ(microseconds,
                  answers ? (std::vector<long>{120000, 30000}) : (std::vector<long>{120000, 30000, 30000}));
    }
    session.record->onReceive = FakeTransport::AnswerAtOnce;
    session.record->periods.clear();
    session.Exchange();
    EXPECT_EQ(session.record->periods.at(0).count(), 30000);
}

} // namespace
} // namespace harvlink::test
