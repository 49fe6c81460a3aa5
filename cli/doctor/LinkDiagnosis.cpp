#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include "cli/doctor/Diagnosis.h"

namespace harvlink::cli {

namespace {

/// Above this a control loop over the network, or a transfer of thousands of blocks, is too slow.
constexpr double SlowMilliseconds = 15.0;
/// The share of answers that must be faster. If fewer are, a control loop meets slow ones too often.
constexpr double SlowShare = 0.95;

/// `outcome` says what follows from the result.
std::string CompareByCable(std::string_view outcome) {
    return fmt::format("Connect this computer to the controller by a single cable and run harvlink doctor again: {}",
                       outcome);
}

void DiagnoseSources(LinkReport const& link, std::vector<Finding>& findings) {
    if (link.otherSources == 0) {
        return;
    }
    findings.push_back(
        {"other-source",
         fmt::format("Answers come from another address or port than was asked: {}, the last from {}",
                     Count(link.otherSources, link.sent),
                     link.otherHost.empty() ? fmt::format("its port {}", link.otherPort)
                                            : fmt::format("{}:{}", link.otherHost, link.otherPort)),
         link.otherHost.empty()
             ? CompareByCable(
                   "if it finds nothing then, a NAT, VPN or gateway in the usual connection changes the port")
             : fmt::format("Find out what {} is: another address of the controller, which you then use, or a "
                           "device that answers in its place",
                           link.otherHost)});
}

void DiagnoseLoss(LinkReport const& link, std::vector<Finding>& findings) {
    unsigned const before = link.sent - link.silentAtEnd;
    if (link.silentAtEnd > 0 && 2 * link.answered >= before) {
        findings.push_back(
            {"stopped",
             before == 0 ? "The controller gave its model and software, and then stopped answering"
                         : fmt::format("The controller stopped answering after {} of {} probes", before, link.sent),
             "Check whether the controller was switched off, restarted or unplugged just now, and run "
             "harvlink doctor again"});
    } else if (link.lost > 0) {
        findings.push_back(
            {"lossy", fmt::format("Answers get lost: {}", Count(link.lost, link.sent)),
             CompareByCable("if nothing is lost then, replace the cables and switches of the usual connection "
                            "one by one; else look for other programs that load the controller")});
    }
}

std::string LongerTimeout(double milliseconds) {
    double const rounded = std::ceil(milliseconds / 10) * 10;
    return fmt::format("Use a time-out of at least {:.0f} ms: harvlink --timeout {:.0f} status", rounded, rounded);
}

void DiagnoseTime(LinkReport const& link, Expectation const& expected, std::vector<Finding>& findings) {
    double const median = Quantile(link.milliseconds, 0.5);
    double const tail = Quantile(link.milliseconds, SlowShare);
    double const slowest = Quantile(link.milliseconds, 1.0);
    auto const timeout = expected.timeout.count();
    if (link.late > 0) {
        findings.push_back({"slow",
                            fmt::format("Answers come after the time-out of {} ms: {}, the slowest after {}", timeout,
                                        Count(link.late, link.sent), Milliseconds(link.latestMilliseconds)),
                            LongerTimeout(2 * link.latestMilliseconds)});
    } else if (slowest > static_cast<double>(timeout) / 2) {
        findings.push_back({"slow",
                            fmt::format("The slowest answer took {}, more than half of the time-out of {} ms",
                                        Milliseconds(slowest), timeout),
                            LongerTimeout(4 * slowest)});
    } else if (tail > SlowMilliseconds) {
        bool const isHalf = median > SlowMilliseconds;
        findings.push_back(
            {"slow",
             fmt::format("Answers are slow: {} {} or longer", isHalf ? "half of them take" : "1 in 20 takes",
                         Milliseconds(isHalf ? median : tail)),
             CompareByCable("if the answers are quick then, Wi-Fi, a VPN or a switch in the usual "
                            "connection delays them; else the controller is busy")});
    }
}

} // namespace

void DiagnoseDamage(LinkReport const& link, std::vector<Finding>& findings) {
    if (link.damaged + link.wrongIds == 0) {
        return;
    }
    // No probe is spoilt if a whole answer came with each damaged one.
    unsigned const count = link.spoilt > 0 ? link.spoilt : std::min(link.sent, link.damaged + link.wrongIds);
    std::string const subject = link.wrongIds == 0  ? "Answers arrive damaged"
                                : link.damaged == 0 ? "Answers do not fit the questions"
                                                    : "Answers arrive damaged, or do not fit the questions";
    findings.push_back({"damaged", fmt::format("{}: {}", subject, Count(count, link.sent)), DamageStep()});
}

std::string DamageStep() {
    return CompareByCable(
        "if the answers are right then, a device in the usual connection changes them, such as a NAT, VPN or "
        "gateway");
}

void DiagnoseLink(LinkReport const& link, Expectation const& expected, std::vector<Finding>& findings) {
    if (link.refused > 0) {
        findings.push_back(Refusing(Count(link.refused, link.sent), link.refusalCode));
    }
    DiagnoseSources(link, findings);
    if (link.duplicates > 0) {
        findings.push_back({"duplicates", fmt::format("Answers come twice: {}", Count(link.duplicates, link.sent)),
                            "Look for a second path between here and the controller, such as a loop of switches or "
                            "Wi-Fi beside the cable, and unplug it"});
    }
    DiagnoseLoss(link, findings);
    DiagnoseTime(link, expected, findings);
}

double Quantile(std::vector<double> const& sorted, double share) {
    if (sorted.empty()) {
        return 0.0;
    }
    auto const last = static_cast<double>(sorted.size() - 1);
    return sorted.at(static_cast<std::size_t>(std::lround(share * last)));
}

std::string Count(unsigned count, unsigned sent) {
    return fmt::format("{} of {} probes ({:.1f} %)", count, sent, 100.0 * count / std::max(1U, sent));
}

std::string Milliseconds(double time) {
    return fmt::format("{:.{}f} ms", time, time < 1 ? 2 : time < 100 ? 1 : 0);
}

} // namespace harvlink::cli
