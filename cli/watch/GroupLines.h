#pragma once

#include <vector>

#include "cli/watch/Layout.h"

namespace harvlink::cli::watch {

/// Positions and torque of a control group as a small table, an axis to a column.
std::vector<Line> GroupLines(GroupFrame const& group, std::size_t columns);

} // namespace harvlink::cli::watch
