#include <gtest/gtest.h>

#include "simulator/jobs/JobParser.h"
#include "simulator_files/FileClient.h"

namespace harvlink::test {
namespace {

using std::chrono::milliseconds;

TEST(JobParser, ReportsWhatIsWrongAndWhere) {
    struct Case {
        char const* lines;
        int refusal;
        unsigned fileLine;
    };
    for (auto const& [lines, refusal, fileLine] : std::initializer_list<Case>{
             {"", 0, 0},
             {"'text\n*A1\n  TIMER  T=1.50 \nJUMP *A1\nCALL JOB:X-1\nDOUT OT#(3) OFF\nNOP\n\n", 0, 0},
             {"SET B000 255\nSET I1 -32768\nSET D99999 2147483647\nSET R000 -1.5e3\nINC B0\nDEC R1\n", 0, 0},
             {"*A\nJUMP *A IF B001<>10\nWAIT IN#(1)=ON\nWAIT R000>=-0.5\nJUMP *A IF OT#(2)=OFF\n", 0, 0},
             {"MOVE P001\n", 0x4230, 5},
             {"\nINC\n", 0x5180, 6},
             {"SET B000 1 2 3 4 5 6\n", 0x5180, 5},
             {"INC X000\n", 0x5110, 5},
             {"INC B123456\n", 0x5110, 5},
             {"INC B-1\n", 0x5110, 5},
             {"SET B000 256\n", 0x5200, 5},
             {"SET I000 1.5\n", 0x5110, 5},
             {"SET R000 nan\n", 0x5110, 5},
             {"SET R000 1e39\n", 0x5200, 5},
             {"TIMER T=656\n", 0x5200, 5},
             {"TIMER T = 1\n", 0x5180, 5},
             {"TIMER 1\n", 0x5110, 5},
             {"DOUT IN#(1) ON\n", 0x5110, 5},
             {"DOUT OT#(0) ON\n", 0x5110, 5},
             {"DOUT OT#(1 ON\n", 0x5110, 5},
             {"DOUT OT#( ON\n", 0x5110, 5},
             {"CALL PICK\n", 0x5110, 5},
             {"CALL JOB:../X\n", 0x5110, 5},
             {"WAIT IN#(1)<ON\n", 0x5110, 5},
             {"WAIT IN#(1)\n", 0x5110, 5},
             {"WAIT B000=<1\n", 0x5110, 5},
             {"NOP\nJUMP *A\n", 0x5110, 6},
             {"*A\n*A\n", 0x5110, 6},
             {"*A_B\n", 0x5110, 5},
             {"*\n", 0x5110, 5},
             {"END\nNOP\n", 0x5110, 6},
         }) {
        auto const result = simulator::ParseJob(JobText("J", lines));
        EXPECT_EQ(static_cast<int>(result.refusal), refusal) << lines;
        EXPECT_EQ(result.fileLine, fileLine) << lines;
    }
    for (auto const& [text, refusal] :
         std::initializer_list<std::pair<char const*, int>>{{"", 0x5130},
                                                            {"//NAME J\r\nNOP\r\nEND", 0x5130},
                                                            {"//NAME J\r\nEND\r\n", 0x5130},
                                                            {"//NAME J\r\nNOP\r\n", 0x5130},
                                                            {"//NAME J\nNOP\nEND\n", 0x5130},
                                                            {"NOP\r\nEND\r\n", 0x5310},
                                                            {"//NAME J\r\n//NAME J\r\nNOP\r\nEND\r\n", 0x5310},
                                                            {"//NAME K\r\nNOP\r\nEND\r\n", 0x5390},
                                                            {"//NAME J\r\nNOP\r\nEND\r\n", 0}}) {
        EXPECT_EQ(static_cast<int>(simulator::CheckJobText("J", text)), refusal) << text;
    }
    std::string many;
    for (std::size_t i = 0; i < simulator::MaxJobLines; ++i) {
        many += "'\n";
    }
    EXPECT_EQ(simulator::ParseJob(JobText("J", many)).refusal, simulator::JobRefusal::OutOfMemory);
}

/// A controller in remote mode with servo power and a few jobs.
class JobEngineTest : public testing::Test {
protected:
    JobEngineTest() {
        Put("COUNT", "'not a step\nINC I000\nTIMER T=0.50\nINC I000\n");
        Put("OUTER", "CALL JOB:COUNT\nDOUT OT#(9) ON\n");
        Put("SELF", "CALL JOB:SELF\n");
        Put("WAITING", "WAIT IN#(2)=ON\nINC B000\n");
        model.SetServo(true);
    }

    void Put(std::string const& name, std::string_view lines) {
        EXPECT_EQ(parts.files.Put(name + ".JBI", JobText(name, lines)), Refusal::None);
    }

    Refusal Select(std::string const& name, std::uint32_t line = 0) { return parts.jobs.Select(name, line); }
    Refusal Start() { return parts.jobs.Start(); }

    std::string Place() {
        auto const place = parts.jobs.Current();
        return std::string(place.name) + " " + std::to_string(place.line) + " " + std::to_string(place.step) +
               (parts.jobs.IsRunning() ? " runs" : " stands");
    }

    std::string After(int time) {
        controller.Advance(milliseconds(time));
        return Place();
    }

    void RunToEnd(std::string const& lines) {
        Put("RUN", lines);
        EXPECT_EQ(Select("RUN"), Refusal::None) << lines;
        EXPECT_EQ(Start(), Refusal::None) << lines;
        EXPECT_EQ(After(1000), "RUN 0 0 stands") << lines;
    }

    VirtualClient client;
    VirtualController& controller = client.controller;
    ControllerParts& parts = controller.WithParts([](ControllerParts& inner) -> ControllerParts& { return inner; });
    ControllerModel& model = parts.model;
};

TEST_F(JobEngineTest, AdvancesInTimeThroughACallAndBack) {
    EXPECT_EQ(Start(), Refusal::NoExecutionJob);
    EXPECT_EQ(Select("outer"), Refusal::None);
    EXPECT_EQ(Start(), Refusal::None);
    EXPECT_EQ(Start(), Refusal::RobotIsOperating);
    EXPECT_EQ(Select("COUNT"), Refusal::RobotIsOperating);
    EXPECT_EQ(After(19), "OUTER 0 0 runs");
    EXPECT_EQ(After(1), "OUTER 1 1 runs");
    EXPECT_EQ(After(20), "COUNT 0 0 runs");
    EXPECT_EQ(FileClient{controller}.Delete("OUTER.JBI"), 0x2010);
    EXPECT_EQ(FileClient{controller}.Load("COUNT.JBI", JobText("COUNT", "")), 0x2010);
    EXPECT_EQ(After(40), "COUNT 3 2 runs");
    EXPECT_EQ(model.variables.integers[0], 1);
    EXPECT_EQ(After(499), "COUNT 3 2 runs");
    EXPECT_EQ(After(1), "COUNT 4 3 runs");
    EXPECT_EQ(After(40), "OUTER 2 2 runs");
    EXPECT_EQ(model.signals.Read(10020), false);
    EXPECT_EQ(After(20), "OUTER 3 2 runs");
    EXPECT_EQ(model.signals.Read(10020), true);
    EXPECT_EQ(After(20), "OUTER 0 0 stands");
    EXPECT_EQ(model.variables.integers[0], 2);
}

TEST_F(JobEngineTest, StopsAndGoesOnWhereItStood) {
    struct Case {
        char const* what;
        void (*stop)(ControllerModel&);
        Refusal refusal;
        void (*release)(ControllerModel&);
    };
    for (auto const& [what, stop, refusal, release] : std::initializer_list<Case>{
             {"hold", [](ControllerModel& inner) { inner.SetHold(simulator::HoldSource::Command, true); },
              Refusal::CommandHold,
              [](ControllerModel& inner) { inner.SetHold(simulator::HoldSource::Command, false); }},
             {"servo", [](ControllerModel& inner) { inner.SetServo(false); }, Refusal::ServoPowerIsOff,
              [](ControllerModel& inner) { inner.SetServo(true); }},
             {"mode", [](ControllerModel& inner) { inner.SetMode(simulator::Mode::Play); }, Refusal::RemoteModeNeeded,
              [](ControllerModel& inner) { inner.SetMode(simulator::Mode::Remote); }},
             {"alarm", [](ControllerModel& inner) { inner.RaiseAlarm(4000, 1, "X"); }, Refusal::AlarmOrErrorIsActive,
              [](ControllerModel& inner) {
                  inner.ResetAlarms();
                  inner.SetServo(true);
              }}}) {
        SCOPED_TRACE(what);
        EXPECT_EQ(Select("COUNT", 2), Refusal::None);
        EXPECT_EQ(Start(), Refusal::None);
        EXPECT_EQ(After(220), "COUNT 3 2 runs"); // 200 of 500 ms
        stop(model);
        EXPECT_EQ(After(5000), "COUNT 3 2 stands");
        EXPECT_EQ(Start(), refusal);
        release(model);
        EXPECT_EQ(Place(), "COUNT 3 2 stands") << "only a start goes on";
        EXPECT_EQ(Start(), Refusal::None);
        EXPECT_EQ(After(299), "COUNT 3 2 runs");
        EXPECT_EQ(After(1), "COUNT 4 3 runs");
        After(1000);
    }
}

TEST_F(JobEngineTest, ObeysTheCycleMode) {
    model.SetCycle(CycleMode::Step);
    EXPECT_EQ(Select("COUNT"), Refusal::None);
    for (auto const* const place : {"COUNT 1 0 stands", "COUNT 3 2 stands", "COUNT 4 3 stands"}) {
        EXPECT_EQ(Start(), Refusal::None);
        EXPECT_EQ(After(1000), place);
    }
    EXPECT_EQ(Select("WAITING", 1), Refusal::None);
    EXPECT_EQ(Start(), Refusal::None);
    EXPECT_EQ(After(1000), "WAITING 1 1 runs");
    model.signals.Write(11, true);
    EXPECT_EQ(After(20), "WAITING 2 2 stands");
    model.SetCycle(CycleMode::Automatic);
    EXPECT_EQ(Start(), Refusal::None);
    controller.Advance(milliseconds(40 + 80 * 300));
    EXPECT_EQ(model.variables.bytes[0], (1 + 300) % 256) << "goes on from 255 at 0";
}

TEST_F(JobEngineTest, RaisesAnAlarmWhereItCannotGoOn) {
    Put("LOST", "CALL JOB:NOWHERE\n");
    Put("BADVAR", "INC B9999\n");
    Put("BADSIG", "DOUT OT#(99999) ON\n");
    Put("OTHERCLASS", "WAIT IN#(8001)=ON\n");
    Put("BADWAIT", "WAIT D99999=1\n");
    Put("BADJUMP", "JUMP *A IF OT#(9999)=ON\n*A\n");
    for (auto const& [name, code] : std::initializer_list<std::pair<char const*, unsigned>>{{"LOST", 4450},
                                                                                            {"SELF", 4451},
                                                                                            {"BADVAR", 4452},
                                                                                            {"BADWAIT", 4452},
                                                                                            {"BADSIG", 4453},
                                                                                            {"OTHERCLASS", 4453},
                                                                                            {"BADJUMP", 4453}}) {
        EXPECT_EQ(Select(name), Refusal::None);
        EXPECT_EQ(Start(), Refusal::None);
        EXPECT_EQ(After(2000), std::string(name) + " 1 1 stands");
        EXPECT_EQ(model.alarms.Active(1).code, code) << name;
        EXPECT_EQ(model.alarms.Active(1).subcode, 1U) << name;
        EXPECT_LE(parts.jobs.Depth(), simulator::JobEngine::MaxDepth);
        model.ResetAlarms();
        model.SetServo(true);
    }
}

TEST_F(JobEngineTest, ComparesWithEverySign) {
    for (auto const& [sign, expected] : std::initializer_list<std::pair<std::string, std::string>>{
             {"=", "010"}, {"<>", "101"}, {"<", "100"}, {"<=", "110"}, {">", "001"}, {">=", "011"}}) {
        std::string holds;
        for (auto const* const value : {"-1", "0", "1"}) {
            RunToEnd("SET I005 " + std::string(value) + "\nSET B005 1\nJUMP *HOLDS IF I005" + sign +
                     "0\nSET B005 0\n*HOLDS\n");
            holds += std::to_string(model.variables.bytes[5]);
        }
        EXPECT_EQ(holds, expected) << sign;
    }
}

TEST_F(JobEngineTest, CountsVariablesWithinTheirRange) {
    struct Case {
        char const* lines;
        double (*read)(simulator::Variables const&);
        double expected;
    };
    auto const byte = [](simulator::Variables const& all) -> double { return all.bytes[5]; };
    for (auto const& [lines, read, expected] : std::initializer_list<Case>{
             {"SET B005 255\nINC B005\n", byte, 0},
             {"SET B005 0\nDEC B005\n", byte, 255},
             {"SET I005 32767\nINC I005\n", [](auto const& all) -> double { return all.integers[5]; }, -32768},
             {"SET D005 -2147483648\nDEC D005\n", [](auto const& all) -> double { return all.doubleInts[5]; },
              2147483647},
             {"SET R005 1.5\nINC R005\n", [](auto const& all) -> double { return all.reals[5]; }, 2.5},
             {"SET D005 7\nSET R005 2.5\nSET B005 0\nWAIT D005>6\nWAIT R005<=2.5\nWAIT OT#(9)=OFF\nINC B005\n", byte,
              1}}) {
        RunToEnd(lines);
        EXPECT_EQ(read(model.variables), expected) << lines;
    }
}

TEST_F(JobEngineTest, TakesUpAFileThatChangedWhileItStood) {
    model.SetCycle(CycleMode::Step);
    EXPECT_EQ(Select("OUTER", 1), Refusal::None);
    EXPECT_EQ(Start(), Refusal::None);
    EXPECT_EQ(After(100), "COUNT 0 0 stands");
    Put("OUTER", "");
    EXPECT_EQ(Start(), Refusal::DataOverRange) << "no call to come back to";
    EXPECT_EQ(FileClient{controller}.Delete("OUTER.JBI"), 0);
    EXPECT_EQ(Start(), Refusal::NoSuchJob);
}

TEST_F(JobEngineTest, KeepsUpWithAnyClock) {
    model.SetCycle(CycleMode::Automatic);
    Put("TIGHT", "*A\nJUMP *A\n");
    EXPECT_EQ(Select("TIGHT"), Refusal::None);
    EXPECT_EQ(Start(), Refusal::None);
    parts.jobs.Tick(std::chrono::hours(1000));
    EXPECT_TRUE(parts.jobs.IsRunning());
}

TEST_F(JobEngineTest, AnswersTheJobCommands) {
    for (auto const& [name, line, code] :
         std::initializer_list<std::tuple<std::string, unsigned, int>>{{"NONE", 0, 16448},
                                                                       {"../X", 0, 16448},
                                                                       {"", 0, 16448},
                                                                       {std::string(32, 'A'), 0, 16448},
                                                                       {"COUNT", 6, 20992},
                                                                       {"OUTER", 1, 0}}) {
        EXPECT_EQ(client.Ask(135, 1, 0, 2, Text(name, 32) + U32(line)).code, code) << name;
    }
    EXPECT_EQ(Start(), Refusal::None);
    controller.Advance(milliseconds(80));
    for (auto const& [instance, code] : {std::pair{0U, 40961}, {9U, 40961}, {8U, 0}}) {
        EXPECT_EQ(client.Ask(115, instance, 0, 1).code, code) << instance;
    }
    EXPECT_EQ(client.Ask(115, 1, 0, 1), (Answer{0, Text("COUNT", 32) + Words({3, 2, 10000})}));
    EXPECT_EQ(client.Ask(981, 0, 0, 1, U32(8)).code, 65535);
    EXPECT_EQ(client.Ask(981, 0, 0, 1, U32(0)),
              (Answer{0, U32(2) + Text("OUTER", 33) + Text("COUNT", 33) + Bytes(330)}));
}

} // namespace
} // namespace harvlink::test
