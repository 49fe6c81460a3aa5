#include "cli/doctor/DoctorCommand.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <ostream>
#include <string>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "cli/doctor/Diagnosis.h"
#include "cli/doctor/ReportText.h"
#include "cli/output/Progress.h"
#include "cli/program/CommandLine.h"
#include "cli/program/Help.h"
#include "cli/program/HostAddress.h"
#include "cli/program/Interrupt.h"
#include "cli/program/Session.h"
#include "words/text/InputError.h"
#include "words/text/Text.h"

namespace harvlink::cli {

namespace {

constexpr char const* DoctorHelp =
    "It only reads, and asks for a file that does not exist. If the controller answers, it\n"
    "also audits it: it lists and fetches a job as designed, counts what each rule of a\n"
    "strict connection would have refused, and tries a strict one. Do not use it while\n"
    "files are transferred. It can find: no-route, rejected, no-answer, port-closed,\n"
    "wrong-answers, files-only, commands-only, refusing, damaged, unknown-generation,\n"
    "other-generation, other-source, duplicates, stopped, lossy, slow, not-strict.\n"
    "Exit status: 0 if all is well, 1 if it found something, 2 for wrong usage.";

struct DoctorArguments {
    std::string host;
    unsigned probes = 200;
    bool noAudit = false;
};

char const* StateName(PortReport::State state) {
    switch (state) {
    case PortReport::State::Answers:
        return "answers";
    case PortReport::State::Refuses:
        return "refuses";
    case PortReport::State::Closed:
        return "closed";
    case PortReport::State::Unreachable:
        return "unreachable";
    case PortReport::State::BadAnswers:
        return "garbled";
    case PortReport::State::Silent:
        break;
    }
    return "silent";
}

Json PortJson(PortReport const& port, char const* purpose) {
    return {{"port", port.port},
            {"purpose", purpose},
            {"state", StateName(port.state)},
            {"code", port.code},
            {"reported_by", port.reporter.empty() ? Json() : Json(port.reporter)}};
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
            {"spoilt", link.spoilt},
            {"refused", link.refused},
            {"duplicates", link.duplicates},
            {"damaged", link.damaged},
            {"wrong_ids", link.wrongIds},
            {"other_sources", link.otherSources},
            {"round_trip_ms_least", quantile(0.0)},
            {"round_trip_ms_median", quantile(0.5)},
            {"round_trip_ms_95_percent", quantile(0.95)},
            {"round_trip_ms_most", quantile(1.0)},
            {"late_ms_most", link.late == 0 ? Json() : Json(RoundToMilli(link.latestMilliseconds))}};
}

Json AuditJson(AuditReport const& audit) {
    if (!audit.isDone) {
        return {};
    }
    Json rules = Json::array();
    for (std::size_t bit = 0; audit.designed.StatusCode == 0 && bit < RuleCount; ++bit) {
        RuleMeaning const& meaning = MeaningOf(static_cast<Rule>(1U << bit));
        rules.push_back({{"rule", RuleNames.at(bit)},
                         {"count", audit.counts.at(bit)},
                         {"counts", meaning.counts},
                         {"needs_motion", meaning.needsMotion}});
    }
    return {{"works", audit.StrictWorks()},         {"code", audit.strict.StatusCode},
            {"message", audit.strict.Message},      {"exchanges", audit.strictExchanges},
            {"audited_exchanges", audit.exchanges}, {"rules", rules}};
}

Json FindingsJson(std::vector<Finding> const& findings) {
    Json rows = Json::array();
    for (Finding const& finding : findings) {
        rows.push_back({{"finding", finding.name}, {"detail", finding.detail}, {"next_step", finding.nextStep}});
    }
    return rows;
}

Json ReportJson(ControllerReport const& report, Expectation const& expected, std::vector<Finding> const& findings) {
    std::string const generation = GenerationOf(report.software);
    return {{"host", expected.host},
            {"diagnosis", findings.empty() ? "ok" : findings.front().name},
            {"generation", generation.empty() ? Json() : Json(generation)},
            {"software", report.software},
            {"model", report.model},
            {"link", LinkJson(report.link)},
            {"ports", Json::array({PortJson(report.commands, "commands"), PortJson(report.files, "files")})},
            {"strict", AuditJson(report.audit)},
            {"findings", FindingsJson(findings)}};
}

int Show(Output& output, ControllerReport const& report, Expectation const& expected) {
    std::vector<Finding> const findings = Diagnose(report, expected);
    if (!output.json) {
        output.console().out << FormatReport(report, expected, findings, output.HasColour()) << std::flush;
    } else {
        output.Show(ReportJson(report, expected, findings));
    }
    return findings.empty() ? ExitStatus::Success : ExitStatus::Failure;
}

/// Throws InputError for addresses that do not belong to one device: this network, multicast and broadcast.
void CheckAddress(std::string const& host) {
    constexpr std::uint32_t FirstMulticast = 0xE0000000;
    constexpr std::uint32_t FirstReserved = 0xF0000000;
    constexpr std::uint32_t Broadcast = 0xFFFFFFFF;
    std::uint32_t const value = AddressNumber(host);
    bool const isMulticast = value >= FirstMulticast && value < FirstReserved;
    if (value >> 24U == 0 || isMulticast || value == Broadcast) {
        throw InputError(fmt::format("{} is not the address of one device", host));
    }
}

/// A controller that hardly answers would only make the audit long.
bool IsWorthAnAudit(ControllerReport const& report) {
    return report.commands.state == PortReport::State::Answers && report.link.silentAtEnd == 0 &&
           2 * report.link.answered >= report.link.sent;
}

int Run(Output& output, Expectation const& expected, unsigned retries, DoctorArguments const& arguments) {
    Interrupt const interrupt;
    auto const isFree = [&] { return !interrupt.Wait(std::chrono::milliseconds(0)); };
    std::optional<Progress> progress(std::in_place, output, "Asking " + expected.host);
    auto const show = [&](unsigned done) { progress->Count("Probe", done + 1, arguments.probes); };
    ControllerReport report = ProbeController(expected.host, expected.timeout, arguments.probes, show, isFree);
    if (!arguments.noAudit && IsWorthAnAudit(report) && isFree()) {
        progress->Show("Auditing " + expected.host);
        ConnectOptions const options{
            .address = expected.host, .timeout = static_cast<unsigned>(expected.timeout.count()), .retries = retries};
        report.audit = AuditController(options, arguments.probes, isFree);
    }
    progress.reset();
    if (!isFree() && report.link.sent == 0) {
        throw Interrupted("interrupted before it was known whether the controller answers");
    }
    int const exit = Show(output, report, expected);
    if (!isFree()) {
        throw Interrupted("interrupted; the report is of the probes until then");
    }
    return exit;
}

} // namespace

void AddDoctorCommand(CLI::App& app, Session& session) {
    auto arguments = std::make_shared<DoctorArguments>();
    CLI::App* const verb = app.add_subcommand("doctor", "Find out why a controller can't be reached, or answers badly");
    verb->add_option("HOST", arguments->host, "IPv4 address or name, instead of --host")
        ->check([](std::string const& text) { return ProblemOf(AllSettings().front(), text); });
    verb->add_option("--probes", arguments->probes, "How often to read the state, to measure the link")
        ->check(CLI::Range(1U, 100'000U))
        ->type_name("N")
        ->capture_default_str();
    verb->add_flag("--no-audit", arguments->noAudit, "Do not connect: only probe");
    SetExamples(*verb, {"doctor 192.168.255.1", "doctor --probes 1000 --timeout 100 --json"}, DoctorHelp);
    verb->callback([arguments, &session] {
        if (session.NamesSeveralCells() && !arguments->host.empty()) {
            throw InputError("give HOST or several cells, not both");
        }
        session.LocallyForEachCell([arguments, &session](Output& output) {
            Settings const& settings = session.settings();
            Expectation expected{settings.host, std::chrono::milliseconds(settings.timeoutMilliseconds),
                                 settings.generation};
            if (!arguments->host.empty()) {
                expected.host = arguments->host;
            } else {
                session.CheckHost();
            }
            expected.host = AddressOf(expected.host);
            CheckAddress(expected.host);
            return Run(output, expected, settings.retries, *arguments);
        });
    });
}

} // namespace harvlink::cli
