#pragma once

#include "cli/output/Output.h"
#include "cli/watch/Sample.h"

namespace harvlink::cli::watch {

/// A sample for programs. A value that could not be read is null, and "problems" says why. No value is older than the
/// sample.
Json SampleJson(Sample const& sample);

// Parts of it.
Json JobJson(JobData const& job);
Json AlarmsJson(ActiveAlarms const& alarms);
std::string TimeText(Sample::Time time);

} // namespace harvlink::cli::watch
