#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "cli/watch/Layout.h"
#include "harvlink/StatusInfo.h"

namespace harvlink::cli::watch {

inline constexpr std::size_t LabelWidth = 9;

/// Text of a controller for a screen that counts columns: what is no printable ASCII becomes '?', one for each byte.
std::string ScreenText(std::string_view text);

/// "Code (40961): ...", for the place of the value.
Span FailureSpan(StatusInfo const& status);

std::size_t WidthOf(Line const& line);

/// The line without what goes beyond so many columns.
Line Clip(Line line, std::size_t columns);

/// A label and the items behind it in columns of equal width, as many beside each other as fit.
std::vector<Line> Flow(std::string_view label, std::vector<Line> const& items, std::size_t columns);

} // namespace harvlink::cli::watch
