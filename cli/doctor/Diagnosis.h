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

/// One thing that is not as it should be.
struct Finding {
    std::string name; ///< "port-closed"; stable, for programs
    std::string detail; ///< one sentence, without its full stop
    std::string nextStep; ///< the one thing to do next, likewise
};

/// What the connection was meant to be.
struct Expectation {
    std::string host;
    std::chrono::milliseconds timeout{};
    std::string generation; ///< empty: any
};

/// Everything that a report shows to be wrong, what hinders most first. Empty: all is well.
std::vector<Finding> Diagnose(ControllerReport const& report, Expectation const& expected);

/// The part of it that is about the series of probes.
void DiagnoseDamage(LinkReport const& link, std::vector<Finding>& findings);
void DiagnoseLink(LinkReport const& link, Expectation const& expected, std::vector<Finding>& findings);

/// What to do about damage.
std::string DamageStep();

/// That requests are refused with a code: `subject` are those that are.
Finding Refusing(std::string const& subject, int code);

/// What is known of a code by which a controller refuses.
std::optional<Explanation> ExplainRefusal(int code);

/// The value below which a share of the sorted values lies; 0 without values.
double Quantile(std::vector<double> const& sorted, double share);

/// "3 of 200 probes (1.5 %)"
std::string Count(unsigned count, unsigned sent);

/// "0.12 ms", with as many digits as are worth reading.
std::string Milliseconds(double time);

/// The generation that a software version names, "YA"; empty if it is none that is known.
std::string GenerationOf(std::string const& software);

} // namespace harvlink::cli
