#include "cli/doctor/Diagnosis.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <regex>

#include <fmt/format.h>

#include "cli/output/Words.h"
#include "cli/program/HostAddress.h"
#include "words/cards/Explain.h"
#include "words/text/Printable.h"
#include "words/text/Text.h"
#include "words/values/Generations.h"

namespace harvlink::cli {

namespace {

using State = PortReport::State;
using BadAnswer = PortReport::BadAnswer;

/// A router or firewall between here and the host refused to pass the datagram on.
Finding Rejected(PortReport const& port, Expectation const& expected) {
    return {"rejected",
            fmt::format("The device {} between here and {} rejects UDP {}: {}", port.reporter, expected.host, port.port,
                        std::strerror(port.error)),
            fmt::format("Check that {} is the controller's address; if it is, let UDP 10040 and 10041 through at {}, "
                        "which is a firewall or router",
                        expected.host, port.reporter)};
}

Finding Unreachable(PortReport const& port, Expectation const& expected) {
    std::string const& host = expected.host;
    switch (port.error) {
    case EHOSTUNREACH:
        return {"no-route", fmt::format("No device in this computer's network has the address {}", host),
                fmt::format("Check that the controller is on, that its cable is plugged in, and that {} is the address "
                            "set on it",
                            host)};
    case ENETUNREACH:
        return {"no-route", fmt::format("This computer has no route to {}", host),
                fmt::format("Give this computer an address in the controller's network, or a route to it, until {} "
                            "shows one",
                            RouteCommand(host))};
    case EACCES:
    case EPERM:
        return {
            "no-route",
            fmt::format("This computer does not let a program send to {}: {}", host, std::strerror(port.error)),
            fmt::format("Check that {} is not a broadcast address, then this computer's own firewall for outgoing UDP",
                        host)};
    default:
        return {"no-route", fmt::format("This computer can't send to {}: {}", host, std::strerror(port.error)),
                fmt::format("Check this computer's network settings: {}", RouteCommand(host))};
    }
}

Finding Closed(Expectation const& expected) {
    return {"port-closed", fmt::format("{} is there, but no program listens on its port UDP 10040", expected.host),
            "Check that this is the controller's address and not another device's; if it is, enable the controller's "
            "Ethernet server function, and wait until it has started"};
}

Finding Silent(Expectation const& expected) {
    return {"no-answer", fmt::format("Nothing comes back from {}, neither an answer nor an error", expected.host),
            fmt::format("Try {}. If that is answered, the controller's Ethernet function is off or a firewall "
                        "drops UDP 10040; if not, look at power, cable, address and net mask on both sides",
                        PingCommand(expected.host))};
}

Finding BadAnswers(PortReport const& port, Expectation const& expected) {
    switch (port.badAnswer) {
    case BadAnswer::Damaged:
        return {"damaged", fmt::format("Every answer from {} arrives damaged", expected.host), DamageStep()};
    case BadAnswer::WrongId:
        return {"wrong-answers",
                fmt::format("{} answers on UDP 10040, but its answers never fit the questions", expected.host),
                "Stop every other program and gateway that talks to this controller and run harvlink doctor again: "
                "their answers may come here"};
    default:
        return {"wrong-answers",
                fmt::format("Something answers at {} on UDP 10040, but it is not a robot controller", expected.host),
                fmt::format("Check the address: {} is another device, or another program there uses the port",
                            expected.host)};
    }
}

Finding FilesOnly(PortReport const& commands) {
    if (commands.state == State::Closed) {
        return {"files-only", "UDP 10041 (files) answers, but no program listens on UDP 10040 (commands)",
                "Enable the controller's Ethernet server function for commands, and wait until it has started"};
    }
    return {"files-only", "UDP 10041 (files) answers, UDP 10040 (commands) does not",
            "Let UDP 10040 through the firewall between here and the controller, in both directions"};
}

Finding CommandsOnly(PortReport const& files, Expectation const& expected) {
    std::string const subject = "UDP 10040 (commands) answers, ";
    if (!files.reporter.empty()) {
        return {"commands-only", fmt::format("{}UDP 10041 (files) is rejected by {}", subject, files.reporter),
                fmt::format("Let UDP 10041 through at {}, which is a firewall or router", files.reporter)};
    }
    switch (files.state) {
    case State::Closed:
        return {"commands-only", subject + "but no program listens on UDP 10041 (files)",
                "Enable file transfer on the controller; controllers of the generations DS, DN and FS need it even to "
                "connect"};
    case State::BadAnswers:
        return {"commands-only",
                subject + (files.badAnswer == BadAnswer::Damaged
                               ? "but every answer of UDP 10041 (files) arrives damaged"
                               : "but the answers of UDP 10041 (files) never fit the questions"),
                files.badAnswer == BadAnswer::Damaged
                    ? DamageStep()
                    : fmt::format("Look for another program that uses UDP 10041 of {}", expected.host)};
    default:
        return {"commands-only", subject + "UDP 10041 (files) does not",
                "Let UDP 10041 through the firewall between here and the controller, in both directions"};
    }
}

std::vector<Finding> DiagnosePorts(ControllerReport const& report, Expectation const& expected) {
    PortReport const& commands = report.commands;
    bool const filesAnswer = report.files.state == State::Answers;
    if (!commands.reporter.empty()) {
        return {Rejected(commands, expected)};
    }
    if (filesAnswer && (commands.state == State::Silent || commands.state == State::Closed)) {
        return {FilesOnly(commands)};
    }
    switch (commands.state) {
    case State::Unreachable:
        return {Unreachable(commands, expected)};
    case State::Closed:
        return {Closed(expected)};
    case State::Silent:
        return {Silent(expected)};
    case State::BadAnswers:
        return {BadAnswers(commands, expected)};
    case State::Refuses:
        return {Refusing("to give its model and software", commands.code)};
    case State::Answers:
        break;
    }
    return filesAnswer ? std::vector<Finding>{} : std::vector<Finding>{CommandsOnly(report.files, expected)};
}

void DiagnoseIdentity(ControllerReport const& report, Expectation const& expected, std::vector<Finding>& findings) {
    std::string const generation = GenerationOf(report.software);
    if (generation.empty()) {
        findings.push_back({"unknown-generation",
                            report.software.empty()
                                ? "The controller gave no software version, so its generation is unknown"
                                : fmt::format("The controller's software version '{}' is not of a generation that "
                                              "this program knows",
                                              Printable(report.software)),
                            "Ask for support of this generation; until then use only what all generations have, such "
                            "as harvlink status"});
    } else if (!expected.generation.empty() && expected.generation != generation) {
        findings.push_back(
            {"other-generation",
             fmt::format("The controller's generation is {}, and {} was expected", generation, expected.generation),
             fmt::format("Check that {} is the controller that you mean; if it is, expect {}: "
                         "--generation {}",
                         expected.host, generation, generation)});
    }
}

/// Only if nothing else is wrong: what is wrong with the link explains it better.
void DiagnoseAudit(AuditReport const& audit, std::vector<Finding>& findings) {
    if (!findings.empty() || !audit.isDone || audit.StrictWorks()) {
        return;
    }
    std::string_view const text = audit.strict.Message;
    findings.push_back(
        {"not-strict",
         fmt::format("A strict connection does not work here, and neither does this tool: {}",
                     Printable(text.substr(0, text.find_last_not_of('.') + 1))),
         "In your own programs, connect without the rule that the text names, and report the controller's "
         "software version with the output of harvlink doctor --json"});
}

/// The same text with --host in every command that needs it, so that the command can be copied.
std::string WithHost(std::string const& text, std::string const& host) {
    static std::regex const command("harvlink (?=--timeout|[a-z])(?!explain)");
    return std::regex_replace(text, command, "harvlink --host " + host + " ");
}

} // namespace

std::vector<Finding> Diagnose(ControllerReport const& report, Expectation const& expected) {
    std::vector<Finding> findings = DiagnosePorts(report, expected);
    if (report.commands.state == State::Answers) {
        DiagnoseDamage(report.link, findings);
        DiagnoseIdentity(report, expected, findings);
        DiagnoseLink(report.link, expected, findings);
        DiagnoseAudit(report.audit, findings);
    }
    for (Finding& finding : findings) {
        finding.nextStep = WithHost(finding.nextStep, expected.host);
    }
    return findings;
}

std::optional<Explanation> ExplainRefusal(int code) {
    for (Explanation& each : Explain(std::to_string(code))) {
        // The others are alarms with the same number, or codes of which it is only a part.
        if (each.match == ExactMatch && each.controllerCode) {
            return {std::move(each)};
        }
    }
    return std::nullopt;
}

Finding Refusing(std::string const& subject, int code) {
    auto const withoutStop = [](std::string_view text) { return text.substr(0, text.find_last_not_of('.') + 1); };
    auto const explanation = ExplainRefusal(code);
    if (!explanation) {
        return {"refusing", fmt::format("The controller refuses {}, with the unknown code {}", subject, code),
                fmt::format("Look up the code {} (0x{:X}) in the manual of the controller", code, code)};
    }
    return {"refusing",
            fmt::format("The controller refuses {}, with code {}: {}", subject, code, withoutStop(explanation->text)),
            fmt::format("{}. More: harvlink explain {}", withoutStop(explanation->advice.check), code)};
}

std::string GenerationOf(std::string const& software) {
    bool const isKnown = std::any_of(Generations.begin(), Generations.end(),
                                     [&](std::string_view name) { return software.starts_with(name); });
    return isKnown ? software.substr(0, 2) : "";
}

} // namespace harvlink::cli
