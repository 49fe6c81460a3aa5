#include "doctor/Diagnosis.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include <fmt/format.h>

#include "Generations.h"
#include "Text.h"
#include "errors/Explain.h"

namespace harvlink::cli {

namespace {

using State = PortReport::State;

/// Above it a control loop over the network, or a transfer of thousands of blocks, is felt to be slow.
constexpr double SlowMilliseconds = 15.0;

constexpr char const* AddressHint = "Ping {0}. If it answers, the controller's Ethernet function is off or a firewall "
                                    "drops UDP 10040: check its network "
                                    "settings. If it doesn't: power, cable, address and net mask on both sides";

std::string Count(unsigned count, unsigned sent) {
    return fmt::format("{} of {} ({:.1f} %)", count, sent, 100.0 * count / std::max(1U, sent));
}

/// Without the full stop, as all next steps.
std::string NextStepFor(std::int32_t code) {
    std::string step(Explain(std::to_string(code)).front().advice.check);
    if (step.ends_with('.')) {
        step.pop_back();
    }
    return step;
}

Finding Unreachable(PortReport const& port, Expectation const& expected) {
    return {"no-route", fmt::format("this computer can't send to {}: {}", expected.host, std::strerror(port.error)),
            fmt::format("Give this computer an address in the controller's network, or a route to it: ip route get {}",
                        expected.host)};
}

Finding Closed(Expectation const& expected) {
    return {"port-closed",
            fmt::format("{} is there, but nothing listens on UDP 10040 (ICMP port unreachable)", expected.host),
            "Check that this is the controller's address and not another device's; then that its Ethernet server "
            "function is enabled and it has finished starting"};
}

std::vector<Finding> DiagnosePorts(ControllerReport const& report, Expectation const& expected) {
    State const commands = report.commands.state;
    bool const filesAnswer = report.files.state == State::Answers;
    if (commands == State::Unreachable) {
        return {Unreachable(report.commands, expected)};
    }
    if (filesAnswer && (commands == State::Silent || commands == State::Closed)) {
        return {{"files-only", "UDP 10041 (files) answers, UDP 10040 (commands) does not",
                 "Let UDP 10040 through the firewall between here and the controller, in both directions"}};
    }
    if (commands == State::Closed) {
        return {Closed(expected)};
    }
    if (commands == State::Silent) {
        return {{"no-answer",
                 fmt::format("no answer from {} on UDP 10040 or 10041, and no error either", expected.host),
                 fmt::format(AddressHint, expected.host)}};
    }
    if (commands == State::Garbled) {
        return {{"wrong-answers", "something answers on UDP 10040, but not to what was asked",
                 "Check that the address is the controller's, and that no other program there uses the port"}};
    }
    if (commands == State::Refuses) {
        return {{"refusing",
                 fmt::format("the controller refuses to tell what it is, with code {}", report.commands.code),
                 NextStepFor(report.commands.code)}};
    }
    if (!filesAnswer) {
        bool const isClosed = report.files.state == State::Closed;
        return {{"commands-only",
                 fmt::format("UDP 10040 (commands) answers, UDP 10041 (files) {}", isClosed ? "is closed" : "does not"),
                 isClosed ? "Enable file transfer on the controller; connecting needs it with DS, DN and FS"
                          : "Let UDP 10041 through the firewall between here and the controller, in both directions"}};
    }
    return {};
}

void DiagnoseIdentity(ControllerReport const& report, Expectation const& expected, std::vector<Finding>& findings) {
    std::string const generation = GenerationOf(report.software);
    if (generation.empty()) {
        findings.push_back(
            {"unknown-generation",
             fmt::format("the software version '{}' names no generation that this library knows",
                         Printable(report.software)),
             "Use only what all generations have, such as harvlink status; ask for support of this one"});
    } else if (!expected.generation.empty() && expected.generation != generation) {
        findings.push_back({"other-generation",
                            fmt::format("the controller is a {}, expected was a {}", generation, expected.generation),
                            "Check that the address is that of the controller meant: harvlink config"});
    }
}

void DiagnoseAnswers(LinkReport const& link, std::vector<Finding>& findings) {
    if (link.refused > 0) {
        findings.push_back({"refusing",
                            fmt::format("{} requests were refused, last with code {}", Count(link.refused, link.sent),
                                        link.refusalCode),
                            NextStepFor(link.refusalCode)});
    }
    if (link.damaged > 0 || link.wrongIds > 0) {
        findings.push_back(
            {"damaged",
             fmt::format("{} damaged datagrams, {} answers to what was not asked", link.damaged, link.wrongIds),
             "Look for a device between here and the controller that changes datagrams: NAT, VPN, "
             "gateway; connect directly to compare"});
    }
    if (link.otherSources > 0) {
        findings.push_back({"other-source",
                            fmt::format("{} answers came from another port or address than the one asked",
                                        Count(link.otherSources, link.sent)),
                            "Look for address translation or two devices with this address: ip neigh"});
    }
    if (link.duplicates > 0) {
        findings.push_back({"duplicates", fmt::format("{} answers came twice", Count(link.duplicates, link.sent)),
                            "Look for a loop between switches or two network paths to the controller"});
    }
}

void DiagnoseTiming(LinkReport const& link, Expectation const& expected, std::vector<Finding>& findings) {
    if (link.lost > 0) {
        findings.push_back(
            {"lossy", fmt::format("{} probes had no answer", Count(link.lost, link.sent)),
             "Compare with a direct cable; then look at cable, switch and duplex settings, and for other "
             "programs that load the controller. The library never sends a request twice"});
    }
    double const median = Quantile(link.milliseconds, 0.5);
    double const slowest = link.milliseconds.empty() ? 0.0 : link.milliseconds.back();
    double const timeout = static_cast<double>(expected.timeout.count());
    if (link.late > 0 || median > SlowMilliseconds || slowest > timeout / 2) {
        double const wanted = std::max(4 * slowest, link.late > 0 ? 2 * timeout : 0.0);
        findings.push_back(
            {"slow",
             fmt::format("half of the answers take longer than {:.1f} ms, the slowest {:.1f} ms; {} came "
                         "after the time-out of {} ms",
                         median, slowest, link.late, expected.timeout.count()),
             fmt::format("Use a time-out of at least {:.0f} ms, and look for what delays: Wi-Fi, VPN, a "
                         "busy controller",
                         std::ceil(wanted / 10) * 10)});
    }
}

} // namespace

std::vector<Finding> Diagnose(ControllerReport const& report, Expectation const& expected) {
    std::vector<Finding> findings = DiagnosePorts(report, expected);
    if (report.commands.state == State::Answers) {
        DiagnoseIdentity(report, expected, findings);
        DiagnoseAnswers(report.link, findings);
        DiagnoseTiming(report.link, expected, findings);
    }
    return findings;
}

double Quantile(std::vector<double> const& sorted, double share) {
    if (sorted.empty()) {
        return 0.0;
    }
    auto const last = static_cast<double>(sorted.size() - 1);
    return sorted.at(static_cast<std::size_t>(std::lround(share * last)));
}

std::string GenerationOf(std::string const& software) {
    bool const isKnown = std::any_of(Generations.begin(), Generations.end(),
                                     [&](std::string_view name) { return software.starts_with(name); });
    return isKnown ? software.substr(0, 2) : "";
}

} // namespace harvlink::cli
