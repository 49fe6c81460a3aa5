#include "controller/StatusImplementation.h"

#include <cstdlib>
#include <ctime>
#include <stdexcept>

#include "support/Printed.h"
#include "support/ScriptedController.h"
#include "support/TimeZone.h"

namespace harvlink::test {
namespace {

constexpr char const* wrongTimeType =
    "Invalid TimeType selected. An example of this may be selection of Station operating time when no station exists.";

class ControllerState : public testing::Test {
protected:
    ScriptedController controller;
    std::unique_ptr<NetworkManager> manager = controller.Connect();
    StatusImplementation state{manager.get()};
};

TEST_F(ControllerState, EveryBitOfTheStateWords) {
    // Cycle mode, control mode, then one letter per flag: running, hold, alarm, error, servo.
    struct {
        std::uint32_t first, second;
        char const* summary;
    } const cases[] = {
        {0x00, 0x00, "Automatic Teach ....."},
        {0x01, 0x00, "Step Teach ....."},
        {0x02, 0x00, "Cycle Teach ....."},
        {0x03, 0x00, "Step Teach ....."},
        {0x04, 0x00, "Automatic Teach ....."},
        {0x08, 0x00, "Automatic Teach r...."},
        {0x30, 0x00, "Automatic Teach ....."},
        {0x40, 0x00, "Automatic Play ....."},
        {0x80, 0x00, "Automatic Remote ....."},
        {0xc0, 0x00, "Automatic Remote ....."},
        {0x00, 0x01, "Automatic Teach ....."},
        {0x00, 0x02, "Automatic Teach .h..."},
        {0x00, 0x04, "Automatic Teach .h..."},
        {0x00, 0x08, "Automatic Teach .h..."},
        {0x00, 0x10, "Automatic Teach ..a.."},
        {0x00, 0x20, "Automatic Teach ...e."},
        {0x00, 0x40, "Automatic Teach ....s"},
        {0x00, 0x80, "Automatic Teach ....."},
        {0xffffff00, 0xffffff00, "Automatic Teach ....."},
        {0xff, 0xff, "Step Remote rhaes"},
    };
    for (auto const& [first, second, summary] : cases) {
        controller.Expect(RobotRequest(114, 1, 0, 1), Payload(Words({first, second})));
        ControllerStateData data{.isRunning = true, .isServoOn = true};
        EXPECT_EQ(state.ReadState(data).StatusCode, 0);
        std::string flags = ".....";
        flags[0] = data.isRunning ? 'r' : '.';
        flags[1] = data.isProgramPendantHold ? 'h' : '.';
        flags[2] = data.isAlarming ? 'a' : '.';
        flags[3] = data.isErroring ? 'e' : '.';
        flags[4] = data.isServoOn ? 's' : '.';
        EXPECT_EQ(HelperFunction::GetCycleModeStringFromEnum(data.cycleMode) + ' ' +
                      HelperFunction::GetControlModeStringFromEnum(data.controlMode) + ' ' + flags,
                  summary)
            << first << ' ' << second;
    }
}

TEST_F(ControllerState, SystemInformationKeepsWholeFields) {
    SystemInfoData info;
    controller.Expect(RobotRequest(137, 0x0065, 0, 1),
                      Payload(Text("YA4.10", 24) + Text("MODEL-7", 16) + Text("unread", 8)));
    EXPECT_EQ(state.ReadSystemInformation(static_cast<SystemInfoId>(0x70065), info).StatusCode, 0);
    EXPECT_EQ(info.softwareVersion, std::string("YA4.10") + std::string(18, '\0'));
    EXPECT_EQ(Printed(info),
              "Software Version: " + info.softwareVersion + "\nModel Name: MODEL-7" + std::string(9, '\0'));
    controller.Expect(RobotRequest(137, 11, 0, 1), Refusal(45063));
    StatusInfo const refused = state.ReadSystemInformation(SystemInfoId::Robot1, info);
    EXPECT_EQ(Printed(refused), "Code (45063): The system ID requested is invalid");
}

TEST_F(ControllerState, TimeInstances) {
    struct {
        int type, group, application, instance; ///< 500 if refused
    } const cases[] = {
        {1, 1, 9, 1},      {1, 99, 0, 1},      {10, 21, 0, 10},   {11, 1, 0, 11},   {11, 8, 0, 18},
        {11, 9, 0, 500},   {11, 21, 0, 500},   {20, 21, 0, 21},   {20, 44, 0, 44},  {20, 45, 0, 500},
        {20, 18, 0, 500},  {20, 1, 0, 500},    {110, 11, 0, 110}, {111, 3, 0, 113}, {111, 11, 0, 500},
        {120, 21, 0, 121}, {120, 44, 0, 144},  {210, 1, 0, 210},  {211, 8, 0, 218}, {211, 0, 0, 500},
        {220, 21, 0, 500}, {221, 21, 0, 221},  {221, 44, 0, 244}, {221, 1, 0, 500}, {300, 1, 7, 307},
        {300, 99, 0, 300}, {300, 1, 200, 500}, {121, 21, 0, 500}, {0, 1, 0, 500},   {-1, 1, 0, 500},
    };
    for (auto const& example : cases) {
        auto const type = static_cast<TimeType>(example.type);
        auto const group = static_cast<ControlGroupId>(example.group);
        auto const application = static_cast<ApplicationNumber>(example.application);
        EXPECT_EQ(state.GetTimeInstanceValue(group, type, application), example.instance) << example.type;
        EXPECT_EQ(state.IsTimeTypeValid(type, group), example.instance != 500 || example.application == 200);
        TimeData time{1, {}};
        if (example.instance != 500) {
            controller.Expect(RobotRequest(136, static_cast<unsigned>(example.instance), 0, 1), Refusal(51200));
        }
        StatusInfo const status = state.ReadOperatingTimes(group, type, time, application);
        EXPECT_EQ(status.StatusCode, example.instance != 500 ? 51200 : 40961);
        EXPECT_EQ(status.Message, example.instance != 500
                                      ? "Invalid parameter. Check controlGroupId and ensure that it "
                                        "exists on your controller."
                                      : wrongTimeType);
        EXPECT_EQ(time.startTimeEpoch, 0);
    }
    TimeData time;
    controller.Expect(RobotRequest(136, 12, 0, 1), Refusal(40961));
    EXPECT_EQ(state.ReadOperatingTimes(ControlGroupId::R2, TimeType::ServoPowerRobot, time, {}).Message, wrongTimeType);
}

TEST_F(ControllerState, TimesAreParsed) {
    struct {
        char const* start;
        char const* elapsed;
        char const* printed; ///< or the exception, named by the first field that cannot be parsed
    } const cases[] = {
        {"2011/10/04 15:45", "000123:45'06",
         "Start Time Epoch: 1317743100\nElapsed Time: 123 Hours : 45 Minutes : 6 Seconds."},
        {"1970/01/01 00:00", "   7: 5' 9", "Start Time Epoch: 0\nElapsed Time: 7 Hours : 5 Minutes : 9 Seconds."},
        {"1970/01/02 00:01", "999999:59'59",
         "Start Time Epoch: 86460\nElapsed Time: 999999 Hours : 59 Minutes : 59 Seconds."},
        {"1970/01/01 00:00", "", "invalid argument"},
        {"1970/01/01 00:00", "12", "invalid argument"},
        {"1970/01/01 00:00", "12:30", "invalid argument"},
        {"1970/01/01 00:00", ":30'1", "invalid argument"},
        {"1970/01/01 00:00", "1:'1", "invalid argument"},
        {"1970/01/01 00:00", "1:2'", "invalid argument"},
        {"1970/01/01 00:00", "99999999999:", "out of range"},
        {"1970/01/01 00:00", "9999999999:x", "out of range"},
        {"1970/01/01 00:00", "1:9999999999", "out of range"},
        {"1970/01/01 00:00", ":'9999999999", "invalid argument"},
        {"1970/01/01 00:00", "x:1'1", "invalid argument"},
    };
    TimeZone const zone("UTC0");
    for (auto const& [start, elapsed, printed] : cases) {
        controller.Expect(RobotRequest(136, 1, 0, 1), Payload(Text(start, 16) + Text(elapsed, 12)));
        TimeData time;
        auto const read = [&, this]() -> std::string {
            try {
                EXPECT_EQ(state.ReadOperatingTimes(ControlGroupId::R1, TimeType::ControlPower, time, {}).StatusCode, 0);
                return Printed(time);
            } catch (std::invalid_argument const&) {
                return "invalid argument";
            } catch (std::out_of_range const&) {
                return "out of range";
            }
        };
        EXPECT_EQ(read(), printed) << elapsed;
    }
}

TEST_F(ControllerState, SystemParameters) {
    int value = 0;
    controller.Expect(RobotRequest(924, 0, 0, 1, Words({1, 0, 541})), Payload(U32(3)));
    EXPECT_EQ(state.ReadSystemParam(SystemParameterType::S2C, 541, value).StatusCode, 0);
    EXPECT_EQ(value, 3);
    struct {
        std::uint16_t added;
        char const* printed;
    } const refusals[] = {
        {65535, "Code (196630): The system parameter group is invalid"},
        {65534, "Code (196625): The system parameter requested is invalid"},
    };
    for (auto const& [added, printed] : refusals) {
        controller.Expect(RobotRequest(924, 0, 0, 1, Words({4, 0, 22})), Refusal(added));
        EXPECT_EQ(Printed(state.ReadSystemParam(SystemParameterType::RS, 22, value)), printed);
    }
    for (int const type : {0, 5, 6}) {
        value = 5;
        StatusInfo const status = state.ReadSystemParam(static_cast<SystemParameterType>(type), 22, value);
        EXPECT_EQ(Printed(status), "Code (196626): This parameter type requires a group to be specified, use the other "
                                   "overload for this function.");
        EXPECT_EQ(value, 0);
    }
}

TEST(ControllerStateText, WordsAndRecords) {
    EXPECT_EQ(HelperFunction::GetCycleModeStringFromEnum(static_cast<CycleMode>(3)), "");
    EXPECT_EQ(HelperFunction::GetControlModeStringFromEnum(static_cast<ControllerStateData::ControlMode>(-1)), "");
    ControllerStateData const state{
        CycleMode::Cycle, true, ControllerStateData::ControlMode::Play, true, true, true, true};
    EXPECT_EQ(Printed(state), "Running Mode: Cycle\nIs Running: true\nControl Mode: Play\nIs Program Pendant Hold: "
                              "true\nIs Alarming: true\nIs Erroring: true\nIs Servo On: true");
}

} // namespace
} // namespace harvlink::test
