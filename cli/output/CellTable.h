#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "cli/output/Output.h"

namespace harvlink::cli {

/// What a command has read of one cell; null if it failed.
using CellDocument = std::pair<std::string, Json>;

/// The documents of several cells side by side for people: a row for each field that one of them has, a column for each cell,
/// "-" where a cell does not have the field. A row of a table inside a document becomes a field for each of its values, named
/// by the first one. Columns that are wider than `width` together go on below; 0: no limit.
std::string FormatCells(std::vector<CellDocument> const& cells, bool bold, std::size_t width);

} // namespace harvlink::cli
