#include <memory>
#include <ostream>
#include <string>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "CommandLine.h"
#include "Commands.h"
#include "Help.h"
#include "Interrupt.h"
#include "Session.h"
#include "Text.h"
#include "doctor/Diagnosis.h"

namespace harvlink::cli {

namespace {

constexpr char const* DoctorHelp =
    "It only reads, and asks for a file that does not exist; it opens no connection, because\n"
    "that would clear the motion targets of a controller from YA up. Don't use it while\n"
    "files are transferred. What it can find: no-route, no-answer, port-closed,\n"
    "wrong-answers, files-only, commands-only, refusing, unknown-generation,\n"
    "other-generation, damaged, other-source, duplicates, lossy, slow.";

struct DoctorArguments {
    std::string host;
    unsigned probes = 200;
};

char const* Text(PortReport::State state) {
    switch (state) {
    case PortReport::State::Answers:
        return "answers";
    case PortReport::State::Refuses:
        return "refuses";
    case PortReport::State::Closed:
        return "closed";
    case PortReport::State::Unreachable:
        return "unreachable";
    case PortReport::State::Garbled:
        return "garbled";
    case PortReport::State::Silent:
        break;
    }
    return "silent";
}

Json PortJson(PortReport const& port, char const* purpose) {
    return {{"port", port.port}, {"purpose", purpose}, {"state", Text(port.state)}, {"code", port.code}};
}

Json LinkJson(LinkReport const& link) {
    auto const& times = link.milliseconds;
    auto const quantile = [&](double share) {
        return times.empty() ? Json() : Json(RoundToMilli(Quantile(times, share)));
    };
    double const lost = link.sent == 0 ? 0.0 : 100.0 * link.lost / link.sent;
    return {{"probes", link.sent},
            {"answered", link.answered},
            {"lost", link.lost},
            {"lost_percent", RoundToMilli(lost)},
            {"late", link.late},
            {"refused", link.refused},
            {"duplicates", link.duplicates},
            {"damaged", link.damaged},
            {"wrong_ids", link.wrongIds},
            {"other_sources", link.otherSources},
            {"round_trip_ms_least", quantile(0.0)},
            {"round_trip_ms_median", quantile(0.5)},
            {"round_trip_ms_95_percent", quantile(0.95)},
            {"round_trip_ms_most", quantile(1.0)}};
}

Json FindingsJson(std::vector<Finding> const& findings) {
    Json rows = Json::array();
    for (Finding const& finding : findings) {
        rows.push_back({{"finding", finding.name}, {"detail", finding.detail}, {"next_step", finding.nextStep}});
    }
    return rows;
}

void ShowFindings(Output& output, std::vector<Finding> const& findings) {
    std::ostream& out = output.console().out;
    for (Finding const& finding : findings) {
        out << fmt::format("\n{}: {}\n  Next: {}.\n", finding.name, finding.detail, finding.nextStep);
    }
    if (findings.empty()) {
        out << "\nok: nothing is wrong with the way to the controller\n";
    }
    out << std::flush;
}

int Show(Output& output, ControllerReport const& report, Expectation const& expected) {
    std::vector<Finding> const findings = Diagnose(report, expected);
    std::string const generation = GenerationOf(report.software);
    Json document{{"host", expected.host},
                  {"diagnosis", findings.empty() ? "ok" : findings.front().name},
                  {"generation", generation.empty() ? Json() : Json(generation)},
                  {"software", report.software},
                  {"model", report.model},
                  {"link", LinkJson(report.link)},
                  {"ports", Json::array({PortJson(report.commands, "commands"), PortJson(report.files, "files")})}};
    if (output.json) {
        document["findings"] = FindingsJson(findings);
    }
    output.Show(document);
    if (!output.json) {
        ShowFindings(output, findings);
    }
    return findings.empty() ? ExitStatus::Success : ExitStatus::Failure;
}

int Run(Output& output, Expectation const& expected, unsigned probes) {
    Interrupt const interrupt;
    bool const isShown = output.Interactive();
    auto const progress = [&](unsigned done) {
        if (isShown) {
            output.console().err << fmt::format("\rprobe {} of {}", done + 1, probes) << std::flush;
        }
        return !interrupt.Wait(std::chrono::milliseconds(0));
    };
    ControllerReport const report = Examine(expected.host, expected.timeout, probes, progress);
    if (isShown) {
        output.console().err << "\r\x1b[K" << std::flush;
    }
    return Show(output, report, expected);
}

} // namespace

void AddDoctorCommand(CLI::App& app, Session& session) {
    auto arguments = std::make_shared<DoctorArguments>();
    CLI::App* const verb = app.add_subcommand("doctor", "Find out why a controller can't be reached, or only badly");
    verb->add_option("HOST", arguments->host, "IPv4 address, instead of --host")->check(CLI::ValidIPV4);
    verb->add_option("--probes", arguments->probes, "How often to ask for the state, to measure the link")
        ->check(CLI::Range(1U, 100'000U))
        ->type_name("N")
        ->capture_default_str();
    SetExamples(*verb, {"doctor 192.168.255.1", "doctor --probes 1000 --timeout 100 --json"}, DoctorHelp);
    verb->callback([arguments, &session] {
        session.Locally([arguments, &session](Output& output) {
            Settings::Connection const settings = session.settings().ForConnection();
            Expectation expected{settings.host, std::chrono::milliseconds(settings.timeoutMilliseconds),
                                 settings.generation};
            if (!arguments->host.empty()) {
                expected.host = arguments->host;
            } else {
                session.CheckHost();
            }
            return Run(output, expected, arguments->probes);
        });
    });
}

} // namespace harvlink::cli
