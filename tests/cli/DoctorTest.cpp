#include <array>
#include <cerrno>
#include <string>

#include <gtest/gtest.h>

#include "Output.h"
#include "ToolTest.h"
#include "doctor/Diagnosis.h"

namespace harvlink::cli {
namespace {

TEST(Doctor, TellsTheFaultsOfAVirtualControllerApart) {
    struct Case {
        char const* faults;
        char const* diagnosis;
        char const* options = "--timeout 250 --probes 20";
    };
    constexpr char const* Hasty = "--timeout 60 --probes 5"; // nobody answers anyway
    std::array<Case, 19> const cases{{
        {"", "ok"},
        {"", "ok", "--generation YA --probes 3"},
        {"", "other-generation", "--generation FS --probes 3"},
        {"drop=100%", "no-answer", Hasty},
        {"silence=100%", "no-answer", Hasty},
        {"restart=100%", "no-answer", Hasty},
        {"file-drop=100%", "commands-only", Hasty},
        {"drop=100%,file-drop=0", "files-only", Hasty},
        {"refuse=100%,refuse-code=8336", "refusing"},
        {"refuse=20%,refuse-code=8336", "refusing"},
        {"drop=10%", "lossy"},
        {"delay=100%,delay-ms=25", "slow"},
        {"delay=30%,delay-ms=300", "slow"},
        {"duplicate=50%", "duplicates"},
        {"truncate=20%", "damaged"},
        {"extend=20%", "damaged"},
        {"wrong-id=20%", "damaged"},
        {"stale-id=100%", "wrong-answers", Hasty},
        {"other-source=50%", "other-source"},
    }};
    simulator::Server server;
    std::array<std::string, cases.size()> hosts;
    for (std::size_t i = 0; i < cases.size(); ++i) {
        simulator::ControllerOptions options;
        ASSERT_EQ(options.faults.Parse(cases.at(i).faults), "");
        hosts.at(i) = test::NextLoopbackAddress();
        server.Add(hosts.at(i), options);
    }
    ASSERT_TRUE(server.Start()) << server.Error();
    for (std::size_t i = 0; i < cases.size(); ++i) {
        Case const& expected = cases.at(i);
        Result const result = RunTool("doctor " + hosts.at(i) + " --json " + expected.options);
        Json const report = Json::parse(result.out);
        std::string const diagnosis = report["diagnosis"];
        bool const isBusy = diagnosis == "slow" && std::string(expected.diagnosis) == "ok"; // this computer, that is
        EXPECT_TRUE(diagnosis == expected.diagnosis || isBusy) << expected.faults << "\n" << result.out;
        EXPECT_EQ(result.exit, diagnosis == "ok" ? 0 : 1);
    }
}

TEST(Doctor, SaysThatNobodyListens) {
    Result const result = RunTool("doctor " + test::NextLoopbackAddress() + " --timeout 60");
    EXPECT_EQ(result.exit, 1);
    EXPECT_NE(result.out.find("port-closed: "), std::string::npos) << result.out;
}

TEST(Doctor, NamesWhatNoLoopbackCanShow) {
    ControllerReport report;
    report.commands.state = PortReport::State::Unreachable;
    report.commands.error = ENETUNREACH;
    Expectation const expected{"10.0.0.1", std::chrono::milliseconds(500), ""};
    EXPECT_EQ(Diagnose(report, expected).front().name, "no-route");
    report.commands.state = report.files.state = PortReport::State::Answers;
    report.software = "ZZ1.00";
    EXPECT_EQ(Diagnose(report, expected).front().name, "unknown-generation");
}

TEST_F(ToolTest, TheDoctorOnlyReads) {
    Result const result = RunTool("doctor --timeout 5000");
    EXPECT_NE(result.out.find("Probes                    200\n"), std::string::npos) << result.out;
    EXPECT_EQ(controller_->Traffic().requests, 202U) << "what it is, whether it serves files, and the probes";
}

} // namespace
} // namespace harvlink::cli
