#pragma once

#include <string>

#include "cli/output/Output.h"

namespace harvlink::cli {

/// The text of a document for people, with an end on each line. `bold` prints header lines in bold.
std::string FormatTable(Json const& document, bool bold);

} // namespace harvlink::cli
