#include <array>
#include <cerrno>
#include <string>

#include <gtest/gtest.h>

#include "ToolTest.h"
#include "cli/doctor/Diagnosis.h"
#include "cli/doctor/ReportText.h"
#include "cli/output/Output.h"

namespace harvlink::cli {
namespace {

/// The names of all findings. A busy computer may add that it is slow.
std::string NamesOf(Json const& findings, std::string const& expected) {
    std::string names;
    for (Json const& finding : findings) {
        std::string const name = finding["finding"];
        names += name == "slow" && expected != name ? "" : (names.empty() ? "" : " ") + name;
    }
    return names;
}

/// The names of the rules that would have refused something.
std::string RulesOf(Json const& strict) {
    std::string names;
    for (Json const& rule : strict.is_null() ? Json::array() : strict["rules"]) {
        names += rule["count"] > 0 ? rule["rule"].get<std::string>() + " " : "";
    }
    return names;
}

TEST(Doctor, TellsTheFaultsOfAVirtualControllerApart) {
    struct Case {
        char const* faults;
        char const* findings;
        char const* options = "--timeout 100 --probes 20 --no-audit";
        char const* rule = ""; ///< one that would have refused something
    };
    constexpr char const* Audited = "--timeout 80 --probes 20";
    constexpr char const* Hasty = "--timeout 60 --probes 5"; // no controller answers, so a short wait is enough
    std::array<Case, 27> const cases{{
        {"", "", Audited},
        {"", "", "--generation YA --probes 3"},
        {"", "other-generation", "--generation FS --probes 3"},
        {"drop=100%", "no-answer", Hasty},
        {"silence=100%", "no-answer", Hasty},
        {"restart=100%", "no-answer", Hasty},
        {"file-drop=100%", "commands-only", Hasty},
        {"file-truncate=100%", "commands-only", Hasty},
        {"drop=100%,file-drop=0", "files-only", Hasty},
        {"refuse=100%,refuse-code=8336", "refusing"},
        {"refuse=20%,refuse-code=8336", "refusing"},
        {"refuse=20%,refuse-code=0x9999", "refusing"},
        {"drop=10%", "lossy"},
        {"delay=100%,delay-ms=25", "slow"},
        {"delay=30%,delay-ms=140", "slow"},
        {"delay=40%,delay-ms=30", "slow"},
        {"delay=100%,delay-ms=160", "slow", "--timeout 100 --probes 5"},
        {"seed=5,silence=3%,silence-ms=100000", "stopped", "--timeout 60 --probes 100"},
        {"duplicate=50%", "duplicates"},
        {"truncate=20%,file-truncate=0", "damaged", Audited, "FittingAnswer"},
        {"truncate=100%", "damaged", Hasty},
        {"flip-bits=30%", "damaged"},
        {"truncate=30%,duplicate=30%", "damaged duplicates"},
        {"extend=20%", "damaged"},
        {"wrong-id=20%", "damaged"},
        {"stale-id=100%", "wrong-answers", Hasty},
        {"other-source=50%,file-other-source=0", "other-source", Audited, "KnownSender"},
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
        EXPECT_EQ(NamesOf(report["findings"], expected.findings), expected.findings) << expected.faults << result.out;
        EXPECT_EQ(result.out.find("harvlink --timeout"), std::string::npos) << "can't run without the host";
        Json const& link = report["link"];
        EXPECT_EQ(link["probes"].get<int>(), link["answered"].get<int>() + link["late"].get<int>() +
                                                 link["spoilt"].get<int>() + link["lost"].get<int>());
        EXPECT_EQ(result.exit, report["diagnosis"] == "ok" ? 0 : 1);
        EXPECT_EQ(RulesOf(report["strict"]).find(expected.rule) != std::string::npos, true) << result.out;
    }
}

TEST(Doctor, ShowsOnlyWhatWasMeasured) {
    std::string const host = test::NextLoopbackAddress();
    Result const result = RunTool("doctor " + host + " --timeout 60");
    EXPECT_EQ(result.exit, 1);
    EXPECT_EQ(result.out.find(host + " is there, but no program listens on its port UDP 10040. [port-closed]\nNext: "),
              0U);
    EXPECT_NE(result.out.find("\n\nEvidence\n"
                              "  Ports       UDP 10040 (commands) closed (the host says so)\n"
                              "              UDP 10041 (files) closed (the host says so)\n"),
              std::string::npos);
    EXPECT_TRUE(result.out.ends_with("so)\n")) << result.out;
    EXPECT_EQ(RunTool("doctor 224.0.0.1").exit, 2);
}

TEST(Doctor, NamesWhatNoLoopbackCanShow) {
    using State = PortReport::State;
    using BadAnswer = PortReport::BadAnswer;
    struct Case {
        PortReport commands;
        PortReport files;
        char const* software;
        char const* finding;
        char const* report; ///< a part of the text for people
    };
    char const* const router = "10.0.0.254";
    char const* const newer = "YAS4";
    PortReport const good{.state = State::Answers};
    std::array<Case, 20> const cases{{
        {{.state = State::Unreachable, .error = ENETUNREACH}, good, "", "no-route", "has no route to 10.0.0.1"},
        {{.state = State::Unreachable, .error = EHOSTUNREACH}, good, "", "no-route", "No device in this computer's"},
        {{.state = State::Unreachable, .error = EACCES}, good, "", "no-route", "not a broadcast address"},
        {{.state = State::Unreachable, .error = EMSGSIZE}, good, "", "no-route", "(commands) not reached"},
        {{.state = State::Unreachable, .error = EHOSTUNREACH, .reporter = router}, good, "", "rejected", "let UDP"},
        {{.state = State::Closed, .error = ECONNREFUSED, .reporter = router}, good, "", "rejected", "by 10.0.0.254"},
        {{.state = State::Closed}, good, "", "files-only", "no program listens on UDP 10040"},
        {{.state = State::Silent}, good, "", "files-only", "no answer to 0 attempts of 500 ms"},
        {{.state = State::BadAnswers, .badAnswer = BadAnswer::Damaged}, good, "", "damaged", "arrives damaged"},
        {{.state = State::BadAnswers, .badAnswer = BadAnswer::WrongId}, good, "", "wrong-answers", "never fit"},
        {{.state = State::BadAnswers, .badAnswer = BadAnswer::Foreign}, good, "", "wrong-answers", "not a robot"},
        {{.state = State::Refuses, .code = 8288}, good, "", "refusing", "There is an active Error or Alarm"},
        {{.state = State::Refuses, .code = 0x9999}, good, "", "refusing", "unknown code 39321"},
        {good, {.state = State::Closed}, newer, "commands-only", "Enable file transfer"},
        {good, {.state = State::Unreachable, .reporter = router}, newer, "commands-only", "rejected by 10.0.0.254"},
        {good, {.state = State::BadAnswers, .badAnswer = BadAnswer::Damaged}, newer, "commands-only", "UDP 10041 (fi"},
        {good, {.state = State::BadAnswers, .badAnswer = BadAnswer::WrongId}, newer, "commands-only", "another prog"},
        {good, {.state = State::Silent}, newer, "commands-only", "in both directions"},
        {good, good, "ZZ1.00", "unknown-generation", "'ZZ1.00' is not of a generation"},
        {good, good, "", "unknown-generation", "gave no software version"},
    }};
    Expectation const expected{"10.0.0.1", std::chrono::milliseconds(500), ""};
    for (Case const& each : cases) {
        ControllerReport const report{.commands = each.commands, .files = each.files, .software = each.software};
        std::vector<Finding> const findings = Diagnose(report, expected);
        EXPECT_EQ(findings.front().name, each.finding) << each.report;
        std::string const text = FormatReport(report, expected, findings, true);
        EXPECT_NE(text.find(each.report), std::string::npos) << text;
    }
}

TEST(Doctor, SaysHowALinkFails) {
    struct Case {
        LinkReport link;
        char const* finding;
        char const* report;
    };
    std::array<Case, 7> const cases{{
        {{.sent = 20, .lost = 20, .silentAtEnd = 20}, "stopped", "gave its model and software, and then stopped"},
        {{.sent = 50, .answered = 30, .lost = 20, .silentAtEnd = 20}, "stopped", "after 30 of 50 probes"},
        {{.sent = 10, .answered = 10, .otherSources = 2, .otherPort = 9}, "other-source", "changes the port"},
        {{.sent = 10, .answered = 10, .otherSources = 2, .otherHost = "10.0.0.9"}, "other-source", "what 10.0.0.9 is"},
        {{.sent = 10, .answered = 5, .spoilt = 5, .damaged = 2, .wrongIds = 3}, "damaged", "or do not fit the questi"},
        {{.sent = 10, .answered = 10, .refused = 2, .refusalCode = 8288}, "refusing", "2 refused (20.0 %)"},
        {{.sent = 2, .answered = 2, .milliseconds = {1, 300}}, "slow", "300 ms longest"},
    }};
    Expectation const expected{"10.0.0.1", std::chrono::milliseconds(500), ""};
    for (Case const& each : cases) {
        ControllerReport report{.software = "YAS4", .model = "M", .link = each.link};
        report.commands.state = report.files.state = PortReport::State::Answers;
        std::vector<Finding> const findings = Diagnose(report, expected);
        ASSERT_FALSE(findings.empty()) << each.finding;
        EXPECT_EQ(findings.front().name, each.finding);
        std::string const text = FormatReport(report, expected, findings, false);
        EXPECT_NE(text.find(each.report), std::string::npos) << text;
    }
}

TEST_F(ToolTest, TheDoctorMeasuresAndAudits) {
    Result const result = RunTool("doctor --timeout 5000");
    EXPECT_NE(result.out.find("  Link        200 probes, all answered\n"), std::string::npos) << result.out;
    EXPECT_NE(result.out.find("\nStrict connection\n  Works here: "), std::string::npos) << result.out;
}

} // namespace
} // namespace harvlink::cli
