#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "cli/output/Output.h"
#include "cli/watch/Board.h"
#include "cli/watch/Layout.h"

namespace harvlink::cli::watch {

/// The lines of a table of controllers, never more than `size`; `chosen` is the place of the one that is marked. It stays on
/// the screen, whatever the number of rows.
std::vector<Line> LayOut(std::vector<CellRow> const& rows, Size size, std::size_t chosen);

/// The same as plain text, with as many lines as it takes and none marked.
std::string PlainText(std::vector<CellRow> const& rows, std::size_t columns);

/// The same for programs: an object with a key for each cell.
Json RowsJson(std::vector<CellRow> const& rows);

} // namespace harvlink::cli::watch
