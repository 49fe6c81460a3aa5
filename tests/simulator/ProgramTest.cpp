#include "support/Program.h"

#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "harvlink/harvlink.h"
#include "support/LoopbackAddress.h"
#include "support/ScratchFolder.h"

namespace harvlink::test {
namespace {

/// The program with its output and errors as one.
Program Simulate(std::string const& arguments) {
    return Program("'" HARVLINK_SIMULATOR "' " + arguments + " 2>&1");
}

/// Counts the records of a recording, which must end with a whole one.
std::size_t CountRecords(std::string const& recording) {
    std::size_t count = 0;
    std::size_t offset = 24;
    while (offset + 16 <= recording.size()) {
        std::uint32_t length = 0;
        std::memcpy(&length, recording.data() + offset + 8, sizeof(length));
        offset += 16 + length;
        ++count;
    }
    EXPECT_EQ(offset, recording.size());
    return count;
}

std::size_t Count(std::string const& text, std::string_view part) {
    std::size_t count = 0;
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++count;
    }
    return count;
}

TEST(SimulatorProgram, SaysWhatIsWrongAndEndsWithACode) {
    ScratchFolder const scratch;
    auto const scene = scratch.Path() / "cell.toml";
    std::ofstream(scene) << "[controller]\nfoo = 1\n";
    struct Case {
        std::string arguments;
        int code;
        char const* message;
    };
    for (auto const& [arguments, code, message] : std::initializer_list<Case>{
             {"--help", 0, "buffer-full-ms"},
             {"--version", 0, "harvlink-sim "},
             {"--nothing", 2, "Run harvlink-sim --help"},
             {"--address 1.2.3", 2, "'1.2.3' is not an IPv4 address"},
             {"--generation XX", 2, "'XX' is not a generation; there are: DS"},
             {"--groups R1,R9", 2, "'R9' is not a control group"},
             {"--rs022 2", 2, "--rs022"},
             {"--time-scale 0", 2, "'0' is not a number from 0.001 to 10000"},
             {"--faults drop", 2, "'drop' is not of the form name=number"},
             {"--scene '" + scene.string() + "'", 1, "cell.toml:2: controller.foo: unknown key"},
             {"--address 192.0.2.1", 1, "can't bind 192.0.2.1:10040"},
             {"--address " + NextLoopbackAddress() + " --pcap '" + (scratch.Path() / "none" / "x").string() + "'", 1,
              "No such file or directory"},
             {"--address " + NextLoopbackAddress() + " --report /no/such/report", 1,
              "can't write /no/such/report: No such file or directory"},
             {"ctl --address 127.1", 2, "'127.1' is not an IPv4 address"},
             {"ctl", 2, "COMMAND is required"},
             {"ctl --help", 0, "presses or releases hold"},
             {"ctl --address " + NextLoopbackAddress() + " show", 1, "no controller runs on"}}) {
        Program program = Simulate(arguments);
        auto const output = program.ReadRest();
        EXPECT_NE(output.find(message), std::string::npos) << arguments << ": " << output;
        EXPECT_EQ(program.ExitCode(), code) << arguments;
    }
}

TEST(SimulatorProgram, IsDrivenAndNamesFilesThatItDoesNotServe) {
    ScratchFolder const scratch;
    WriteFile("caf\xE9.JBI", "");
    auto const address = NextLoopbackAddress();
    Program program = Simulate("--address " + address + " --files . --report report.json");
    EXPECT_EQ(program.ReadLine().find("harvlink-sim: caf\\xE9.JBI is not served: the name"), 0U);
    ASSERT_EQ(program.ReadLine(), "harvlink-sim: ready on " + address + "\n");
    EXPECT_EQ(ContentOf("report.json"), "") << "writable, and not written before the end";
    Program driver = Simulate("ctl --address " + address + " alarm 4107 3 'Out of range'");
    EXPECT_EQ(driver.ReadRest(), "");
    EXPECT_EQ(driver.ExitCode(), 0);
    Program shown = Simulate("ctl --address " + address + " show");
    EXPECT_NE(shown.ReadRest().find(R"("alarms":[{"code":4107,"subcode":3}])"), std::string::npos);
    Program refused = Simulate("ctl --address " + address + " hold up");
    EXPECT_EQ(refused.ReadRest(), "harvlink-sim: 'up' is not one of: off, on\n");
    EXPECT_EQ(refused.ExitCode(), 1);
    program.Signal(SIGTERM);
    EXPECT_EQ(program.ReadRest(), "");
    EXPECT_EQ(program.ExitCode(), 0);
}

TEST(SimulatorProgram, ServesAndReportsWhatItServed) {
    ScratchFolder const scratch;
    auto const path = [&](char const* name) { return (scratch.Path() / name).string(); };
    std::ofstream(path("cell.toml")) << "[controller]\ngeneration = \"FS\"\n[variables.B]\n5 = 42\n";
    auto const address = NextLoopbackAddress();
    Program program =
        Simulate("--address " + address + " --scene '" + path("cell.toml") + "' --generation YA --groups R1:7,S1" +
                 " --rs022 1 --time-scale 2 --faults delay=100%,delay-ms=0 --verbose --report '" + path("report.json") +
                 "' --fault-log '" + path("hits.json") + "' --pcap '" + path("all.pcap") + "'");
    ASSERT_EQ(program.ReadLine(), "harvlink-sim: ready on " + address + "\n");
    {
        StatusInfo status;
        auto const robot = harvlink::Connect(address, status, 1000, 3);
        ASSERT_NE(robot, nullptr) << status.Message;
        ByteVariableData variable;
        EXPECT_EQ(robot->Variables->byteVariable->Read(5, variable).StatusCode, 0);
        EXPECT_EQ(variable.value, 42) << "from the scene";
        EXPECT_EQ(robot->MotionManager->MotionStop(false).StatusCode, 0) << "the option wins over the scene";
    }
    program.Signal(SIGTERM);
    auto const lines = program.ReadRest();
    EXPECT_EQ(program.ExitCode(), 0);
    auto const requests = Count(lines, "\n");
    EXPECT_EQ(Count(lines, address + ":1004"), requests);
    EXPECT_EQ(Count(lines, " ByteVariable command 122 instance 5 "), 1U) << lines;
    auto const hits = ContentOf(path("hits.json"));
    auto const answers = Count(hits, "\"faults\": [\"delay\"]}\n");
    EXPECT_EQ(Count(hits, "\"port\": 10040,"), Count(lines, ":10040")) << hits;
    EXPECT_EQ(CountRecords(ContentOf(path("all.pcap"))), requests + answers);
    auto const report = ContentOf(path("report.json"));
    EXPECT_NE(report.find("\"address\": \"" + address + "\", \"requests\": " + std::to_string(requests) + ","),
              std::string::npos)
        << report;
    EXPECT_NE(report.find("\"delay\": " + std::to_string(answers)), std::string::npos) << report;
}

} // namespace
} // namespace harvlink::test
