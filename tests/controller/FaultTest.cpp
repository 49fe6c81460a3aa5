#include "controller/FaultImplementation.h"
#include "support/Printed.h"
#include "support/ScriptedController.h"

namespace harvlink::test {
namespace {

Reply Alarm(unsigned code) {
    Bytes const time = code == 0 ? Bytes(16) : Text("2026/11/21 12:34");
    return Payload(Words({code, code + 1, 77}) + time + Text(code == 0 ? "" : "SERVO ERROR", 32));
}

class Fault : public testing::Test {
protected:
    /// Expects one request for each reply, with consecutive instances.
    void ExpectReads(unsigned command, unsigned firstInstance, std::vector<Reply> const& replies) {
        for (Reply const& reply : replies) {
            controller.Expect(RobotRequest(command, firstInstance++, 0, 1), reply);
        }
    }

    ScriptedController controller;
    std::unique_ptr<NetworkManager> manager = controller.Connect();
    FaultImplementation fault{manager.get()};
    ActiveAlarms active;
    AlarmHistory history;
};

TEST_F(Fault, AllFourPlacesAreRead) {
    ExpectReads(112, 1, {Alarm(4107), Alarm(0), Alarm(UINT32_MAX), Alarm(0)});
    EXPECT_EQ(fault.GetActiveAlarms(active).StatusCode, 0);
    EXPECT_EQ(active.numberOfAlarms, 2U);
    EXPECT_EQ(active.alarms[0].subcode, 4108U);
    EXPECT_EQ(active.alarms[0].time, "2026/11/21 12:34");
    EXPECT_EQ(active.alarms[0].name, "SERVO ERROR" + std::string(21, '\0')); // the whole field
    EXPECT_EQ(active.alarms[1].code, 0U);
    EXPECT_EQ(active.alarms[1].time, std::string(16, '\0'));
    EXPECT_EQ(active.alarms[2].code, UINT32_MAX);
    // The output operator prints as many places as were counted, so it shows the empty one and not the second alarm.
    std::string const none(32, '\0');
    EXPECT_EQ(Printed(active), "2 alarms active.\nAlarm 1 : Code: 4107\nSubcode: 4108\nTime: 2026/11/21 12:34\nName: " +
                                   active.alarms[0].name +
                                   "\nAlarm 2 : Code: 0\nSubcode: 1\nTime: " + none.substr(0, 16) + "\nName: " + none);

    EXPECT_EQ(Printed(ActiveAlarms()) + Printed(AlarmHistory()), "No active alarms.No alarms in history.");
}

TEST_F(Fault, HistoryEndsAtTheFirstEmptyEntry) {
    struct {
        int category;
        std::uint32_t quantity;
        std::vector<Reply> replies;
        int code;
        unsigned count;
    } const cases[] = {
        {0, 100, {Alarm(1), Alarm(2), Alarm(3), Alarm(0)}, 0, 3},
        {1000, 2, {Alarm(1), Alarm(2)}, 0, 2},
        {2000, 1, {Alarm(0)}, 0, 0},
        {3000, 5, {Alarm(9), Refusal(40961)}, 40961, 1},
        {4000, 0, {}, 0, 0},
        {4000, 101, std::vector<Reply>(100, Alarm(5)), 0, 100},
        {0, UINT32_MAX, std::vector<Reply>(100, Alarm(6)), 0, 100},
    };
    for (auto const& [category, quantity, replies, code, count] : cases) {
        SCOPED_TRACE(testing::Message() << category << ", " << quantity);
        history.alarms[99].code = 1;
        ExpectReads(113, static_cast<unsigned>(category) + 1, replies);
        EXPECT_EQ(fault.GetAlarmHistory(static_cast<AlarmCategory>(category), quantity, history).StatusCode, code);
        EXPECT_EQ(history.numberOfAlarms, count);
        EXPECT_EQ(history.alarms[99].code != 0, count == 100);
    }
    history.numberOfAlarms = 1;
    EXPECT_EQ(Printed(history).substr(0, 36), "1 alarms in history.\nAlarm 1 : Code:");
    for (int const category : {-1, 1, 500, 999, 5000}) {
        StatusInfo const status = fault.GetAlarmHistory(static_cast<AlarmCategory>(category), 1, history);
        EXPECT_EQ(status.StatusCode, 0x30017);
        EXPECT_EQ(status.Message, "Invalid Alarm Category");
        EXPECT_EQ(history.numberOfAlarms, 1U); // untouched
    }
}

TEST_F(Fault, ClearingCancelsThenResetsAndReportsTheReset) {
    Bytes const cancel = RobotRequest(130, 2, 1, 16, U32(1));
    Bytes const reset = RobotRequest(130, 1, 1, 16, U32(1));
    controller.Expect(cancel, Refusal(8288));
    controller.Expect(reset, Refusal(8272));
    EXPECT_EQ(fault.ClearAllFaults().StatusCode, 8272);
    controller.Expect(cancel, Refusal(8272));
    EXPECT_EQ(fault.CancelError().StatusCode, 8272);
}

} // namespace
} // namespace harvlink::test
