#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "cli/watch/Layout.h"
#include "harvlink/StatusInfo.h"

namespace harvlink::cli::watch {

inline constexpr std::size_t LabelWidth = 9;

/// "Code (40961): ...", for the place of the value.
Span FailureSpan(StatusInfo const& status);

/// "11:42:03", local time.
std::string ClockText(Sample::Time time);

std::size_t WidthOf(Line const& line);

/// The line, cut off after so many columns.
Line Clip(Line line, std::size_t columns);

/// A label and after it the items, in as many columns of equal width as fit.
std::vector<Line> Flow(std::string_view label, std::vector<Line> const& items, std::size_t columns);

} // namespace harvlink::cli::watch
