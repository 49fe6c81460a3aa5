#include "support/Program.h"

#include <array>
#include <chrono>
#include <filesystem>
#include <future>
#include <ostream>
#include <sstream>
#include <string>
#include <thread>
#include <utility>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "ToolTest.h"
#include "cli/output/Output.h"
#include "cli/program/CommandLine.h"
#include "cli/verbs/AllCommands.h"
#include "support/ScratchFolder.h"

namespace harvlink::cli {
namespace {

using simulator::ControllerModel;
using test::Program;
using test::ScratchFolder;

class ProgramTest : public ToolTest {};

TEST_F(ProgramTest, SaysWhatItDidAndHowItEnded) {
    ASSERT_NE(controller_, nullptr);
    struct Case {
        char const* line;
        int exit;
        char const* out; ///< a part of the output
        char const* err;
    };
    std::array<Case, 108> const cases{{
        {"status", 0, "Servo on  no\n", ""},
        {"--json status", 0, "\"servo_on\": false", ""},
        {"info robot7", 1, "", "Code (45063): The system ID requested is invalid\n"},
        {"times", 0, "Start (local time)  Hours", ""},
        {"times moving-station", 1, "", "Code (40961): "},
        {"param S1C3", 1, "", "Code (196626): "},
        {"position R1 --coordinate base", 0, "Units       mm, degrees\n", ""},
        {"position S1", 1, "", "Code (196629): "},
        {"axes R1", 0, "Axes   S, L, U, R, B, T\n", ""},
        {"var set B5=12 R1=0.1 P3=base:480,0,600.5,180,0,0,tool=1", 0, "Written  3\n", ""},
        {"var get B5 R1", 0, "B5           12\nR1          0.1\n", ""},
        {"var get P3", 0, "base:480,0,600.5,180,0,0,0,0,tool=1,figure=front+upper+flip", ""},
        {"var get B5 B2047 --json", 1, "\"value\": 12", "Code (196616): The requested variable index is invalid.\n"},
        {"var set B1=1 B2=256", 2, "", "harvlink: byte 256 is out of range, from 0 to 255\n"},
        {"io set general-output:1.3=on", 0, "Written  1\n", ""},
        {"io byte 10010", 0, "00001000", ""},
        {"io get general-input:1", 0, "general-input:1.7       17  off\n", ""},
        {"io set general-output:1=1", 2, "", "name a bit"},
        {"io set 20010=1", 1, "", "20010: Code (196615): This IO address cannot be written to.\n"},
        {"register set 5=0xFF", 0, "Written  1\n", ""},
        {"register get 4..5", 0, "       5    255\n", ""},
        {"alarms", 0, "none\n", ""},
        {"alarms history 2 --json", 0, "[]\n", ""},
        {"alarms --history 101", 2, "", "--history"},
        {"job status --json", 0, "\"name\": \"\"", ""},
        {"job select NONE", 1, "", "Code (-79983552): Invalid job name.\n"},
        {"job select A --line 10000", 1, "", "Code (-79979008): Invalid line number.\n"},
        {"convert R1 joint:0,0,0,0,-90,0 --to joint", 2, "", "has that form already"},
        {"convert R1 joint:0,0,0,0,-90,0 --to pulse", 0, "Position    pulse:0,0,0,0,", ""},
        {"servo on", 2, "", "give --yes to confirm it"},
        {"move R1 --line --to base:1,2,3,4,5,6 --speed 9999 --yes", 2, "", "Speed value is out of range"},
        {"move R1 --line --to base:790,0,1050,180,0,0 --speed 9 --yes", 1, "", "Code (-49934466): Servo Off\n"},
        {"progress R2", 1, "", "Code (65504): Group does not exist.\n"},
        {"hold off", 2, "", "give --yes to confirm it"},
        {"cycle sometimes", 2, "", "there are: step, cycle, auto"},
        {"stop --json", 0, "{\n  \"code\": 0,\n  \"message\": \"OK\"\n}\n", ""},
        {"files list X", 2, "", "not a kind of file"},
        {"files get *.LST", 1, "", "Code (131078): No files found with this extension.\n"},
        {"", 2, "", "harvlink: a command is missing\n"},
        {"stat\u009b\u202e", 2, "", "there is no command 'stat?"},
        {"statsu", 2, "", "there is no command 'statsu'; is status meant?"},
        {"status extra", 2, "", "'extra' is one argument too many"},
        {"var", 2, "", "a command is missing; there are: get, set, dump, load\nFor help run: harvlink var --help"},
        {"alarms newest", 2, "", "there is no command 'newest'; there are: history, clear"},
        {"position R1 --tol 1", 2, "", "there is no option '--tol'; is --tool meant?"},
        {"position R1 --tool 64", 2, "", "--tool: '64' is not a number from 0 to 63"},
        {"position --tool", 2, "", "--tool needs a value: N"},
        {"position R1 --coordinate world", 2, "", "robot, tool, user:N, master-tool"},
        {"job select A --line x", 2, "", "--line: 'x' is not a number"},
        {"move R1 --to base:1,2,3,4,5,6 --speed 9", 2, "", "give --joint or --line"},
        {"move R1 --joint --line --to base:1,2,3,4,5,6 --speed 9", 2, "", "not both"},
        {"move R1 --joint --to base:1,2,3,4,5,6 --speed 9 --acceleration 19", 2, "", "from 20 to 100 per cent"},
        {"register get 5..1", 2, "", "'5..1' is not a range of registers"},
        {"files delete A.DAT", 2, "", "only jobs can be deleted"},
        {"pendant 1234567890123456789012345678901", 2, "", "the line has 31 bytes"},
        {"info robot1 station1 --json", 1, "\"software\": ", "Code ("},
        {"param RS22 11:33", 0, "RS22", ""},
        {"param S1C400", 1, "", "Code (196626): "},
        {"times application --application 2", 1, "", "Code (45062): "},
        {"torque R1", 0, "Axis 6  ", ""},
        {"position-error R1 --json", 0, "\"axis_8\": 0", ""},
        {"position R1 --coordinate user:256", 2, "", "must be from 1 to 63"},
        {"io byte 10010=0x0F 10020", 0, "", ""},
        {"io word 10010=0x0102", 0, "0000000100000010", ""},
        {"io get 99999", 1, "", "Code (65540): "},
        {"register set 999=1 70000=1", 2, "", "out of range"},
        {"register set 1000=1", 1, "", "register 1000: Code ("},
        {"var set B1", 2, "", "'B1' has no value"},
        {"var set B2047=1", 1, "", "B2047: Code ("},
        {"alarms --history 3 --category minor", 0, "none\n", ""},
        {"alarms clear", 0, "OK\n", ""},
        {"job select DEMO", 0, "OK\n", ""},
        {"job stack", 0, "", ""},
        {"job status --task 9", 1, "", "Code ("},
        {"start --yes", 1, "", "Code ("},
        {"hold on", 0, "OK\n", ""},
        {"hold off --yes", 0, "OK\n", ""},
        {"cycle step", 0, "OK\n", ""},
        {"pendant hello", 0, "OK\n", ""},
        {"motion clear", 0, "OK\n", ""},
        {"motion stop --keep-targets", 0, "OK\n", ""},
        {"motion start --yes", 1, "", "Code ("},
        {"progress R1", 0, "Progress", ""},
        {"convert R1 pulse:0,0,0,0,0,0 --to cartesian", 0, "Position    base:", ""},
        {"convert R1 pulse:0,0,0,0,0,0 --to joint", 0, "Position    joint:", ""},
        {"convert R1 joint:0,0,0,0,-90,0 --to cartesian", 0, "Position    base:", ""},
        {"convert R1 base:790,0,1050,180,0,0 --to joint --previous 1,2", 0, "Position    joint:", ""},
        {"convert R1 base:790,0,1050,180,0,0 --to pulse", 0, "Position    pulse:", ""},
        {"convert R1 base:1,2,3,4,5,6 --to pulse --previous 1,2,3,4,5,6,7,8,9", 2, "", "at most 8"},
        {"explain 112 8015-112", 0, "Codes of which this may be a part", ""},
        {"completion fish", 2, "", "not a shell that is supported; there are: bash, zsh"},
        {"files get NONE.JBI", 1, "0 of 1 files fetched", "NONE.JBI: Code ("},
        {"files cat NONE.JBI", 1, "", "Code ("},
        {"files cat DEMO.JBI --json", 0, "\"contents\": ", ""},
        {"files delete NONE", 1, "", "NONE.JBI: Code ("},
        {"files list D*.JBI", 0, "DEMO.JBI", ""},
        {"var get B1..B3 B2047 B4", 1, "B3", "B2047: Code (196616): "},
        {"io get 10015..10021", 0, "10017     10017  off\n10020     10020  ", ""},
        {"io get general-output:1..2", 0, "general-output:2.7", ""},
        {"io set general-output:1.0..3=on", 0, "Written  4\n", ""},
        {"io get 10017..10010", 2, "", "'10017..10010' is not a range of signals such as 10010..10017"},
        {"alarms history --category minor --json", 0, "[]\n", ""},
        {"var load /", 2, "", "harvlink: can't read /: it is a folder"},
        {"var load none.csv", 2, "", "can't read none.csv: No such file or directory"},
        {"help var get", 0, "Usage: harvlink var get ", ""},
        {"help var gte", 2, "", "there is no command 'gte'; there are: get, set, dump, load"},
        {"help --help", 0, "harvlink help var get", ""},
        {"--version", 0, "harvlink 1.1.3\n", ""},
    }};
    for (Case const& expected : cases) {
        Result const result = RunTool(expected.line);
        EXPECT_EQ(result.exit, expected.exit) << expected.line << result.err;
        EXPECT_NE(result.out.find(expected.out), std::string::npos) << expected.line << "\n" << result.out;
        EXPECT_NE(result.err.find(expected.err), std::string::npos) << expected.line << "\n" << result.err;
    }
    EXPECT_EQ(With([](ControllerModel& model) { return int{model.variables.bytes[1]}; }), 0)
        << "nothing is written if a later assignment is wrong";
}

TEST(Program, GivesUpOnASilentHostInTimeAndRefusesWrongUsageAtOnce) {
    ::unsetenv("HARVLINK_HOST");
    simulator::ControllerOptions options;
    ASSERT_EQ(options.faults.Parse("drop=100%,file-drop=100%"), "");
    std::string const host = test::NextLoopbackAddress();
    simulator::Server server;
    server.Add(host, options);
    ASSERT_TRUE(server.Start()) << server.Error();
    auto const start = std::chrono::steady_clock::now();
    Result const silent = RunTool("--host " + host + " --timeout 50 --retries 2 status --json");
    std::chrono::duration<double> const elapsed = std::chrono::steady_clock::now() - start;
    EXPECT_EQ(silent.exit, 1);
    EXPECT_EQ(silent.err, "Code (196614): No response from controller after 2 retries.\n");
    EXPECT_EQ(silent.out, "");
    EXPECT_GE(elapsed.count(), 0.15);
    EXPECT_LT(elapsed.count(), 3.0);
    Result const nobody = RunTool("--host 127.9.9.9 status"); // this host says itself that nobody listens there
    EXPECT_EQ(nobody.exit, 1);
    EXPECT_TRUE(nobody.err.starts_with("Code (327682): ")) << nobody.err;
    for (char const* const line : {"status", "--host 1.2.3 status", "--host 127.9.9.9 --timeout x status",
                                   "--host 127.9.9.9 --retries -1 status", "--host 127.9.9.9 position"}) {
        EXPECT_EQ(RunTool(line).exit, 2) << line;
    }
}

TEST_F(ProgramTest, TransfersFilesWithoutOverwriting) {
    ScratchFolder const folder;
    std::size_t const count = Json::parse(RunTool("files list JBI --json").out).size();
    ASSERT_GT(count, 0U);
    EXPECT_EQ(Json::parse(RunTool("files get *.JBI --json").out)["fetched"], count);
    Result const again = RunTool("files get *.JBI");
    EXPECT_EQ(again.exit, 1);
    EXPECT_NE(again.err.find("Code (131074): File already exists"), std::string::npos);
    EXPECT_EQ(RunTool("files get *.JBI --force").exit, 0);
    test::WriteFile("NEW.DAT", std::string(2000, 'x'));
    EXPECT_EQ(RunTool("files put NEW.DAT").exit, 0);
    test::WriteFile("NEW.DAT", "y");
    EXPECT_EQ(RunTool("files put *.DAT").exit, 1);
    EXPECT_EQ(RunTool("files cat NEW.DAT").out, std::string(2000, 'x'));
    EXPECT_EQ(RunTool("files put *.DAT --force").exit, 0);
    EXPECT_EQ(RunTool("files cat NEW.DAT").out, "y");
    EXPECT_EQ(Json::parse(RunTool("files delete *.JBI --json").out)["deleted"], count);
}

TEST_F(ProgramTest, DumpsAndLoadsVariables) {
    ScratchFolder const folder;
    ASSERT_EQ(RunTool("var set S1=a,\"b B7=9").exit, 0);
    ASSERT_EQ(RunTool("var dump --kind B --kind S --out v.csv").exit, 0);
    EXPECT_EQ(RunTool("var dump --kind B --out v.csv").exit, 2) << "an existing file stays";
    ASSERT_EQ(RunTool("var set S1=x B7=0").exit, 0);
    EXPECT_EQ(RunTool("var load v.csv").exit, 0);
    EXPECT_EQ(With([](ControllerModel& model) { return int{model.variables.bytes[7]}; }), 9);
    EXPECT_NE(RunTool("var get S1").out.find("a,\"b"), std::string::npos);
    test::WriteFile("bad.csv", "variable,value\nB7,1\nB8,x\n");
    EXPECT_EQ(RunTool("var load bad.csv").err, "harvlink: bad.csv:3: 'x' is not a valid byte\n");
    EXPECT_EQ(With([](ControllerModel& model) { return int{model.variables.bytes[7]}; }), 9);
}

TEST_F(ProgramTest, LoadsAllThatItCanAndReportsTheRest) {
    ScratchFolder const folder;
    test::WriteFile("v.csv", "variable,value\nB1,1\nB2047,2\nB3,3\n");
    std::string many = "variable,value\n";
    for (int i = 0; i < 100; ++i) {
        many += fmt::format("B{},1\n", i);
    }
    test::WriteFile("many.csv", many);
    Result const planned = RunTool("var load v.csv --dry-run --json");
    EXPECT_EQ(planned.exit, 1) << "B2047 is unknown";
    EXPECT_EQ(Json::parse(planned.out),
              Json::parse(R"({"would_change":2,"same":0,"unknown":1,"changes":[)"
                          R"({"variable":"B1","before":0,"after":1},{"variable":"B3","before":0,"after":3}]})"));
    struct Case {
        char const* faults;
        char const* line;
        char const* input;
        int exit;
        Json result; ///< written, failed, not tried
    };
    std::array<Case, 4> const cases{{
        {"", "var load v.csv --json", "", 1, {2, 1, 0}},
        {"", "var load - --json", "variable,value\nB1,1\n", 0, {1, 0, 0}},
        {"seed=3,drop=8%", "--timeout 30 --retries 0 var load many.csv --json", "", 0, {100, 0, 0}},
        {"drop=100%", "--timeout 20 --retries 0 var load v.csv --json", "", 1, {0, 0, 3}},
    }};
    for (Case const& each : cases) {
        controller_->WithFaults([&](simulator::FaultInjector& faults) {
            simulator::FaultPlan plan;
            EXPECT_EQ(plan.Parse(each.faults), "");
            faults.SetPlan(plan);
        });
        Result const result = RunTool(each.line, each.input);
        EXPECT_EQ(result.exit, each.exit) << each.faults << each.line << result.err;
        Json const shown = Json::parse(result.out);
        EXPECT_EQ(Json({shown["written"], shown["failed"], shown["not_tried"]}), each.result) << result.out;
    }
    EXPECT_EQ(Json::parse(RunTool("--timeout 20 --retries 0 var load v.csv --dry-run --json").out)["unknown"], 3);
    EXPECT_EQ(With([](ControllerModel& model) { return int{model.variables.bytes[99]}; }), 1);
}

TEST_F(ProgramTest, ReportsThatAJobRunsOnAfterAStop) {
    ASSERT_EQ(RunTool("servo on --yes").exit, 0);
    ASSERT_EQ(RunTool("cycle automatic").exit, 0);
    ASSERT_EQ(RunTool("job select DEMO").exit, 0);
    ASSERT_EQ(RunTool("job start --yes").exit, 0);
    Result const stopped = RunTool("stop --json");
    EXPECT_EQ(stopped.exit, 1);
    std::string const job = Json::parse(stopped.out)["still_running"]["name"];
    EXPECT_NE(stopped.err.find("the job " + job + " still runs, at line "), std::string::npos) << stopped.err;
    EXPECT_EQ(RunTool("job stop").out, "OK\n");
    EXPECT_EQ(RunTool("stop").out, "OK\n");
}

TEST_F(ProgramTest, AsksOnATerminalBeforeTheMachineMoves) {
    EXPECT_EQ(RunTool("servo on", "n\n", true).exit, 1);
    EXPECT_FALSE(With([](ControllerModel& model) { return model.state.servoOn; }));
    EXPECT_EQ(RunTool("servo on", "y\n", true).exit, 0);
    EXPECT_TRUE(With([](ControllerModel& model) { return model.state.servoOn; }));
}

TEST_F(ProgramTest, WatchesSignalsUntilInterrupted) {
    Program child("'" HARVLINK_PROGRAM "' io watch general-output:1.0 --interval 1 --json");
    EXPECT_EQ(Json::parse(child.ReadLine())["on"], false);
    ASSERT_EQ(RunTool("io set 10010=1").exit, 0);
    Json const change = Json::parse(child.ReadLine());
    EXPECT_EQ(change["on"], true);
    EXPECT_EQ(change["address"], 10010);
    child.Signal(SIGINT);
    EXPECT_EQ(child.ExitCode(), 0);
}

/// Runs the program in bash, where $H is its path, with all that it writes.
Result RunInShell(std::string const& script) {
    ::setenv("H", HARVLINK_PROGRAM, 1);
    FILE* const pipe = ::popen(fmt::format("exec 2>&1; {}", script).c_str(), "r");
    Result result;
    for (int next = ::fgetc(pipe); next != EOF; next = ::fgetc(pipe)) {
        result.out += static_cast<char>(next);
    }
    int const status = ::pclose(pipe);
    result.exit = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return result;
}

// The thread sanitizer writes a file before the program's first line, which could ignore the signal.
#ifdef __SANITIZE_THREAD__
#define NoFileAtAll "trap '' XFSZ; ulimit -f 0; "
#else
#define NoFileAtAll "ulimit -f 0; "
#endif

TEST_F(ProgramTest, LosesNoFileIfItCanNotWrite) {
    ScratchFolder const folder;
    test::WriteFile("BIG.DAT", std::string(20'000, 'x'));
    ASSERT_EQ(RunTool("files put BIG.DAT").exit, 0);
    test::WriteFile("BIG.DAT", "old");
    test::WriteFile("v.csv", "old");
    std::filesystem::create_directories(".harvlink-scratch-abc123");
    test::WriteFile(".harvlink-scratch-abc123/transfer", "left by a process that was killed");
    struct Case {
        char const* script;
        int exit;
        char const* out;
    };
    // The limit would also cut off what the build for coverage counts, and so spoil it for all tests.
    std::array<Case, 6> const cases{{
        {"ulimit -f 8; GCOV_PREFIX=/dev/null $H files get BIG.DAT --force", 1, "BIG.DAT: Code (107374"},
        {"ulimit -f 8; GCOV_PREFIX=/dev/null $H var dump --out v.csv --force", 1, "harvlink: can't write "},
        {"$H var dump --kind B --out /dev/full", 1, "harvlink: can't write /dev/full: No space left on device\n"},
        {"$H var dump --kind B --out none/v.csv", 1, "harvlink: can't write into none: No such file or directory\n"},
        {NoFileAtAll "GCOV_PREFIX=/dev/null $H snapshot save cell --only groups", 1, "groups.csv: File too large\n"},
        {"$H files get NONE.DAT", 1, "0 of 1 files fetched"},
    }};
    for (Case const& each : cases) {
        Result const result = RunInShell(each.script);
        EXPECT_EQ(result.exit, each.exit) << each.script << result.out;
        EXPECT_NE(result.out.find(each.out), std::string::npos) << each.script << result.out;
    }
    EXPECT_EQ(test::ContentOf("BIG.DAT"), "old");
    EXPECT_EQ(test::ContentOf("v.csv"), "old");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator("."), {}), 2) << "nothing else is left";
    EXPECT_EQ(RunTool("files get BIG.DAT --force").exit, 0);
    EXPECT_EQ(test::ContentOf("BIG.DAT").size(), 20'000U);
}

TEST_F(ProgramTest, EndsWithOneLineOnCtrlC) {
    ScratchFolder const folder;
    controller_->WithFaults([](simulator::FaultInjector& faults) {
        simulator::FaultPlan plan;
        EXPECT_EQ(plan.Parse("file-delay=100%, delay-ms=300"), "");
        faults.SetPlan(plan);
    });
    for (char const* const line : {"files get RS.PRM", "snapshot save cell --only files"}) {
        Program child(fmt::format("'{}' --timeout 5000 {} 2>&1", HARVLINK_PROGRAM, line));
        while (std::filesystem::is_empty(".")) {
            std::this_thread::yield();
        }
        child.Signal(SIGINT);
        EXPECT_EQ(child.ReadRest(), "harvlink: interrupted\n") << line;
        EXPECT_EQ(child.ExitCode(), 130) << line;
        EXPECT_TRUE(std::filesystem::is_empty(".")) << line;
    }
}

TEST_F(ProgramTest, ReportsOnCtrlCWhatWasDone) {
    ScratchFolder const folder;
    std::string many = "variable,value\n";
    for (int i = 0; i < 100; ++i) {
        many += fmt::format("B{},1\n", i);
    }
    test::WriteFile("many.csv", many);
    controller_->WithFaults([](simulator::FaultInjector& faults) {
        simulator::FaultPlan plan;
        EXPECT_EQ(plan.Parse("delay=100%, delay-ms=50"), "");
        faults.SetPlan(plan);
    });
    Program load("'" HARVLINK_PROGRAM "' --timeout 5000 var load many.csv --json");
    while (With([](ControllerModel& model) { return model.variables.bytes[1]; }) == 0) {
        std::this_thread::yield();
    }
    load.Signal(SIGINT);
    Json const report = Json::parse(load.ReadRest());
    EXPECT_EQ(load.ExitCode(), 130);
    EXPECT_GE(report["written"], 1);
    EXPECT_EQ(report["written"].get<int>() + report["not_tried"].get<int>(), 100) << report;
    EXPECT_EQ(
        With([&](ControllerModel& model) { return int{model.variables.bytes[report["written"].get<std::size_t>()]}; }),
        0);

    // A controller that does not answer, and a time-out that nobody waits for.
    std::string const silent = test::NextLoopbackAddress();
    simulator::ControllerOptions options;
    ASSERT_EQ(options.faults.Parse("drop=100%,file-drop=100%"), "");
    simulator::Server server;
    server.Add(silent, options);
    std::promise<void> isAsked;
    server.SetObserver([&, isFirst = true](auto const&...) mutable {
        if (std::exchange(isFirst, false)) {
            isAsked.set_value();
        }
    });
    ASSERT_TRUE(server.Start()) << server.Error();
    Program doctor("'" HARVLINK_PROGRAM "' --timeout 50000 doctor " + silent + " 2>&1");
    ASSERT_EQ(isAsked.get_future().wait_for(std::chrono::seconds(20)), std::future_status::ready);
    doctor.Signal(SIGINT);
    EXPECT_EQ(doctor.ReadRest(), "harvlink: interrupted before it was known whether the controller answers\n");
    EXPECT_EQ(doctor.ExitCode(), 130);
}

TEST_F(ProgramTest, KeepsWhatAControllerHoldsFromTheTerminal) {
    ScratchFolder const folder;
    test::WriteFile("H.DAT", "a\u009b31m\u202eb\xE9\r\nc\n");
    ASSERT_EQ(RunTool("files put H.DAT").exit, 0);
    auto const onTerminal = [](std::vector<char const*> const& argv) {
        std::istringstream in;
        std::ostringstream out;
        Console console{in, out, out, false, true, false};
        EXPECT_EQ(RunCommandLine(static_cast<int>(argv.size()), argv.data(), console, AllCommands()), 0);
        return out.str();
    };
    EXPECT_EQ(onTerminal({"harvlink", "files", "cat", "H.DAT"}), "a?31m?b\\xE9\nc\n");
    EXPECT_EQ(onTerminal({"harvlink", "files", "cat", "H.DAT", "--raw"}), test::ContentOf("H.DAT"));
    ASSERT_EQ(RunTool("var set S1=\u009b2J\\xE9\\x5Cx41").exit, 0);
    EXPECT_NE(onTerminal({"harvlink", "var", "dump", "--kind", "S"}).find("\nS1,?2J\\xE9"), std::string::npos);
    EXPECT_NE(RunTool("var dump --kind S").out.find("\nS1,\u009b2J"), std::string::npos);
    EXPECT_EQ(RunTool("var get S1").out, "Variable  Value\nS1        ?2J\\xE9\\x5Cx41\n");
    EXPECT_NE(RunTool("var get S1 --json").out.find("\"\\u009b2J\\\\xE9"), std::string::npos);
    EXPECT_EQ(Json::parse(RunTool("var get S1 --json --encoding latin-1").out)[0]["value"],
              "\u00c2\u009b2J\u00e9\\x5Cx41");
}

constexpr char const* Square = "speed,x,y,z,rx,ry,rz\n"
                               "{0},790,20,1050,180,0,0\n{0},790,20,1070,180,0,0\n{0},790,0,1050,180,0,0\n";

TEST_F(ProgramTest, RunsATrajectoryToItsEnd) {
    ScratchFolder const folder;
    test::WriteFile("square.csv", fmt::format(Square, 1000));
    ASSERT_EQ(RunTool("servo on --yes").exit, 0);
    Result const result = RunTool("trajectory run square.csv --yes --json");
    ASSERT_EQ(result.exit, 0) << result.err;
    Json const document = Json::parse(result.out);
    EXPECT_EQ(document["points"], 3);
    EXPECT_NEAR(document["axes"]["y"].get<double>(), 0.0, 0.01);
    EXPECT_NEAR(document["axes"]["z"].get<double>(), 1050.0, 0.01);
}

TEST_F(ProgramTest, StopsTheMachineOnCtrlCThoughNobodyReadsWhatItSays) {
    ScratchFolder const folder;
    test::WriteFile("slow.csv", fmt::format(Square, 1));
    ASSERT_EQ(RunTool("servo on --yes").exit, 0);
    // The reader takes the first words, so that the end is what meets a closed pipe.
    Program child("'" HARVLINK_PROGRAM "' trajectory run slow.csv --yes 2> >(head -c 1 >/dev/null)");
    ASSERT_EQ(target_.get_future().wait_for(std::chrono::seconds(20)), std::future_status::ready);
    child.Signal(SIGINT);
    EXPECT_EQ(child.ExitCode(), 130);
    EXPECT_FALSE(With([](ControllerModel& model) { return model.IsMotionRunning(); }));
}

TEST(Program, FailsIfItsOutputIsLost) {
    for (char const* const line : {"config", "--help"}) {
        std::array<char const*, 2> const argv{"harvlink", line};
        std::istringstream in;
        std::ostream lost(nullptr);
        std::ostringstream err;
        Console console{in, lost, err, false, false, false};
        EXPECT_EQ(RunCommandLine(2, argv.data(), console, AllCommands()), 1) << line;
        EXPECT_NE(err.str().find("can't write the output"), std::string::npos) << err.str();
    }
}

TEST_F(ProgramTest, ReportsWhyATrajectoryWasRefused) {
    ScratchFolder const folder;
    test::WriteFile("far.csv", "speed,x,y,z,rx,ry,rz\n100,9000,0,1050,180,0,0\n100,0,0,1050,180,0,0\n");
    ASSERT_EQ(RunTool("servo on --yes").exit, 0);
    Result const result = RunTool("trajectory run far.csv --yes");
    EXPECT_EQ(result.exit, 1);
    EXPECT_NE(result.err.find("alarm 8015-"), std::string::npos) << result.err;
    EXPECT_EQ(result.err.find("servo power"), std::string::npos) << "the alarm took it";
    EXPECT_NE(result.err.find("on the way to far.csv:2 (point 1 of 2) or to a later"), std::string::npos) << result.err;
    EXPECT_EQ(Json::parse(RunTool("alarms --json").out).front()["code"], 8015);
    std::string const log = (std::filesystem::current_path() / "HarvlinkLog.txt").string();
    EXPECT_NE(result.err.find("logged in " + log + ": "), std::string::npos) << result.err;
}

} // namespace
} // namespace harvlink::cli
