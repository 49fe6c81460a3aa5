#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "doctor/Probe.h"

namespace harvlink::cli {

/// One thing that is not as it should be.
struct Finding {
    std::string name; ///< "port-closed"; stable, for programs
    std::string detail;
    std::string nextStep;
};

/// What the connection was meant to be.
struct Expectation {
    std::string host;
    std::chrono::milliseconds timeout{};
    std::string generation; ///< empty: any
};

/// Everything that a report shows to be wrong, what hinders most first. Empty: all is well.
std::vector<Finding> Diagnose(ControllerReport const& report, Expectation const& expected);

/// The value below which a share of the sorted values lies; 0 without values.
double Quantile(std::vector<double> const& sorted, double share);

/// The generation that a software version names, "YA"; empty if it is none that is known.
std::string GenerationOf(std::string const& software);

} // namespace harvlink::cli
