#pragma once

#include <vector>

#include "cli/watch/Layout.h"

namespace harvlink::cli::watch {

/// Positions and torque of a control group as a small table with one column for each axis.
std::vector<Line> GroupLines(GroupSample const& group, std::size_t columns);

} // namespace harvlink::cli::watch
