#include "cli/doctor/ReportText.h"

#include <string_view>

#include <fmt/color.h>
#include <fmt/format.h>

#include "cli/output/Words.h"
#include "words/text/Printable.h"
#include "words/text/Text.h"

namespace harvlink::cli {

namespace {

using State = PortReport::State;

std::string Line(std::string_view label, std::string_view text) {
    return fmt::format("  {:<12}{}\n", label, text);
}

std::string FormatFinding(Finding const& finding, fmt::terminal_color colour, bool isColoured) {
    auto const style = isColoured ? fmt::emphasis::bold | fmt::fg(colour) : fmt::text_style{};
    return fmt::format(style, "{}.", finding.detail) +
           fmt::format(" [{}]\nNext: {}.\n\n", finding.name, finding.nextStep);
}

std::string ControllerText(ControllerReport const& report) {
    std::string const generation = GenerationOf(report.software);
    return fmt::format("software {}, model {}{}", Printable(report.software), Printable(report.model),
                       generation.empty() ? "" : ", generation " + generation);
}

std::string PortText(PortReport const& port, std::string_view purpose, std::string_view waited) {
    std::string const by = port.reporter.empty() ? "" : " by " + port.reporter;
    auto const state = [&]() -> std::string {
        switch (port.state) {
        case State::Answers:
            return "answers";
        case State::Refuses:
            return fmt::format("refuses with code {}", port.code);
        case State::Closed:
            return port.reporter.empty() ? "closed (the host says so)" : "rejected" + by;
        case State::Unreachable:
            return port.reporter.empty() ? "not reached" : "rejected" + by;
        case State::BadAnswers:
            return "gives no usable answer";
        case State::Silent:
            break;
        }
        return fmt::format("no answer to {}", waited);
    };
    return fmt::format("UDP {} ({}) {}", port.port, purpose, state());
}

std::string LinkText(LinkReport const& link) {
    std::string text = fmt::format("{} probe{}", link.sent, link.sent == 1 ? "" : "s");
    auto const add = [&](unsigned count, std::string_view what) {
        text += count == 0 ? "" : fmt::format(", {} {} ({:.1f} %)", count, what, 100.0 * count / link.sent);
    };
    if (link.answered == link.sent) {
        text += ", all answered";
    }
    add(link.lost, "lost");
    add(link.late, "late");
    add(link.spoilt, link.wrongIds == 0  ? "answered, but damaged"
                     : link.damaged == 0 ? "answered, but not the question"
                                         : "answered, but damaged or not the question");
    add(link.refused, "refused");
    add(link.otherSources, "from another address or port");
    add(link.duplicates, "twice");
    return text;
}

std::string RoundTripText(std::vector<double> const& times) {
    return fmt::format("{} median, {} at 95 %, {} longest", Milliseconds(Quantile(times, 0.5)),
                       Milliseconds(Quantile(times, 0.95)), Milliseconds(times.back()));
}

std::string FormatEvidence(ControllerReport const& report, Expectation const& expected) {
    std::string const waited = fmt::format("{} attempts of {} ms", report.attempts, expected.timeout.count());
    std::string text = "Evidence\n";
    if (!report.software.empty()) {
        text += Line("Controller", ControllerText(report));
    }
    text += Line("Ports", PortText(report.commands, "commands", waited));
    text += Line("", PortText(report.files, "files", waited));
    int const code = report.commands.code != 0 ? report.commands.code : report.link.refusalCode;
    if (auto const refusal = code == 0 ? std::nullopt : ExplainRefusal(code)) {
        text += Line(fmt::format("Code {}", code), refusal->advice.cause);
    }
    if (report.link.sent > 0) {
        text += Line("Link", LinkText(report.link));
    }
    if (!report.link.milliseconds.empty()) {
        text += Line("Round trip", RoundTripText(report.link.milliseconds));
    }
    return text;
}

std::string RuleText(Rule rule, std::uint64_t count) {
    RuleMeaning const& meaning = MeaningOf(rule);
    std::string_view const note = count > 0 ? meaning.counts : meaning.needsMotion ? "only motion can show it" : "";
    std::string_view const gap = note.empty() ? "" : "  ";
    return fmt::format("  {:<18}{:>5}{}{}\n", RuleName(rule), count, gap, note);
}

std::string FormatAudit(AuditReport const& audit) {
    std::string text = "\nStrict connection\n";
    text += audit.StrictWorks() ? fmt::format("  Works here: {} exchanges\n", audit.strictExchanges)
                                : fmt::format("  Does not work here: {}\n", Printable(audit.strict.Message));
    if (audit.designed.StatusCode != 0) {
        return text +
               fmt::format("\nNo audit, as no connection opens as designed: {}\n", Printable(audit.designed.Message));
    }
    text += fmt::format("\nWhat each rule would have refused, in {} exchanges as designed\n", audit.exchanges);
    for (std::size_t bit = 0; bit < RuleCount; ++bit) {
        text += RuleText(static_cast<Rule>(1U << bit), audit.counts.at(bit));
    }
    return text;
}

} // namespace

std::string FormatReport(ControllerReport const& report, Expectation const& expected,
                         std::vector<Finding> const& findings, bool isColoured) {
    std::string text;
    for (Finding const& finding : findings) {
        text += FormatFinding(finding, fmt::terminal_color::red, isColoured);
    }
    if (findings.empty()) {
        text += FormatFinding({"ok", fmt::format("The connection to {} works without a fault", expected.host),
                               "Nothing. If a program still fails, look up its status code with harvlink "
                               "explain CODE"},
                              fmt::terminal_color::green, isColoured);
    }
    return text + FormatEvidence(report, expected) + (report.audit.isDone ? FormatAudit(report.audit) : "");
}

} // namespace harvlink::cli
