#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/doctor/Probe.h"
#include "cli/output/Words.h"
#include "words/cards/Explain.h"

namespace harvlink::cli {

/// Something that is wrong with a connection.
struct Finding {
    std::string name; ///< "port-closed"; stable, for programs
    std::string detail; ///< one sentence, without its full stop
    std::string nextStep; ///< the one thing to do next, also without its full stop
};

/// What the connection was meant to be.
struct Expectation {
    std::string host;
    std::chrono::milliseconds timeout{};
    std::string generation; ///< empty: any
};

/// Everything that is wrong, the worst first. Empty: nothing is wrong.
std::vector<Finding> Diagnose(ControllerReport const& report, Expectation const& expected);

/// The findings about the series of probes.
void DiagnoseDamage(LinkReport const& link, std::vector<Finding>& findings);
void DiagnoseLink(LinkReport const& link, Expectation const& expected, std::vector<Finding>& findings);

/// What to do about damaged answers.
std::string DamageStep();

/// A finding that the controller refuses `subject` with a code.
Finding Refusing(std::string const& subject, int code);

/// What is known about the code of a refusal.
std::optional<Explanation> ExplainRefusal(int code);

/// The value below which a share of the sorted values lies; 0 without values.
double Quantile(std::vector<double> const& sorted, double share);

/// "3 of 200 probes (1.5 %)"
std::string Count(unsigned count, unsigned sent);

/// "0.12 ms", with fewer digits for longer times.
std::string Milliseconds(double time);

/// The generation of a software version, such as "YA"; empty if it is unknown.
std::string GenerationOf(std::string const& software);

} // namespace harvlink::cli
