#pragma once

#include <string>
#include <vector>

#include "cli/doctor/Diagnosis.h"

namespace harvlink::cli {

/// For people: each finding with its next step, then the evidence: what was measured.
std::string FormatReport(ControllerReport const& report, Expectation const& expected,
                         std::vector<Finding> const& findings, bool isColoured);

} // namespace harvlink::cli
